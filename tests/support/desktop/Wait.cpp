#include "support/desktop/Wait.h"

#include <QCoreApplication>
#include <QEvent>
#include <stdexcept>
#include <string>
#include <thread>

namespace {

constexpr std::chrono::milliseconds pollInterval{2};

}

bool waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (true) {
        if (QCoreApplication::instance() != nullptr) {
            QCoreApplication::processEvents();
            // Outside an event loop, deleteLater() is only served when asked for.
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
        if (condition()) return true;
        if (std::chrono::steady_clock::now() >= deadline) return false;
        std::this_thread::sleep_for(pollInterval);
    }
}

void requireSoon(const char* what, const std::function<bool()>& condition,
                 std::chrono::milliseconds timeout) {
    if (!waitUntil(condition, timeout)) {
        throw std::runtime_error(std::string("gave up waiting: ") + what);
    }
}
