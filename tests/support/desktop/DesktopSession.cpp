#include "support/desktop/DesktopSession.h"

#include <utility>

using namespace Qt::Literals::StringLiterals;

DesktopSession::DesktopSession(const Options& options) : m_environment(m_home.environment()) {
    m_server = std::make_unique<XServer>(m_environment, options.server);
    m_environment.insert(u"DISPLAY"_s, m_server->displayName());
    m_bus = std::make_unique<DBusSession>(m_home, m_environment);
    m_environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, m_bus->address());
    if (options.hasAccessibilityBus) {
        m_accessibilityBus = std::make_unique<AccessibilityBus>(m_environment);
    }
    changeWindowManager(options.windowManager);
    if (options.hasCompositor) startCompositor();
}

void DesktopSession::adoptEnvironment() const {
    for (const QString& name : QProcessEnvironment::systemEnvironment().keys()) {
        if (!m_environment.contains(name)) qunsetenv(name.toLocal8Bit().constData());
    }
    for (const QString& name : m_environment.keys()) {
        qputenv(name.toLocal8Bit().constData(), m_environment.value(name).toLocal8Bit());
    }
}

void DesktopSession::changeWindowManager(const QStringList& command) {
    m_windowManager.reset();
    if (!command.isEmpty()) {
        m_windowManager = std::make_unique<WindowManager>(m_environment, command);
    }
}

void DesktopSession::replaceWindowManager(const QStringList& command) {
    const auto former = std::move(m_windowManager);
    m_windowManager =
        std::make_unique<WindowManager>(m_environment, command + QStringList{u"--replace"_s});
}

void DesktopSession::startCompositor() {
    m_compositor.reset();
    m_compositor = std::make_unique<Compositor>(m_environment);
}
