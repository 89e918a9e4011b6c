#include "Platform/X11/RawInput.h"

#include <utility>
#include <xcb/xinput.h>

namespace {

// Since this version raw events come during the grabs of other programs, too.
constexpr uint16_t majorVersion = 2;
constexpr uint16_t minorVersion = 1;

/// One device and one word of event mask behind it, as the request wants them.
struct EventMask {
    xcb_input_event_mask_t header;
    uint32_t events;
};

struct Request {
    /// A client has one mask for each device: each kind needs a place of its own.
    xcb_input_device_id_t device;
    uint32_t mask;
    uint16_t eventType;
};

Request requestOf(RawInput::Kind kind) {
    if (kind == RawInput::Kind::buttonPress)
        return {XCB_INPUT_DEVICE_ALL_MASTER, XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS,
                XCB_INPUT_RAW_BUTTON_PRESS};
    return {XCB_INPUT_DEVICE_ALL, XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE,
            XCB_INPUT_RAW_KEY_RELEASE};
}

}  // namespace

Subscription RawInput::listen(std::function<void(uint32_t)> callback) {
    if (!m_extension && m_connection.hasExtension(xcb_input_id)) {
        xcbReply(xcb_input_xi_query_version_reply, m_connection.get(),
                 xcb_input_xi_query_version(m_connection, majorVersion, minorVersion));
        m_extension = xcb_get_extension_data(m_connection, &xcb_input_id)->major_opcode;
    }
    if (!m_extension) return {};
    m_callback = std::move(callback);
    select(true);
    return Subscription(m_lifetime.guard([this] { select(false); }));
}

void RawInput::select(bool isWanted) {
    const Request request = requestOf(m_kind);
    const EventMask mask{{request.device, 1}, isWanted ? request.mask : 0};
    xcb_input_xi_select_events(m_connection, m_connection.root(), 1, &mask.header);
    m_connection.flush();
    m_events =
        isWanted
            ? m_connection.onEvent([this](const xcb_generic_event_t& event) { handleEvent(event); })
            : Subscription();
}

void RawInput::handleEvent(const xcb_generic_event_t& event) {
    if ((event.response_type & 0x7f) != XCB_GE_GENERIC) return;
    const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
    if (generic.extension != m_extension || generic.event_type != requestOf(m_kind).eventType)
        return;
    // All raw events of keys and buttons have one layout. Whoever is called may stop listening.
    const auto callback = m_callback;
    callback(reinterpret_cast<const xcb_input_raw_button_press_event_t&>(event).detail);
}
