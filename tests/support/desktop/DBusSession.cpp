#include "support/desktop/DBusSession.h"

#include "support/desktop/TemporaryHome.h"

#include <QDir>
#include <QFile>
#include <stdexcept>

namespace {

QByteArray configuration(const QString& runtimeFolder, const QString& serviceFolder) {
    return QStringLiteral(R"(<!DOCTYPE busconfig PUBLIC
 "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path=%1/bus</listen>
  <auth>EXTERNAL</auth>
  <servicedir>%2</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)")
        .arg(runtimeFolder.toHtmlEscaped(), serviceFolder.toHtmlEscaped())
        .toUtf8();
}

}  // namespace

DBusSession::DBusSession(const TemporaryHome& home, const QProcessEnvironment& environment)
    : m_serviceFolder(home.runtimeFolder() + QStringLiteral("/services")) {
    const QString configurationPath = home.runtimeFolder() + QStringLiteral("/bus.conf");
    QFile file(configurationPath);
    if (!QDir().mkpath(m_serviceFolder) || !file.open(QFile::WriteOnly) ||
        file.write(configuration(home.runtimeFolder(), m_serviceFolder)) < 0 || !file.flush()) {
        throw std::runtime_error("cannot write the configuration of the session bus");
    }
    // Started directly: dbus-run-session leaves its daemon behind when a signal ends it.
    m_process = std::make_unique<ChildProcess>(
        QStringLiteral("dbus-daemon"),
        QStringList{QStringLiteral("--nofork"), QStringLiteral("--print-address"),
                    QStringLiteral("--config-file=") + configurationPath},
        environment);
    m_address = QString::fromUtf8(m_process->waitForFirstLine());
}
