#include "support/desktop/WindowManager.h"

#include "support/desktop/NeighbourClient.h"
#include "support/desktop/Wait.h"
#include "support/desktop/XClient.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

WindowManager::WindowManager(const QProcessEnvironment& environment, const QStringList& command)
    : m_former(supportingWindow(environment)),
      m_process(command.first(), command.mid(1), environment) {
    requireSoon("the window manager manages the display", [&] {
        const unsigned window = supportingWindow(environment);
        return window != XCB_NONE && window != m_former;
    });
    // Openbox 3.6 can go to sleep on a request that came while it started, until any other event
    // wakes it.
    NeighbourClient sample(environment.value(u"DISPLAY"_s));
    const xcb_window_t window = sample.create({.frame = {0, 0, 1, 1}});
    const QString clients = u"_NET_CLIENT_LIST"_s;
    const auto isManaged = [&] {
        sample.setNumbers(sample.root(), u"_VEYLA_TEST_WAKE"_s, u"CARDINAL"_s, {0});
        const std::vector<std::uint32_t> managed = sample.numbersOf(sample.root(), clients);
        return std::find(managed.begin(), managed.end(), window) != managed.end();
    };
    sample.map(window);
    requireSoon("the window manager manages a window", isManaged);
    sample.destroy(window);
    requireSoon("the window manager forgets a window", [&] { return !isManaged(); });
}

unsigned WindowManager::supportingWindow(const QProcessEnvironment& environment) {
    const QString property = u"_NET_SUPPORTING_WM_CHECK"_s;
    const XClient client(environment.value(u"DISPLAY"_s));
    const std::vector<std::uint32_t> named = client.numbersOf(client.root(), property);
    // A manager that has died may leave the property of the root behind, but not its window.
    return !named.empty() && client.numbersOf(named.front(), property) == named
               ? named.front()
               : static_cast<unsigned>(XCB_NONE);
}
