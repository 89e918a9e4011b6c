#include "Platform/WriteSignals.h"

#include <array>
#include <csignal>

namespace {

constexpr std::array writeSignals{SIGPIPE, SIGXFSZ};

void absorb(int) {}

}  // namespace

void absorbWriteSignals() {
    for (const int signal : writeSignals) {
        struct sigaction former = {};
        if (sigaction(signal, nullptr, &former) != 0 || former.sa_handler == SIG_IGN) continue;
        struct sigaction action = {};
        action.sa_handler = absorb;
        action.sa_flags = SA_RESTART;
        sigemptyset(&action.sa_mask);
        sigaction(signal, &action, nullptr);
    }
}
