#include "Views/CommandShortcuts.h"

#include "App/VeylaCommands.h"

#include <QAction>
#include <QWidget>

void addCommandShortcuts(QWidget& window, const VeylaCommands& commands) {
    for (const auto menu : {&VeylaCommands::items, &VeylaCommands::editItems}) {
        const auto items = (commands.*menu)();
        for (std::size_t index = 0; index < items.size(); ++index) {
            if (items[index].shortcuts.isEmpty()) continue;
            auto* const action = new QAction(&window);
            action->setShortcuts(items[index].shortcuts);
            QObject::connect(action, &QAction::triggered, &window, [&commands, menu, index] {
                // As it is now: whether it is enabled changes.
                const MenuCommand item = (commands.*menu)().at(index);
                if (item.isEnabled) item.perform();
            });
            window.addAction(action);
        }
    }
}
