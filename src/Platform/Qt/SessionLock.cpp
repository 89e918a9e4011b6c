#include "Platform/Qt/SessionLock.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

using namespace Qt::Literals::StringLiterals;

namespace {

// The freedesktop interface, and those of desktops that have none of that.
const QStringList saverInterfaces{u"org.freedesktop.ScreenSaver"_s, u"org.gnome.ScreenSaver"_s,
                                  u"org.cinnamon.ScreenSaver"_s, u"org.mate.ScreenSaver"_s,
                                  u"org.xfce.ScreenSaver"_s};
const QString loginManager = u"org.freedesktop.login1"_s;
const QString properties = u"org.freedesktop.DBus.Properties"_s;
// The login manager's name for the session of whoever asks.
const QString ownSession = u"/org/freedesktop/login1/session/auto"_s;
const QString sessionInterface = u"org.freedesktop.login1.Session"_s;

}  // namespace

SessionLock::SessionLock() {
    QMetaObject::invokeMethod(this, &SessionLock::listen, Qt::QueuedConnection);
}

void SessionLock::listen() {
    m_bus = std::make_unique<SessionBus>(u"veyla-session-lock"_s);
    if (m_bus->isConnected())
        for (const QString& interface : saverInterfaces)
            m_bus->connection().connect(QString(), QString(), interface, u"ActiveChanged"_s, this,
                                        SLOT(noteSaver(bool, QDBusMessage)));
    QDBusConnection system = QDBusConnection::systemBus();
    if (!system.isConnected()) return;
    // The signal names the session by another path, and there are few of them.
    system.connect(loginManager, QString(), properties, u"PropertiesChanged"_s, {sessionInterface},
                   QString(), this, SLOT(readHint()));
    readHint();
}

void SessionLock::noteSaver(bool isActive, const QDBusMessage& signal) {
    if (isActive)
        m_activeSavers.insert(signal.interface());
    else
        m_activeSavers.remove(signal.interface());
    publish();
}

void SessionLock::readHint() {
    QDBusMessage question =
        QDBusMessage::createMethodCall(loginManager, ownSession, properties, u"Get"_s);
    question << sessionInterface << u"LockedHint"_s;
    question.setAutoStartService(false);
    auto* const answer =
        new QDBusPendingCallWatcher(QDBusConnection::systemBus().asyncCall(question), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        answer->deleteLater();
        const QDBusPendingReply<QDBusVariant> hint = *answer;
        m_isHintSet = hint.isValid() && hint.value().variant().toBool();
        publish();
    });
}

void SessionLock::publish() {
    const bool isLocked = m_isHintSet || !m_activeSavers.isEmpty();
    if (isLocked != m_isLocked.newest()) m_isLocked.set(isLocked);
}
