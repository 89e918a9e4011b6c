#include "support/desktop/DBusSession.h"

#include "support/desktop/TemporaryHome.h"

using namespace Qt::Literals::StringLiterals;

// Started directly: dbus-run-session leaves its daemon behind when a signal ends it.
DBusSession::DBusSession(const TemporaryHome& home, const QProcessEnvironment& environment)
    : m_process(u"dbus-daemon"_s,
                {u"--nofork"_s, u"--print-address"_s,
                 u"--config-file="_s + QStringLiteral(SESSION_BUS_CONFIGURATION),
                 u"--address=unix:path="_s + home.runtimeFolder() + u"/bus"_s},
                environment),
      m_address(QString::fromUtf8(m_process.waitForFirstLine())) {}
