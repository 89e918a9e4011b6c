#include "Platform/X11/X11Workspace.h"

#include <QGuiApplication>
#include <algorithm>
#include <chrono>
#include <set>
#include <unistd.h>
#include <utility>

namespace {

// Programs make several windows when they start.
constexpr std::chrono::milliseconds newClientDelay{100};

}  // namespace

X11Workspace::X11Workspace(XcbConnection& connection, Scheduler& scheduler,
                           ApplicationResolver resolver, ProcessWatch::KernelEvents kernelEvents)
    : m_connection(connection),
      m_scheduler(scheduler),
      m_resolver(std::move(resolver)),
      m_windows(connection),
      m_processes(
          scheduler, qgetenv("DISPLAY"),
          [this](const ProcessFacts& process) { return m_resolver.isInTable(process); },
          kernelEvents) {
    if (!m_processes.isComplete())
        m_busNames =
            std::make_unique<BusNameWatch>([this](pid_t process) { m_processes.look(process); });
    m_connection.selectRootEvents(XCB_EVENT_MASK_PROPERTY_CHANGE |
                                  XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
    m_subscriptions.keep(
        m_connection.onEvent([this](const xcb_generic_event_t& event) { handleEvent(event); }));
    m_subscriptions.keep(m_connection.onBurstEnd([this] { finishBurst(); }));
    m_subscriptions.keep(m_processes.onChanged([this] { updateRunning(); }));
    readClientList();
    m_running = currentApplications();
    m_frontmost = activeApplication();
    m_activated = m_frontmost;
}

std::optional<RunningApplication> X11Workspace::frontmostApplication() const {
    return m_frontmost ? std::optional(m_frontmost->application) : std::nullopt;
}

QList<RunningApplication> X11Workspace::runningApplications() const {
    QList<RunningApplication> applications;
    for (const Application& each : m_running)
        applications.append(each.application);
    return applications;
}

Subscription X11Workspace::onApplicationActivated(
    std::function<void(const std::optional<RunningApplication>&)> callback) {
    return m_applicationActivated.subscribe(
        [this, callback = std::move(callback)] { callback(m_told); });
}

Subscription X11Workspace::onApplicationLaunched(std::function<void()> callback) {
    return m_applicationLaunched.subscribe(std::move(callback));
}

Subscription X11Workspace::onApplicationTerminated(std::function<void()> callback) {
    return m_applicationTerminated.subscribe(std::move(callback));
}

void X11Workspace::handleEvent(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7f) {
        case XCB_PROPERTY_NOTIFY: {
            const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
            if (change.window != m_connection.root()) break;
            m_isActiveWindowStale |= change.atom == m_connection.atoms().netActiveWindow;
            m_isClientListStale |= change.atom == m_connection.atoms().netClientList;
            break;
        }
        case XCB_CREATE_NOTIFY:
            noteCreatedWindow(reinterpret_cast<const xcb_create_notify_event_t&>(event));
            break;
        default:
            break;
    }
}

void X11Workspace::noteCreatedWindow(const xcb_create_notify_event_t& event) {
    // An id that was another window's before.
    m_applications.remove(event.window);
    // A program that nothing else tells of, but hardly any client goes without making a window,
    // be it one that is never shown.
    if (m_processes.isComplete() || m_connection.owns(event.window)) return;
    const xcb_window_t client = event.window & ~xcb_get_setup(m_connection.get())->resource_id_mask;
    m_newClients.insert(client, event.window);
    if (m_lookAtNewClients.isActive()) return;
    m_lookAtNewClients = m_scheduler.after(newClientDelay, [this] { lookAtNewClients(); });
}

void X11Workspace::lookAtNewClients() {
    m_lookAtNewClients.reset();
    std::vector<xcb_window_t> windows;
    for (const xcb_window_t window : std::exchange(m_newClients, {}))
        windows.push_back(window);
    for (const pid_t process : m_windows.processesOf(windows))
        m_processes.look(process);
}

void X11Workspace::finishBurst() {
    if (std::exchange(m_isClientListStale, false)) {
        readClientList();
        updateRunning();
    }
    if (std::exchange(m_isActiveWindowStale, false)) followActiveWindow();
}

void X11Workspace::followActiveWindow() {
    if (const auto application = activeApplication()) {
        m_isActiveWindowInDoubt = false;
        activate(*application);
    } else if (!std::exchange(m_isActiveWindowInDoubt, true)) {
        m_scheduler.post(m_lifetime.guard([this] { followActiveWindowAgain(); }));
    }
}

