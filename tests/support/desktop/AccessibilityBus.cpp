#include "support/desktop/AccessibilityBus.h"

#include "support/desktop/Wait.h"

namespace {

/// Makes one call with dbus-send; the text of its answer, or nothing when it failed. A call by
/// QtDBus would set up the bus connections of this process before its application object is there.
std::optional<QString> call(const QProcessEnvironment& environment, const QStringList& arguments) {
    ChildProcess sender(QStringLiteral("dbus-send"),
                        QStringList{QStringLiteral("--print-reply=literal")} + arguments,
                        environment);
    if (sender.waitForExit(defaultWait) != 0) return std::nullopt;
    return QString::fromUtf8(sender.standardOutput()).trimmed();
}

}  // namespace

AccessibilityBus::AccessibilityBus(const QProcessEnvironment& environment)
    : m_launcher(QStringLiteral("/usr/libexec/at-spi-bus-launcher"),
                 {QStringLiteral("--launch-immediately")}, environment) {
    requireSoon("the session bus knows the accessibility bus", [&] {
        m_address =
            call(environment,
                 {QStringLiteral("--session"), QStringLiteral("--dest=org.a11y.Bus"),
                  QStringLiteral("/org/a11y/bus"), QStringLiteral("org.a11y.Bus.GetAddress")})
                .value_or(QString());
        return !m_address.isEmpty();
    });
    requireSoon("the accessibility registry answers", [&] {
        return call(environment, {QStringLiteral("--bus=") + m_address,
                                  QStringLiteral("--dest=org.a11y.atspi.Registry"),
                                  QStringLiteral("/org/a11y/atspi/registry"),
                                  QStringLiteral("org.freedesktop.DBus.Peer.Ping")})
            .has_value();
    });
}
