#include "support/desktop/WindowManager.h"

#include "support/desktop/NeighbourClient.h"
#include "support/desktop/Wait.h"
#include "support/desktop/XClient.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

WindowManager::WindowManager(const QProcessEnvironment& environment, const QStringList& command)
    : m_former(owner(environment)), m_process(command.first(), command.mid(1), environment) {
    requireSoon("the window manager manages the display", [&] {
        const unsigned window = owner(environment);
        return window != XCB_NONE && window != m_former;
    });
    // A window that comes while it takes over may escape it.
    requireSoon("the window manager manages a window", [&] { return isManaging(environment); });
}

bool WindowManager::isManaging(const QProcessEnvironment& environment) {
    NeighbourClient sample(environment.value(u"DISPLAY"_s));
    const xcb_window_t window = sample.create({.frame = {0, 0, 1, 1}});
    const auto isManaged = [&] {
        // Openbox 3.6 can go to sleep on a request that came while it started, until any other
        // event wakes it.
        sample.setNumbers(sample.root(), u"_VEYLA_TEST_WAKE"_s, u"CARDINAL"_s, {0});
        const auto managed = sample.numbersOf(sample.root(), u"_NET_CLIENT_LIST"_s);
        return std::find(managed.begin(), managed.end(), window) != managed.end();
    };
    sample.map(window);
    if (!waitUntil(isManaged, std::chrono::seconds(1))) return false;
    sample.destroy(window);
    return waitUntil([&] { return !isManaged(); });
}

unsigned WindowManager::owner(const QProcessEnvironment& environment) {
    return XClient(environment.value(u"DISPLAY"_s)).selectionOwner(u"WM_S0"_s);
}
