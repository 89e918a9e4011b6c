#pragma once

#include "Platform/Qt/Applications/ApplicationResolver.h"
#include "Platform/Qt/Applications/ProcessEnd.h"
#include "Platform/Qt/Applications/ProcessWatch.h"
#include "Platform/Qt/BusNameWatch.h"
#include "Platform/Workspace.h"
#include "Platform/X11/ClientWindows.h"
#include "Platform/X11/XcbConnection.h"
#include "Reactive/Lifetime.h"
#include "Reactive/Notifier.h"
#include "Reactive/Scheduler.h"
#include "Reactive/Subscription.h"

#include <QHash>
#include <QList>
#include <map>
#include <memory>
#include <optional>
#include <sys/types.h>
#include <vector>

/// Applications as the window manager and /proc tell. In front is the application of the active
/// window; a moment without one, as between two windows, does not count. Running are the
/// applications that have a window, each process by itself, and those in the table of identities
/// also without a window, as far as their start can be seen: see docs/applications.md.
class X11Workspace final : public Workspace {
public:
    /// `connection` and `scheduler` must outlive the workspace.
    X11Workspace(
        XcbConnection& connection, Scheduler& scheduler, ApplicationResolver resolver,
        ProcessWatch::KernelEvents kernelEvents = ProcessWatch::KernelEvents::whereAllowed);

    std::optional<RunningApplication> frontmostApplication() const override;
    QList<RunningApplication> runningApplications() const override;
    Subscription onApplicationActivated(
        std::function<void(const std::optional<RunningApplication>&)> callback) override;
    Subscription onApplicationLaunched(std::function<void()> callback) override;
    Subscription onApplicationTerminated(std::function<void()> callback) override;

    /// Whether the start of every program can be seen.
    bool seesEveryProgram() const { return m_processes.isComplete(); }

private:
    /// A process as one application; several when its windows say so.
    struct Application {
        std::optional<pid_t> process;
        RunningApplication application;

        /// The name says nothing more: programs of one identifier may call themselves differently.
        bool operator==(const Application& other) const {
            return process == other.process &&
                   application.bundleIdentifier == other.application.bundleIdentifier;
        }
    };

    void handleEvent(const xcb_generic_event_t& event);
    void noteCreatedWindow(const xcb_create_notify_event_t& event);
    void finishBurst();
    void lookAtNewClients();
    void followActiveWindow();
    void followActiveWindowAgain();
    void activate(const Application& application);
    void readClientList();
    void watchProcesses(const std::vector<ClientWindow>& newWindows);
    bool hasEnded(const Application& application) const;
    void updateRunning();
    /// Nothing when no window is active, or the active one is gone.
    std::optional<Application> activeApplication();
    QList<Application> currentApplications();
    Application applicationOf(const ClientWindow& window);

    XcbConnection& m_connection;
    Scheduler& m_scheduler;
    ApplicationResolver m_resolver;
    ClientWindows m_windows;
    ProcessWatch m_processes;
    std::unique_ptr<BusNameWatch> m_busNames;

    bool m_isActiveWindowStale = false;
    bool m_isClientListStale = false;
    bool m_isActiveWindowInDoubt = false;
    std::vector<xcb_window_t> m_clientList;
    QHash<xcb_window_t, Application> m_applications;
    // Of the windows in the list: a manager may go on listing a window that is gone.
    std::map<pid_t, ProcessEnd> m_ends;
    std::optional<Application> m_frontmost;
    // The last one that was told; it stays so while nothing is in front.
    std::optional<Application> m_activated;
    QList<Application> m_running;
    // One window of each client that has made some since the last look, by the client's first id.
    QHash<xcb_window_t, xcb_window_t> m_newClients;
    Subscription m_lookAtNewClients;

    std::optional<RunningApplication> m_told;
    Notifier m_applicationActivated;
    Notifier m_applicationLaunched;
    Notifier m_applicationTerminated;
    Lifetime m_lifetime;
    SubscriptionBag m_subscriptions;
};
