#include "support/desktop/NeighbourClient.h"

#include "support/desktop/Wait.h"

#include <QSysInfo>
#include <algorithm>
#include <array>
#include <unistd.h>
#include <xcb/shape.h>

using namespace Qt::Literals::StringLiterals;

namespace {

std::uint32_t number(int value) {
    return static_cast<std::uint32_t>(value);
}

std::uint32_t pixelOf(const QColor& color) {
    return color.rgb() & 0xFFFFFFU;
}

}  // namespace

xcb_window_t NeighbourClient::create(const WindowOptions& options) {
    const xcb_window_t window = xcb_generate_id(connection());
    const std::uint32_t values[] = {pixelOf(options.color), options.isOverrideRedirect ? 1U : 0U,
                                    XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_KEY_PRESS};
    const QRect& frame = options.frame;
    xcb_create_window(connection(), XCB_COPY_FROM_PARENT, window, root(),
                      static_cast<std::int16_t>(frame.x()), static_cast<std::int16_t>(frame.y()),
                      static_cast<std::uint16_t>(frame.width()),
                      static_cast<std::uint16_t>(frame.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      screen().root_visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
    setText(window, u"_NET_WM_NAME"_s, options.title);
    const QByteArray name = options.windowClass.toUtf8();
    const QByteArray both = name + '\0' + name + '\0';
    xcb_change_property(connection(), XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS,
                        XCB_ATOM_STRING, 8, number(static_cast<int>(both.size())), both.data());
    setNumbers(window, u"_NET_WM_PID"_s, u"CARDINAL"_s, {number(getpid())});
    const QByteArray machine = QSysInfo::machineHostName().toUtf8();
    xcb_change_property(connection(), XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLIENT_MACHINE,
                        XCB_ATOM_STRING, 8, number(static_cast<int>(machine.size())),
                        machine.data());
    setNumbers(window, u"_MOTIF_WM_HINTS"_s, u"_MOTIF_WM_HINTS"_s, {2, 0, 0, 0, 0});
    if (!options.windowType.isEmpty())
        setNumbers(window, u"_NET_WM_WINDOW_TYPE"_s, u"ATOM"_s, {atom(options.windowType)});
    // A position and size by the user (flags 1 and 2), so that the manager keeps them.
    std::vector<std::uint32_t> hints(18, 0);
    hints[0] = 3;
    setNumbers(window, u"WM_NORMAL_HINTS"_s, u"WM_SIZE_HINTS"_s, hints);
    return window;
}

xcb_window_t NeighbourClient::open(const WindowOptions& options) {
    const xcb_window_t window = create(options);
    map(window);
    requireSoon("a neighbour's window is viewable", [&] { return isViewable(window); });
    return window;
}

xcb_window_t NeighbourClient::openDock(const QRect& frame, Edge edge) {
    const xcb_window_t window = open({.frame = frame,
                                      .color = Qt::darkGray,
                                      .title = u"Dock"_s,
                                      .windowType = u"_NET_WM_WINDOW_TYPE_DOCK"_s});
    const bool isLeft = edge == Edge::left;
    // The thicknesses at the left, right, top and bottom, then for each where it begins and ends.
    std::vector<std::uint32_t> strut(12, 0);
    strut[isLeft ? 0 : 3] =
        number(isLeft ? frame.right() + 1 : screen().height_in_pixels - frame.top());
    strut[isLeft ? 4 : 10] = number(isLeft ? frame.top() : frame.left());
    strut[isLeft ? 5 : 11] = number(isLeft ? frame.bottom() : frame.right());
    setNumbers(window, u"_NET_WM_STRUT_PARTIAL"_s, u"CARDINAL"_s, strut);
    return window;
}

void NeighbourClient::raise(xcb_window_t window) {
    configure(window, XCB_CONFIG_WINDOW_STACK_MODE, {XCB_STACK_MODE_ABOVE});
}

void NeighbourClient::lower(xcb_window_t window) {
    configure(window, XCB_CONFIG_WINDOW_STACK_MODE, {XCB_STACK_MODE_BELOW});
}

void NeighbourClient::move(xcb_window_t window, const QRect& frame) {
    configure(
        window,
        XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
            XCB_CONFIG_WINDOW_HEIGHT,
        {number(frame.x()), number(frame.y()), number(frame.width()), number(frame.height())});
}

void NeighbourClient::map(xcb_window_t window) {
    xcb_map_window(connection(), window);
    roundTrip();
}

void NeighbourClient::unmap(xcb_window_t window) {
    xcb_unmap_window(connection(), window);
    roundTrip();
}

void NeighbourClient::destroy(xcb_window_t window) {
    xcb_destroy_window(connection(), window);
    roundTrip();
}

void NeighbourClient::takeAway(xcb_window_t window) {
    const xcb_window_t hidden = create({});
    xcb_reparent_window(connection(), window, hidden, 0, 0);
    roundTrip();
}

void NeighbourClient::shapeAway(xcb_window_t window) {
    xcb_shape_rectangles(connection(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING,
                         XCB_CLIP_ORDERING_UNSORTED, window, 0, 0, 0, nullptr);
    roundTrip();
}

void NeighbourClient::forge(std::uint8_t type, xcb_window_t window) {
    // What they have in common: who is told, then the window. Of the rest zeros are made: a window
    // at the corner without extent, or one that was taken into no window.
    std::array<std::uint32_t, 8> event{type, root(), window};
    xcb_send_event(connection(), 0, root(), XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(event.data()));
    roundTrip();
}

void NeighbourClient::setColor(xcb_window_t window, const QColor& color) {
    const std::uint32_t pixel = pixelOf(color);
    xcb_change_window_attributes(connection(), window, XCB_CW_BACK_PIXEL, &pixel);
    xcb_clear_area(connection(), 0, window, 0, 0, 0, 0);
    roundTrip();
}

void NeighbourClient::requestState(xcb_window_t window, const QString& state) {
    sendToManager(window, u"_NET_WM_STATE"_s, {1, atom(state), 0, 1, 0});
}

void NeighbourClient::requestActivation(xcb_window_t window) {
    // From a pager (2), whose requests no focus stealing prevention refuses.
    sendToManager(window, u"_NET_ACTIVE_WINDOW"_s, {2, 0, 0, 0, 0});
}

void NeighbourClient::requestWorkspace(int index) {
    sendToManager(root(), u"_NET_NUMBER_OF_DESKTOPS"_s, {2, 0, 0, 0, 0});
    sendToManager(root(), u"_NET_CURRENT_DESKTOP"_s, {number(index), 0, 0, 0, 0});
}

bool NeighbourClient::grabKeyboard() {
    const auto grab =
        reply(xcb_grab_keyboard_reply, xcb_grab_keyboard(connection(), 0, root(), XCB_CURRENT_TIME,
                                                         XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    return grab && grab->status == XCB_GRAB_STATUS_SUCCESS;
}

bool NeighbourClient::grabKey(std::uint8_t keycode, std::uint16_t modifiers) {
    const XcbPtr<xcb_generic_error_t> error(xcb_request_check(
        connection(), xcb_grab_key_checked(connection(), 0, root(), modifiers, keycode,
                                           XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC)));
    return error == nullptr;
}

void NeighbourClient::ungrabKey(std::uint8_t keycode, std::uint16_t modifiers) {
    xcb_ungrab_key(connection(), keycode, root(), modifiers);
    roundTrip();
}

QList<NeighbourInput> NeighbourClient::takeInput() {
    roundTrip();
    QList<NeighbourInput> input;
    while (const XcbPtr<xcb_generic_event_t> event{xcb_poll_for_event(connection())}) {
        const int type = event->response_type & 0x7F;
        if (type != XCB_BUTTON_PRESS && type != XCB_KEY_PRESS) continue;
        // Key presses have the same layout.
        const auto* press = reinterpret_cast<const xcb_button_press_event_t*>(event.get());
        input.append(
            {.window = press->event, .isKey = type == XCB_KEY_PRESS, .detail = press->detail});
    }
    return input;
}

void NeighbourClient::configure(xcb_window_t window, std::uint16_t mask,
                                const std::vector<std::uint32_t>& values) {
    xcb_configure_window(connection(), window, mask, values.data());
    roundTrip();
}

void NeighbourClient::sendToManager(xcb_window_t window, const QString& type,
                                    const std::vector<std::uint32_t>& values) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atom(type);
    std::copy_n(values.begin(), std::min<std::size_t>(values.size(), 5), message.data.data32);
    xcb_send_event(connection(), 0, root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
    roundTrip();
}

bool NeighbourClient::isViewable(xcb_window_t window) const {
    const auto attributes =
        reply(xcb_get_window_attributes_reply, xcb_get_window_attributes(connection(), window));
    return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

bool NeighbourClient::isObscured(xcb_window_t window) const {
    const auto tree = reply(xcb_query_tree_reply, xcb_query_tree(connection(), root()));
    const QRect frame = geometry(window).value_or(QRect());
    if (!tree) return false;
    const xcb_window_t* const first = xcb_query_tree_children(tree.get());
    const xcb_window_t* const end = first + xcb_query_tree_children_length(tree.get());
    return std::any_of(std::find(first, end, window), end, [&](xcb_window_t other) {
        return other != window && isViewable(other) &&
               geometry(other).value_or(QRect()).intersects(frame);
    });
}
