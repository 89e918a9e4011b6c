#include "Views/Settings/SettingsWindow.h"

#include "Views/Settings/SettingsView.h"

#include <QAction>
#include <QCursor>
#include <QGuiApplication>
#include <QScreen>
#include <QVBoxLayout>

namespace {

/// For a title bar and a panel, where the screen is low.
constexpr int roomAround = 60;

}  // namespace

QString SettingsWindow::title() {
    return QStringLiteral("Settings");
}

SettingsWindow::SettingsWindow(AppState& state, Scheduler& scheduler, LoginItem& loginItem) {
    setWindowTitle(title());
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* const view = new SettingsView(state, scheduler, loginItem);
    layout->addWidget(view);
    view->setFocus();
    const QScreen* const screenOfUser = QGuiApplication::screenAt(QCursor::pos());
    const QRect available = (screenOfUser ? screenOfUser : screen())->availableGeometry();
    setFixedSize(SettingsView::contentSize().boundedTo(available.size() - QSize(0, roomAround)));
    // Window managers look for free room and let a window of this height go beyond the edge.
    move(available.center() - rect().center() - QPoint(0, roomAround / 4));

    auto* const close = new QAction(this);
    close->setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_W), QKeySequence(Qt::Key_Escape)});
    connect(close, &QAction::triggered, this, &QWidget::close);
    addAction(close);
}
