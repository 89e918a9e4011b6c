#include "Platform/X11/X11WindowManagement.h"

#include <algorithm>
#include <array>

namespace {

// WM_STATE, ICCCM 2.0.
constexpr uint32_t withdrawnState = 0;
// _NET_WM_STATE and _NET_ACTIVE_WINDOW, EWMH 1.5.
constexpr uint32_t stateRemove = 0;
constexpr uint32_t stateAdd = 1;
constexpr uint32_t sourceApplication = 1;
// A window manager may refuse an application that the user did not touch last; a hot key or the
// tray is the user's wish, as a click in a pager is.
constexpr uint32_t sourcePager = 2;

}  // namespace

void X11WindowManagement::setIsListed(quint64 window, bool isListed) {
    const auto target = static_cast<xcb_window_t>(window);
    const X11Atoms& atoms = m_connection.atoms();
    // A window that was hidden a moment ago still counts as managed, and the manager forgets what
    // it is asked for it; so the property is right in any case when the window is shown again.
    writeState(target, isListed);
    // Only the window manager may change the state of a window that it manages. When it stops to do
    // so, it removes this property or sets it to "withdrawn".
    const auto state = m_connection.property32(target, atoms.wmState);
    if (!state.empty() && state.front() != withdrawnState)
        send(target, atoms.netWmState,
             {isListed ? stateRemove : stateAdd, atoms.netWmStateSkipTaskbar,
              atoms.netWmStateSkipPager, sourceApplication, 0});
}

void X11WindowManagement::writeState(xcb_window_t window, bool isListed) {
    const X11Atoms& atoms = m_connection.atoms();
    const std::array hidden{atoms.netWmStateSkipTaskbar, atoms.netWmStateSkipPager};
    auto states = m_connection.property32(window, atoms.netWmState);
    std::erase_if(states, [&](xcb_atom_t state) {
        return std::find(hidden.begin(), hidden.end(), state) != hidden.end();
    });
    if (!isListed) states.insert(states.end(), hidden.begin(), hidden.end());
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, atoms.netWmState,
                        XCB_ATOM_ATOM, 32, static_cast<uint32_t>(states.size()), states.data());
    // The toolkit reads it on a connection of its own when it shows the window.
    xcbReply(xcb_get_input_focus_reply, m_connection.get(), xcb_get_input_focus(m_connection));
}

void X11WindowManagement::activate(quint64 window) {
    send(static_cast<xcb_window_t>(window), m_connection.atoms().netActiveWindow,
         {sourcePager, XCB_CURRENT_TIME, XCB_NONE, 0, 0});
}

void X11WindowManagement::send(xcb_window_t window, xcb_atom_t type,
                               const std::array<uint32_t, 5>& data) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = type;
    std::copy(data.begin(), data.end(), message.data.data32);
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): as the protocol wants it
    const auto* const bytes = reinterpret_cast<const char*>(&message);
    xcb_send_event(m_connection, 0, m_connection.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   bytes);
    m_connection.flush();
}
