#include "Views/CommandShortcuts.h"

#include "App/VeylaCommands.h"

#include <QAction>
#include <QWidget>

void addCommandShortcuts(QWidget& window, const VeylaCommands& commands) {
    const auto items = commands.items();
    for (std::size_t index = 0; index < items.size(); ++index) {
        if (items[index].shortcuts.isEmpty()) continue;
        auto* const action = new QAction(&window);
        action->setShortcuts(items[index].shortcuts);
        QObject::connect(action, &QAction::triggered, &window, [&commands, index] {
            // As it is now: whether it is enabled changes.
            const MenuCommand item = commands.items().at(index);
            if (item.isEnabled) item.perform();
        });
        window.addAction(action);
    }
}
