#include "Platform/Qt/BusNameWatch.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

const QString busName = u"org.freedesktop.DBus"_s;
const QString busPath = u"/org/freedesktop/DBus"_s;

}  // namespace

BusNameWatch::BusNameWatch(std::function<void(pid_t)> onNameTaken)
    : m_bus(u"veyla-bus-names"_s), m_onNameTaken(std::move(onNameTaken)) {
    if (m_bus.isConnected())
        m_bus.connection().connect(busName, busPath, busName, u"NameOwnerChanged"_s, this,
                                   SLOT(noteOwner(QDBusMessage)));
}

void BusNameWatch::noteOwner(const QDBusMessage& change) {
    const QString name = change.arguments().value(0).toString();
    const QString newOwner = change.arguments().value(2).toString();
    // Every connection has a name that starts with a colon, which says nothing.
    if (name.startsWith(u':') || newOwner.isEmpty()) return;
    auto question =
        QDBusMessage::createMethodCall(busName, busPath, busName, u"GetConnectionUnixProcessID"_s);
    question << newOwner;
    auto* const answer = new QDBusPendingCallWatcher(m_bus.connection().asyncCall(question), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        answer->deleteLater();
        const QDBusPendingReply<uint> process = *answer;
        if (process.isValid()) m_onNameTaken(static_cast<pid_t>(process.value()));
    });
}
