// The least that a hot key for windows can be: empty windows of override-redirect, without a
// toolkit, that one grabbed combination unmaps and maps all together.

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>
#include <xcb/xcb.h>

namespace {

xcb_window_t showWindow(xcb_connection_t* connection, const xcb_screen_t& screen, int number) {
    // As many of 100 by 60 as fit, 120 by 80 apart; one over the other from there on.
    constexpr int windowsPerRow = 10;
    constexpr int rows = 5;
    const int left = 20 + 120 * (number % windowsPerRow);
    const int top = 20 + 80 * (number / windowsPerRow % rows);
    const std::array<std::uint32_t, 2> values{screen.black_pixel, 1};
    const xcb_window_t window = xcb_generate_id(connection);
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, screen.root,
                      static_cast<std::int16_t>(left), static_cast<std::int16_t>(top), 100, 60, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen.root_visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values.data());
    xcb_map_window(connection, window);
    return window;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fputs("usage: bare_hotkey WINDOWS KEYCODE MODIFIERS\n", stderr);
        return 2;
    }
    xcb_connection_t* const connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection) != 0) return 1;
    const xcb_screen_t& screen = *xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    xcb_grab_key(connection, 0, screen.root, static_cast<std::uint16_t>(std::atoi(argv[3])),
                 static_cast<xcb_keycode_t>(std::atoi(argv[2])), XCB_GRAB_MODE_ASYNC,
                 XCB_GRAB_MODE_ASYNC);
    const int count = std::atoi(argv[1]);
    std::vector<xcb_window_t> windows;
    windows.reserve(static_cast<std::size_t>(count));
    for (int number = 0; number < count; ++number)
        windows.push_back(showWindow(connection, screen, number));
    xcb_flush(connection);
    bool areShown = true;
    while (xcb_generic_event_t* const event = xcb_wait_for_event(connection)) {
        if ((event->response_type & 0x7f) == XCB_KEY_PRESS) {
            for (const xcb_window_t window : windows) {
                if (areShown)
                    xcb_unmap_window(connection, window);
                else
                    xcb_map_window(connection, window);
            }
            xcb_flush(connection);
            areShown = !areShown;
        }
        std::free(event);
    }
    xcb_disconnect(connection);
    return 0;
}
