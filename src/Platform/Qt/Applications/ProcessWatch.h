#pragma once

#include "Platform/Qt/Applications/ProcessEvents.h"
#include "Platform/Qt/Applications/ProcessFacts.h"
#include "Reactive/Notifier.h"
#include "Reactive/Scheduler.h"
#include "Reactive/Subscription.h"

#include <QByteArray>
#include <functional>
#include <map>
#include <memory>
#include <sys/types.h>
#include <vector>

/// Keeps an eye on those processes of the user that are of interest: finds those that run already,
/// hears of new ones where the kernel tells, and of the end of each. Processes that were started
/// for another display do not count. What the kernel does not tell, others may: see `look`.
class ProcessWatch {
public:
    using IsOfInterest = std::function<bool(const ProcessFacts&)>;
    enum class KernelEvents { whereAllowed, never };

    /// Looks at all processes at once. `scheduler` must outlive the watch; `display` is as in
    /// $DISPLAY.
    ProcessWatch(Scheduler& scheduler, const QByteArray& display, IsOfInterest isOfInterest,
                 KernelEvents kernelEvents);
    ~ProcessWatch();
    ProcessWatch(const ProcessWatch&) = delete;
    ProcessWatch& operator=(const ProcessWatch&) = delete;

    /// Whether the kernel tells of every new program.
    bool isComplete() const { return m_events != nullptr; }

    /// Those of interest that run, by number.
    std::vector<ProcessFacts> processes() const;
    /// Calls back after `processes` has changed.
    Subscription onChanged(std::function<void()> callback);

    /// Looks at a process that may be of interest, or no longer be. It may be gone.
    void look(pid_t process);

private:
    struct Watched;

    void lookAtAll();
    /// Whether that changed anything.
    bool update(pid_t process);
    bool forget(pid_t process);
    bool isWanted(const ProcessFacts& facts, pid_t process) const;
    void tellIf(bool hasChanged);

    QByteArray m_display;
    IsOfInterest m_isOfInterest;
    std::map<pid_t, std::unique_ptr<Watched>> m_processes;
    Notifier m_changed;
    std::unique_ptr<ProcessEvents> m_events;
};
