#include "Platform/Qt/Tray/EmbeddedTrayIcon.h"

#include "Platform/Qt/Tray/TrayPicture.h"

#include <QApplication>
#include <QEvent>
#include <QIcon>
#include <QPixmap>
#include <QScreen>
#include <QWidget>

using namespace Qt::Literals::StringLiterals;

namespace {

QIcon icon(bool isOnLight) {
    QIcon icon;
    for (const int side : {16, 22, 24, 32, 48})
        icon.addPixmap(QPixmap::fromImage(TrayPicture::image(isOnLight, side)));
    return icon;
}

}  // namespace

EmbeddedTrayIcon::EmbeddedTrayIcon(const TrayIcon::Actions& actions, Scheduler& scheduler)
    : m_actions(actions), m_scheduler(scheduler), m_icon(icon(false)) {
    for (const TrayIcon::MenuItem& item : m_actions.menu)
        m_menu.addAction(item.title, this, item.perform);
    m_icon.setToolTip(u"Veyla"_s);
    m_icon.setContextMenu(&m_menu);
    connect(&m_icon, &QSystemTrayIcon::activated, this, &EmbeddedTrayIcon::activated);
    m_icon.show();
    // The toolkit's own window in the tray; it does not tell when that has found its place.
    for (QWidget* const window : QApplication::topLevelWidgets())
        if (window->inherits("QSystemTrayIconSys")) window->installEventFilter(this);
}

EmbeddedTrayIcon::~EmbeddedTrayIcon() = default;

bool EmbeddedTrayIcon::eventFilter(QObject* /*watched*/, QEvent* event) {
    if (event->type() == QEvent::Paint && m_icon.geometry() != m_seenAt) {
        m_seenAt = m_icon.geometry();
        // When what is being painted now is on the screen.
        m_scheduler.post(m_lifetime.guard([this] { followGround(); }));
    }
    return false;
}

void EmbeddedTrayIcon::activated(QSystemTrayIcon::ActivationReason reason) {
    // The panel of the desktop may have got other colours since.
    followGround();
    // A second click soon after the first is a double click to the toolkit.
    if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick)
        m_actions.onActivate(m_icon.geometry());
}

void EmbeddedTrayIcon::followGround() {
    const QRect place = m_icon.geometry();
    QScreen* const screen = QGuiApplication::screenAt(place.center());
    if (!screen || place.isEmpty()) return;
    const QPoint origin = place.topLeft() - screen->geometry().topLeft();
    const QPixmap ground =
        screen->grabWindow(0, origin.x(), origin.y(), place.width(), place.height());
    setIsOnLight(TrayPicture::isLight(ground.toImage()));
}

void EmbeddedTrayIcon::setIsOnLight(bool isOnLight) {
    if (isOnLight == m_isOnLight) return;
    m_isOnLight = isOnLight;
    m_icon.setIcon(icon(isOnLight));
}
