#pragma once

#include <QSocketNotifier>
#include <functional>
#include <memory>
#include <sys/types.h>

/// Tells when a process ends. It refers to the process that has the number now, never to a later
/// one.
class ProcessEnd {
public:
    /// `onEnd` comes from the main loop, once; it may destroy the object. A process that is gone
    /// already is not told of, see `hasEnded`.
    ProcessEnd(pid_t process, std::function<void()> onEnd);
    ~ProcessEnd();
    ProcessEnd(const ProcessEnd&) = delete;
    ProcessEnd& operator=(const ProcessEnd&) = delete;

    /// False also for a process that cannot be watched, as when there are no handles to spare.
    bool hasEnded() const { return m_hasEnded; }

private:
    struct DeleteLater {
        // The notifier may be the one that is calling.
        void operator()(QSocketNotifier* notifier) const {
            notifier->setEnabled(false);
            notifier->deleteLater();
        }
    };

    int m_handle;
    bool m_hasEnded = false;
    std::unique_ptr<QSocketNotifier, DeleteLater> m_notifier;
};
