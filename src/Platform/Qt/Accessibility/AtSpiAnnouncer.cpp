#include "Platform/Qt/Accessibility/AtSpiAnnouncer.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QVariantMap>

namespace {

// How urgently a screen reader speaks: after what it is saying, or at once.
enum Politeness { polite = 1, assertive = 2 };

}  // namespace

void AtSpiAnnouncer::announce(const QString& message, int priority) {
    const QDBusConnection bus(QStringLiteral("a11y"));
    if (!bus.isConnected()) return;
    auto signal = QDBusMessage::createSignal(QStringLiteral("/org/a11y/atspi/accessible/root"),
                                             QStringLiteral("org.a11y.atspi.Event.Object"),
                                             QStringLiteral("Announcement"));
    signal << QString() << static_cast<int>(priority >= highPriority ? assertive : polite) << 0
           << QVariant::fromValue(QDBusVariant(message)) << QVariantMap();
    bus.send(signal);
}
