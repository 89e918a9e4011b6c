#include "Platform/X11/X11PointerPresses.h"

#include <utility>
#include <xcb/xinput.h>

namespace {

// Since this version raw events come during the grabs of other programs, too.
constexpr uint16_t majorVersion = 2;
constexpr uint16_t minorVersion = 1;

constexpr uint32_t primaryButton = 1;
// Up, down, left and right.
constexpr uint32_t firstWheelButton = 4;
constexpr uint32_t lastWheelButton = 7;

/// One device and one word of event mask behind it, as the request wants them.
struct EventMask {
    xcb_input_event_mask_t header;
    uint32_t events;
};

}  // namespace

X11PointerPresses::X11PointerPresses(XcbConnection& connection) : m_connection(connection) {}

Subscription X11PointerPresses::onPress(std::function<void(Button)> callback) {
    if (!m_extension && m_connection.hasExtension(xcb_input_id)) {
        xcbReply(xcb_input_xi_query_version_reply, m_connection.get(),
                 xcb_input_xi_query_version(m_connection, majorVersion, minorVersion));
        m_extension = xcb_get_extension_data(m_connection, &xcb_input_id)->major_opcode;
    }
    if (!m_extension) return {};
    if (m_subscribers++ == 0) select(true);
    return Subscription(m_lifetime.guard(
        [this, subscription = std::make_shared<Subscription>(m_presses.subscribe(
                   [this, callback = std::move(callback)] { callback(m_pressedButton); }))] {
            subscription->reset();
            if (--m_subscribers == 0) select(false);
        }));
}

void X11PointerPresses::select(bool isWanted) {
    const EventMask mask{{XCB_INPUT_DEVICE_ALL_MASTER, 1},
                         isWanted ? uint32_t{XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS} : 0};
    xcb_input_xi_select_events(m_connection, m_connection.root(), 1, &mask.header);
    m_connection.flush();
    m_events =
        isWanted
            ? m_connection.onEvent([this](const xcb_generic_event_t& event) { handleEvent(event); })
            : Subscription();
}

void X11PointerPresses::handleEvent(const xcb_generic_event_t& event) {
    if ((event.response_type & 0x7f) != XCB_GE_GENERIC) return;
    const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
    if (generic.extension != m_extension || generic.event_type != XCB_INPUT_RAW_BUTTON_PRESS)
        return;
    const auto& press = reinterpret_cast<const xcb_input_raw_button_press_event_t&>(event);
    if (press.detail >= firstWheelButton && press.detail <= lastWheelButton) return;
    m_pressedButton = press.detail == primaryButton ? Button::primary : Button::other;
    m_presses.notify();
}
