#include "support/desktop/AccessibilityBus.h"

#include "support/desktop/Wait.h"

using namespace Qt::Literals::StringLiterals;

namespace {

/// Makes one call with dbus-send; the text of its answer, or nothing when it failed. A call by
/// QtDBus would set up the bus connections of this process before its application object is there.
std::optional<QString> call(const QProcessEnvironment& environment, const QStringList& arguments) {
    ChildProcess sender(u"dbus-send"_s, QStringList{u"--print-reply=literal"_s} + arguments,
                        environment);
    if (sender.waitForExit(defaultWait) != 0) return std::nullopt;
    return QString::fromUtf8(sender.standardOutput()).trimmed();
}

}  // namespace

AccessibilityBus::AccessibilityBus(const QProcessEnvironment& environment)
    : m_launcher(u"/usr/libexec/at-spi-bus-launcher"_s, {u"--launch-immediately"_s}, environment) {
    requireSoon("the session bus knows the accessibility bus", [&] {
        m_address = call(environment, {u"--session"_s, u"--dest=org.a11y.Bus"_s, u"/org/a11y/bus"_s,
                                       u"org.a11y.Bus.GetAddress"_s})
                        .value_or(QString());
        return !m_address.isEmpty();
    });
    requireSoon("the accessibility registry answers", [&] {
        return call(environment,
                    {u"--bus="_s + m_address, u"--dest=org.a11y.atspi.Registry"_s,
                     u"/org/a11y/atspi/registry"_s, u"org.freedesktop.DBus.Peer.Ping"_s})
            .has_value();
    });
}
