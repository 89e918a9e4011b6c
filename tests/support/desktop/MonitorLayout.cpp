#include "support/desktop/MonitorLayout.h"

#include <array>
#include <stdexcept>
#include <sys/uio.h>
#include <xcb/randr.h>
#include <xcb/xcbext.h>

namespace {

/// Sends SetMonitor; whether the server took it. The library's own function (1.15) sends a part
/// that it never set, so the request is put together here: its fixed part, then the monitor.
bool sendSetMonitor(const XClient& client, const std::vector<std::uint32_t>& monitor) {
    xcb_randr_set_monitor_request_t request{};
    request.window = client.root();
    // The library uses the two entries before the first for itself.
    std::array<iovec, 4> parts{};
    parts[2] = {&request, sizeof request};
    std::vector<std::uint32_t> content = monitor;
    parts[3] = {content.data(), content.size() * sizeof content.front()};
    const xcb_protocol_request_t protocol{2, &xcb_randr_id, XCB_RANDR_SET_MONITOR, 1};
    const unsigned sequence =
        xcb_send_request(client.connection(), XCB_REQUEST_CHECKED, parts.data() + 2, &protocol);
    const XcbPtr<xcb_generic_error_t> error(xcb_request_check(client.connection(), {sequence}));
    return error == nullptr && client.isConnected();
}

std::vector<xcb_randr_output_t> serverOutputs(const XClient& client) {
    const auto reply =
        client.reply(xcb_randr_get_screen_resources_current_reply,
                     xcb_randr_get_screen_resources_current(client.connection(), client.root()));
    if (!reply) return {};
    const xcb_randr_output_t* first = xcb_randr_get_screen_resources_current_outputs(reply.get());
    return {first, first + xcb_randr_get_screen_resources_current_outputs_length(reply.get())};
}

}  // namespace

MonitorLayout::~MonitorLayout() {
    removeAllBut({});
}

void MonitorLayout::set(const QList<Monitor>& monitors) {
    // Nobody sees a layout half made.
    xcb_grab_server(connection());
    removeAllBut(monitors);
    const QList<Monitor> kept = current();
    bool isAccepted = true;
    for (const Monitor& monitor : monitors) {
        const bool isFirst = monitor == monitors.first();
        if (!kept.contains(monitor)) isAccepted = isAccepted && add(monitor, isFirst);
    }
    xcb_ungrab_server(connection());
    roundTrip();
    if (!isAccepted) throw std::runtime_error("the X server refuses the monitors");
}

bool MonitorLayout::add(const Monitor& monitor, bool isPrimary) {
    // The primary one takes the server's outputs, which ends the monitor that they make by
    // themselves.
    const std::vector<xcb_randr_output_t> outputs =
        isPrimary ? serverOutputs(*this) : std::vector<xcb_randr_output_t>();
    std::vector<std::uint32_t> request(sizeof(xcb_randr_monitor_info_t) / 4);
    auto* info = reinterpret_cast<xcb_randr_monitor_info_t*>(request.data());
    info->name = atom(monitor.name);
    info->primary = isPrimary ? 1 : 0;
    info->nOutput = static_cast<std::uint16_t>(outputs.size());
    info->x = static_cast<std::int16_t>(monitor.frame.x());
    info->y = static_cast<std::int16_t>(monitor.frame.y());
    info->width = static_cast<std::uint16_t>(monitor.frame.width());
    info->height = static_cast<std::uint16_t>(monitor.frame.height());
    // 96 dots an inch.
    info->width_in_millimeters = static_cast<std::uint32_t>(monitor.frame.width() * 254 / 960);
    info->height_in_millimeters = static_cast<std::uint32_t>(monitor.frame.height() * 254 / 960);
    request.insert(request.end(), outputs.begin(), outputs.end());
    return sendSetMonitor(*this, request);
}

QList<MonitorLayout::Monitor> MonitorLayout::current() const {
    const auto reply =
        this->reply(xcb_randr_get_monitors_reply, xcb_randr_get_monitors(connection(), root(), 1));
    QList<Monitor> monitors;
    if (!reply) return monitors;
    for (auto entry = xcb_randr_get_monitors_monitors_iterator(reply.get()); entry.rem > 0;
         xcb_randr_monitor_info_next(&entry)) {
        const xcb_randr_monitor_info_t& info = *entry.data;
        monitors.append({atomName(info.name), QRect(info.x, info.y, info.width, info.height)});
    }
    return monitors;
}

void MonitorLayout::removeAllBut(const QList<Monitor>& kept) {
    const QList<Monitor> present = current();
    for (const Monitor& monitor : present) {
        const bool isPrimary = monitor == present.first();
        const bool becomesPrimary = !kept.isEmpty() && monitor == kept.first();
        // The server's own monitor cannot be deleted; that error means nothing.
        if (!kept.contains(monitor) || isPrimary != becomesPrimary) {
            xcb_randr_delete_monitor(connection(), root(), atom(monitor.name));
        }
    }
    roundTrip();
}