// The manager takes the keyboard from one window before it gives it to the next.
void X11Workspace::followActiveWindowAgain() {
    if (!m_isActiveWindowInDoubt) return;
    followActiveWindow();
    if (std::exchange(m_isActiveWindowInDoubt, false)) m_frontmost.reset();
}

void X11Workspace::activate(const Application& application) {
    m_frontmost = application;
    if (m_activated == application) return;
    m_activated = application;
    m_scheduler.post(m_lifetime.guard([this, told = application.application] {
        m_told = told;
        m_applicationActivated.notify();
    }));
}

void X11Workspace::readClientList() {
    m_clientList = m_connection.property32(m_connection.root(), m_connection.atoms().netClientList);
    std::vector<xcb_window_t> unknown;
    QHash<xcb_window_t, Application> kept;
    for (const xcb_window_t window : m_clientList) {
        const auto known = m_applications.constFind(window);
        if (known == m_applications.cend())
            unknown.push_back(window);
        else
            kept.insert(window, *known);
    }
    m_applications = std::move(kept);
    const auto found = m_windows.read(unknown);
    for (const ClientWindow& window : found)
        m_applications.insert(window.id, applicationOf(window));
    watchProcesses(found);
}

void X11Workspace::watchProcesses(const std::vector<ClientWindow>& newWindows) {
    // The number may have been an earlier process's.
    for (const ClientWindow& window : newWindows)
        if (window.process) m_ends.erase(*window.process);
    std::set<pid_t> processes;
    for (const Application& each : std::as_const(m_applications))
        if (each.process) processes.insert(*each.process);
    std::erase_if(m_ends, [&](const auto& end) { return !processes.contains(end.first); });
    for (const pid_t process : processes)
        m_ends.try_emplace(process, process, [this] { updateRunning(); });
}

bool X11Workspace::hasEnded(const Application& application) const {
    const auto end = application.process ? m_ends.find(*application.process) : m_ends.end();
    return end != m_ends.end() && end->second.hasEnded();
}

QList<X11Workspace::Application> X11Workspace::currentApplications() {
    QList<Application> running;
    for (const xcb_window_t window : m_clientList) {
        const auto application = m_applications.constFind(window);
        if (application == m_applications.cend() || hasEnded(*application)) continue;
        if (!running.contains(*application)) running.append(*application);
    }
    for (const ProcessFacts& process : m_processes.processes()) {
        const Application windowless{.process = {},
                                     .application = m_resolver.applicationOf(process)};
        const bool isKnown =
            std::any_of(running.begin(), running.end(), [&](const Application& each) {
                return each.application.bundleIdentifier == windowless.application.bundleIdentifier;
            });
        if (!isKnown) running.append(windowless);
    }
    return running;
}

void X11Workspace::updateRunning() {
    const QList<Application> before = std::exchange(m_running, currentApplications());
    const auto hasOther = [](const QList<Application>& list, const QList<Application>& other) {
        return std::any_of(list.begin(), list.end(),
                           [&](const Application& each) { return !other.contains(each); });
    };
    const auto tell = [this](Notifier& notifier) {
        m_scheduler.post(m_lifetime.guard([&notifier] { notifier.notify(); }));
    };
    if (hasOther(m_running, before)) tell(m_applicationLaunched);
    if (hasOther(before, m_running)) tell(m_applicationTerminated);
}

X11Workspace::Application X11Workspace::applicationOf(const ClientWindow& window) {
    if (window.process == getpid())
        return {window.process,
                {QGuiApplication::applicationDisplayName(), QGuiApplication::desktopFileName()}};
    return {window.process,
            m_resolver.applicationOf(window.facts,
                                     window.process ? readProcess(*window.process) : std::nullopt)};
}

std::optional<X11Workspace::Application> X11Workspace::activeApplication() {
    const auto property =
        m_connection.property32(m_connection.root(), m_connection.atoms().netActiveWindow);
    if (property.empty() || property.front() == XCB_NONE) return std::nullopt;
    const xcb_window_t window = property.front();
    if (const auto known = m_applications.constFind(window); known != m_applications.cend())
        return *known;
    const auto found = m_windows.read({window});
    if (found.empty()) return std::nullopt;
    // Kept until the next list of windows, which has it or shows that it is gone.
    return *m_applications.insert(window, applicationOf(found.front()));
}
