#include "Views/Settings/KeyCaptureView.h"

#include <QPointer>

KeyCaptureNSView* KeyCaptureView::makeView(QWidget* parent, Scheduler& scheduler) const {
    auto* const view = new KeyCaptureNSView(parent);
    updateView(*view);
    view->show();
    scheduler.post([waiting = QPointer(view)] {
        if (waiting && waiting->isVisible()) waiting->setFocus(Qt::OtherFocusReason);
    });
    return view;
}
