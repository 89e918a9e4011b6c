#pragma once

#include "Reactive/Scheduler.h"
#include "Reactive/Subscription.h"

#include <QElapsedTimer>
#include <QList>
#include <QSocketNotifier>
#include <functional>
#include <memory>
#include <sys/types.h>

/// Hears from the kernel of every program that any process starts. Linux lets ordinary users listen
/// since version 6.6, before that only administrators, and nobody from within a container that has
/// process numbers of its own.
class ProcessEvents {
public:
    /// What is told: the processes that run a program since the last call, in order, each once;
    /// nothing when some were missed, and only looking at all processes helps. Some may have ended.
    using Callback = std::function<void(const std::optional<QList<pid_t>>&)>;

    /// Null where the kernel does not tell. While programs start in rapid succession the callback
    /// comes twice a second at most. `scheduler` must outlive the object.
    static std::unique_ptr<ProcessEvents> open(Scheduler& scheduler, Callback callback);
    ~ProcessEvents();
    ProcessEvents(const ProcessEvents&) = delete;
    ProcessEvents& operator=(const ProcessEvents&) = delete;

private:
    ProcessEvents(int socket, Scheduler& scheduler, Callback callback);
    void readSoon();
    void readNow();

    int m_socket;
    Scheduler& m_scheduler;
    Callback m_callback;
    QElapsedTimer m_sinceReading;
    QSocketNotifier m_notifier;
    Subscription m_pause;
};
