#include "Views/Components/ApplicationMenu.h"

#include "Views/Design/ApplicationLook.h"

#include <QMenu>

using namespace Qt::Literals::StringLiterals;

void openApplicationMenu(QWidget& control, const QList<RunningApplication>& applications,
                         const std::optional<QString>& chosen,
                         const std::function<void(const RunningApplication&)>& onChoose) {
    auto* const menu = new QMenu(&control);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    styleMenus(*menu);
    for (const RunningApplication& each : applications) {
        QAction* const item = menu->addAction(menuTitle(each.localizedName.value_or(QString())),
                                              &control, [onChoose, each] { onChoose(each); });
        item->setCheckable(true);
        item->setChecked(chosen && chosen == each.bundleIdentifier);
    }
    if (menu->isEmpty()) menu->addAction(u"No other application is running"_s)->setEnabled(false);
    menu->popup(control.mapToGlobal(control.rect().bottomLeft()));
}
