#include "benchmarks/support/DisplayObserver.h"

#include <poll.h>
#include <stdexcept>
#include <xcb/xtest.h>

DisplayObserver::DisplayObserver(const QString& displayName) : XTestInput(displayName) {
    const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection(), root(), XCB_CW_EVENT_MASK, &events);
    roundTrip();
}

xcb_window_t DisplayObserver::waitForMap() {
    return waitFor<xcb_map_notify_event_t>(XCB_MAP_NOTIFY, XCB_NONE).window;
}

void DisplayObserver::waitForMaps(int count) {
    while (count-- > 0)
        waitForMap();
}

DisplayObserver::Clock::duration DisplayObserver::timeUntilUnmapped(std::uint8_t keycode,
                                                                    int count) {
    const auto start = Clock::now();
    xcb_test_fake_input(connection(), XCB_KEY_PRESS, keycode, XCB_CURRENT_TIME, root(), 0, 0, 0);
    xcb_flush(connection());
    while (count-- > 0)
        waitFor<xcb_unmap_notify_event_t>(XCB_UNMAP_NOTIFY, XCB_NONE);
    return Clock::now() - start;
}

DisplayObserver::Clock::duration DisplayObserver::timeUntilMoved(xcb_window_t window,
                                                                 QPoint pointer) {
    return timeUntilConfigured(window, [&] {
        xcb_test_fake_input(connection(), XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, root(),
                            static_cast<std::int16_t>(pointer.x()),
                            static_cast<std::int16_t>(pointer.y()), 0);
    });
}

DisplayObserver::Clock::duration DisplayObserver::timeUntilConfigured(
    xcb_window_t window, const std::function<void()>& requests) {
    const auto start = Clock::now();
    requests();
    xcb_flush(connection());
    waitFor<xcb_configure_notify_event_t>(XCB_CONFIGURE_NOTIFY, window);
    return Clock::now() - start;
}

void DisplayObserver::forgetEvents() {
    roundTrip();
    while (const XcbPtr<xcb_generic_event_t> event{xcb_poll_for_event(connection())}) {
    }
}

template <typename Event>
Event DisplayObserver::waitFor(std::uint8_t type, xcb_window_t window) {
    constexpr std::chrono::duration<int, std::milli> patience{10000};
    while (isConnected()) {
        const XcbPtr<xcb_generic_event_t> event(xcb_poll_for_event(connection()));
        if (event) {
            if ((event->response_type & 0x7f) != type) continue;
            const auto& wanted = reinterpret_cast<const Event&>(*event);
            if (window == XCB_NONE || wanted.window == window) return wanted;
            continue;
        }
        pollfd socket{xcb_get_file_descriptor(connection()), POLLIN, 0};
        if (poll(&socket, 1, patience.count()) == 0) break;
    }
    throw std::runtime_error("a window did not do what was waited for");
}
