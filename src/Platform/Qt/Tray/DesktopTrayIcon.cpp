#include "Platform/Qt/Tray/DesktopTrayIcon.h"

#include "Platform/Qt/Tray/EmbeddedTrayIcon.h"
#include "Platform/Qt/Tray/StatusNotifierItem.h"
#include "Platform/Qt/Tray/StatusNotifierTypes.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace Watcher = StatusNotifierWatcher;

DesktopTrayIcon::DesktopTrayIcon(const Published<quint32>& trayOwner,
                                 const Published<bool>& isDesktopLight, Scheduler& scheduler)
    : m_trayOwner(trayOwner), m_isDesktopLight(isDesktopLight), m_scheduler(scheduler) {}

DesktopTrayIcon::~DesktopTrayIcon() = default;

void DesktopTrayIcon::show(const Actions& actions) {
    m_actions = actions;
    m_bus = std::make_unique<SessionBus>(u"veyla-tray"_s);
    if (m_bus->isConnected())
        watchBus();
    else
        m_hasHost = false;
    m_colorChanges = m_isDesktopLight.subscribe([this](bool isLight) {
        if (m_item) m_item->setIsOnLight(isLight);
    });
    m_ownerChanges = m_trayOwner.subscribe([this](quint32) {
        // The field has its new value, and Qt has heard of the tray too, after this turn.
        QMetaObject::invokeMethod(this, &DesktopTrayIcon::update, Qt::QueuedConnection);
    });
}

void DesktopTrayIcon::watchBus() {
    QDBusConnection& connection = m_bus->connection();
    auto* const names = new QDBusServiceWatcher(Watcher::name, connection,
                                                QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(names, &QDBusServiceWatcher::serviceOwnerChanged, this, [this] {
        // Another watcher knows nothing of an item that an earlier one had.
        setHasHost(false);
        askForHost();
    });
    for (const QString& change :
         {u"StatusNotifierHostRegistered"_s, u"StatusNotifierHostUnregistered"_s})
        connection.connect(Watcher::name, Watcher::path, Watcher::name, change, this,
                           SLOT(hostsChanged()));
    askForHost();
}

void DesktopTrayIcon::askForHost() {
    auto question = QDBusMessage::createMethodCall(Watcher::name, Watcher::path,
                                                   u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    question << QString(Watcher::name) << u"IsStatusNotifierHostRegistered"_s;
    question.setAutoStartService(false);
    auto* const reply = new QDBusPendingCallWatcher(m_bus->connection().asyncCall(question), this);
    connect(reply, &QDBusPendingCallWatcher::finished, this, [this, reply] {
        reply->deleteLater();
        // Where nobody answers there is no host.
        const QDBusPendingReply<QDBusVariant> value = *reply;
        setHasHost(value.isValid() && value.value().variant().toBool());
    });
}

void DesktopTrayIcon::hostsChanged() {
    askForHost();
}

void DesktopTrayIcon::setHasHost(bool hasHost) {
    m_hasHost = hasHost;
    update();
}

void DesktopTrayIcon::update() {
    if (!m_hasHost) return;
    const quint32 owner = *m_hasHost ? 0 : m_trayOwner.value();
    if (owner != m_embeddedIn || owner == 0) m_embedded.reset();
    m_embeddedIn = owner;
    if (!*m_hasHost) m_item.reset();
    if (*m_hasHost && !m_item)
        m_item = std::make_unique<StatusNotifierItem>(m_actions, *m_bus, m_isDesktopLight.value());
    if (owner != 0 && !m_embedded)
        m_embedded = std::make_unique<EmbeddedTrayIcon>(m_actions, m_scheduler);
    const bool isInTray = m_item || m_embedded;
    if (isInTray != m_isInTray.value()) m_isInTray.set(isInTray);
    if (isInTray == m_isWithoutTray.value()) m_isWithoutTray.set(!isInTray);
}
