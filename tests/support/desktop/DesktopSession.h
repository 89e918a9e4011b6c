#pragma once

#include "support/desktop/AccessibilityBus.h"
#include "support/desktop/Compositor.h"
#include "support/desktop/DBusSession.h"
#include "support/desktop/TemporaryHome.h"
#include "support/desktop/WindowManager.h"
#include "support/desktop/XServer.h"

#include <memory>

/// A whole desktop for one program: home, X server, window manager, session bus and, as asked for,
/// more. Everything ends with it, in reverse order.
class DesktopSession {
public:
    struct Options {
        XServer::Options server{};
        /// Empty for a display without a window manager.
        QStringList windowManager{QStringLiteral("openbox")};
        bool hasCompositor = false;
        bool hasAccessibilityBus = false;
    };

    /// Returns when every part is ready. Throws std::runtime_error when one does not get there.
    DesktopSession() : DesktopSession(Options()) {}
    explicit DesktopSession(const Options& options);

    /// What a program that runs on this desktop gets.
    const QProcessEnvironment& environment() const { return m_environment; }

    /// Gives this process the environment, for an application object made afterwards.
    void adoptEnvironment() const;

    QString displayName() const { return m_server->displayName(); }
    TemporaryHome& home() { return m_home; }
    DBusSession& bus() { return *m_bus; }
    /// Null when the options name none.
    AccessibilityBus* accessibilityBus() { return m_accessibilityBus.get(); }

    /// Ends the window manager, if any, and starts the given one; none for an empty command.
    void changeWindowManager(const QStringList& command);
    /// Starts another, which takes over from the one that runs.
    void replaceWindowManager(const QStringList& command);
    void startCompositor();
    void stopCompositor() { m_compositor.reset(); }

private:
    TemporaryHome m_home;
    QProcessEnvironment m_environment;
    std::unique_ptr<XServer> m_server;
    std::unique_ptr<DBusSession> m_bus;
    std::unique_ptr<AccessibilityBus> m_accessibilityBus;
    std::unique_ptr<WindowManager> m_windowManager;
    std::unique_ptr<Compositor> m_compositor;
};
