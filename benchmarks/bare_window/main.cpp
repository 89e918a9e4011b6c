// The least that a draggable window can be: empty, of override-redirect, without a toolkit. It
// follows the pointer with one request for each motion.

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <xcb/xcb.h>

namespace {

struct Position {
    int x = 0;
    int y = 0;
};

xcb_window_t showWindow(xcb_connection_t* connection, Position position, int width, int height) {
    const xcb_screen_t* const screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    const std::array<std::uint32_t, 2> values{1, XCB_EVENT_MASK_BUTTON_PRESS |
                                                     XCB_EVENT_MASK_BUTTON_RELEASE |
                                                     XCB_EVENT_MASK_BUTTON_1_MOTION};
    const xcb_window_t window = xcb_generate_id(connection);
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, screen->root,
                      static_cast<std::int16_t>(position.x), static_cast<std::int16_t>(position.y),
                      static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual,
                      XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values.data());
    xcb_map_window(connection, window);
    xcb_flush(connection);
    return window;
}

void move(xcb_connection_t* connection, xcb_window_t window, Position position) {
    const std::array<std::uint32_t, 2> values{static_cast<std::uint32_t>(position.x),
                                              static_cast<std::uint32_t>(position.y)};
    xcb_configure_window(connection, window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y,
                         values.data());
    xcb_flush(connection);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 5) {
        std::fputs("usage: bare_window X Y WIDTH HEIGHT\n", stderr);
        return 2;
    }
    xcb_connection_t* const connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection) != 0) return 1;
    Position window{std::atoi(argv[1]), std::atoi(argv[2])};
    const xcb_window_t id = showWindow(connection, window, std::atoi(argv[3]), std::atoi(argv[4]));
    Position pointer;
    while (xcb_generic_event_t* const event = xcb_wait_for_event(connection)) {
        const int type = event->response_type & 0x7f;
        if (type == XCB_BUTTON_PRESS || type == XCB_MOTION_NOTIFY) {
            // Both events have the same layout.
            const auto* const motion = reinterpret_cast<xcb_motion_notify_event_t*>(event);
            const Position now{motion->root_x, motion->root_y};
            if (type == XCB_MOTION_NOTIFY) {
                window = {window.x + now.x - pointer.x, window.y + now.y - pointer.y};
                move(connection, id, window);
            }
            pointer = now;
        }
        std::free(event);
    }
    xcb_disconnect(connection);
    return 0;
}
