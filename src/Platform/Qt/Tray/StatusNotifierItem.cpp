#include "Platform/Qt/Tray/StatusNotifierItem.h"

#include "Models/ApplicationIdentifier.h"
#include "Platform/Qt/Tray/StatusNotifierMenu.h"
#include "Platform/Qt/Tray/TrayPicture.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QGuiApplication>
#include <QScreen>
#include <QtEndian>

using namespace Qt::Literals::StringLiterals;

namespace {

const QString itemPath = u"/StatusNotifierItem"_s;
const QString menuObjectPath = u"/MenuBar"_s;

StatusNotifierPixmap pixmap(bool isOnLight, int side) {
    const QImage picture =
        TrayPicture::image(isOnLight, side).convertToFormat(QImage::Format_ARGB32);
    StatusNotifierPixmap result{picture.width(), picture.height(), {}};
    result.data.resize(picture.sizeInBytes());
    auto* target = result.data.data();
    for (int y = 0; y < picture.height(); ++y) {
        const auto* const line = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
        for (int x = 0; x < picture.width(); ++x, target += sizeof(QRgb))
            qToBigEndian(line[x], target);
    }
    return result;
}

// Hosts count device pixels of the root; screens of the toolkit begin where they do on the root,
// and have points from there on.
QRect anchorAt(const QPoint& pixel) {
    // What a host says that does not know.
    if (pixel.isNull()) return {};
    for (const QScreen* const screen : QGuiApplication::screens()) {
        const QPoint origin = screen->geometry().topLeft();
        const double scale = screen->devicePixelRatio();
        if (QRect(origin, screen->geometry().size() * scale).contains(pixel))
            return {origin + (pixel - origin) / scale, QSize(1, 1)};
    }
    return {};
}

}  // namespace

StatusNotifierItem::StatusNotifierItem(const TrayIcon::Actions& actions, SessionBus& bus,
                                       bool isOnLight)
    : m_actions(actions),
      m_bus(bus),
      m_isOnLight(isOnLight),
      m_service(u"org.kde.StatusNotifierItem-%1-1"_s.arg(QCoreApplication::applicationPid())),
      m_menu(std::make_unique<StatusNotifierMenu>(actions.menu)) {
    registerStatusNotifierTypes();
    constexpr auto exported =
        QDBusConnection::ExportScriptableContents | QDBusConnection::ExportAllProperties;
    m_bus.connection().registerObject(menuObjectPath, m_menu.get(), exported);
    m_bus.connection().registerObject(itemPath, this, exported);
    m_bus.connection().registerService(m_service);
    registerWithWatcher();
}

StatusNotifierItem::~StatusNotifierItem() {
    m_bus.connection().unregisterService(m_service);
    m_bus.connection().unregisterObject(itemPath);
    m_bus.connection().unregisterObject(menuObjectPath);
}

void StatusNotifierItem::registerWithWatcher() {
    auto message = QDBusMessage::createMethodCall(
        StatusNotifierWatcher::name, StatusNotifierWatcher::path, StatusNotifierWatcher::name,
        u"RegisterStatusNotifierItem"_s);
    message << m_service;
    m_bus.connection().send(message);
}

void StatusNotifierItem::setIsOnLight(bool isOnLight) {
    if (isOnLight == m_isOnLight) return;
    m_isOnLight = isOnLight;
    Q_EMIT NewIcon();
}

QString StatusNotifierItem::category() const {
    return u"ApplicationStatus"_s;
}

QString StatusNotifierItem::id() const {
    return applicationIdentifier;
}

QString StatusNotifierItem::title() const {
    return u"Veyla"_s;
}

QString StatusNotifierItem::status() const {
    return u"Active"_s;
}

StatusNotifierPixmaps StatusNotifierItem::iconPixmaps() const {
    StatusNotifierPixmaps pixmaps;
    for (const int side : {16, 22, 24, 32, 48, 64})
        pixmaps << pixmap(m_isOnLight, side);
    return pixmaps;
}

StatusNotifierToolTip StatusNotifierItem::toolTip() const {
    return {{}, {}, title(), {}};
}

QDBusObjectPath StatusNotifierItem::menuPath() const {
    return QDBusObjectPath(menuObjectPath);
}

void StatusNotifierItem::Activate(int x, int y) {
    m_actions.onActivate(anchorAt({x, y}));
}

// The press of that button has closed the panel, as one elsewhere does.
void StatusNotifierItem::SecondaryActivate(int /*x*/, int /*y*/) {}
