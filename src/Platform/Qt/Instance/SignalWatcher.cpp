#include "Platform/Qt/Instance/SignalWatcher.h"

#include <QObject>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <sys/eventfd.h>
#include <unistd.h>
#include <utility>

namespace {

constexpr std::array watchedSignals{SIGINT, SIGTERM, SIGHUP};

// A signal handler reaches nothing but globals, and may do little more than write.
std::atomic<int> signalEvent{-1};
static_assert(std::atomic<int>::is_always_lock_free);

void noteSignal(int) {
    const int savedError = errno;
    const std::uint64_t one = 1;
    const auto written = write(signalEvent, &one, sizeof one);
    static_cast<void>(written);
    errno = savedError;
}

bool isIgnored(int signal) {
    struct sigaction current = {};
    return sigaction(signal, nullptr, &current) == 0 && current.sa_handler == SIG_IGN;
}

void setHandler(int signal, void (*handler)(int)) {
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
}

}  // namespace

SignalWatcher::SignalWatcher(std::function<void()> onSignal)
    : m_event(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)), m_notifier(m_event, QSocketNotifier::Read) {
    QObject::connect(&m_notifier, &QSocketNotifier::activated,
                     [event = m_event, onSignal = std::move(onSignal)] {
                         std::uint64_t count = 0;
                         if (read(event, &count, sizeof count) == sizeof count) onSignal();
                     });
    signalEvent = m_event;
    for (const int signal : watchedSignals) {
        if (!isIgnored(signal)) setHandler(signal, noteSignal);
    }
}

SignalWatcher::~SignalWatcher() {
    signalEvent = -1;
    m_notifier.setEnabled(false);
    close(m_event);
}
