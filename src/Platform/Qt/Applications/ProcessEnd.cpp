#include "Platform/Qt/Applications/ProcessEnd.h"

#include <cerrno>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

ProcessEnd::ProcessEnd(pid_t process, std::function<void()> onEnd)
    // The C library's own name for this call cannot be linked from C++ before its version 2.37.
    : m_handle(static_cast<int>(syscall(SYS_pidfd_open, process, 0))) {
    if (m_handle < 0) {
        m_hasEnded = errno == ESRCH;
        return;
    }
    m_notifier.reset(new QSocketNotifier(m_handle, QSocketNotifier::Read));
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated,
                     [this, onEnd = std::move(onEnd)] {
                         m_hasEnded = true;
                         m_notifier->setEnabled(false);
                         const auto pinned = onEnd;
                         pinned();
                     });
}

ProcessEnd::~ProcessEnd() {
    m_notifier.reset();
    if (m_handle >= 0) close(m_handle);
}
