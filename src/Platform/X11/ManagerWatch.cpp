#include "Platform/X11/ManagerWatch.h"

#include <algorithm>
#include <utility>
#include <vector>
#include <xcb/xfixes.h>

ManagerWatch::ManagerWatch(XcbConnection& connection, SystemLog& log)
    : m_connection(connection),
      m_manager(connection, connection.atoms().wmSelection),
      m_compositor(connection, connection.atoms().compositorSelection) {
    if (!m_connection.hasExtension(xcb_xfixes_id))
        log.write(QStringLiteral(
            "Veyla cannot see window managers come and go: the X server lacks XFIXES"));
    m_connection.selectRootEvents(XCB_EVENT_MASK_PROPERTY_CHANGE);
    m_subscriptions.keep(m_connection.onEvent([this](const xcb_generic_event_t& event) {
        if (event.response_type != XCB_PROPERTY_NOTIFY) return;
        const auto& property = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (property.window == m_connection.root() &&
            property.atom == m_connection.atoms().netSupportingWmCheck)
            m_paintOrder = readPaintOrder();
    }));
    m_subscriptions.keep(
        m_manager.owner().subscribe([this](xcb_window_t) { m_paintOrder = readPaintOrder(); }));
    m_subscriptions.keep(
        m_compositor.owner().subscribe([this, isFirst = true](xcb_window_t) mutable {
            if (!std::exchange(isFirst, false) && onCompositorReplaced) onCompositorReplaced();
        }));
}

// Nothing when there is a manager and it has not told what it is.
std::optional<PaintOrder> ManagerWatch::readPaintOrder() const {
    if (m_manager.owner().newest() == XCB_NONE) return PaintOrder::stacked;
    const QByteArray name = managerName();
    if (name.contains("Mutter") || name.contains("GNOME Shell") || name.contains("Muffin"))
        return PaintOrder::mapped;
    if (name.contains("KWin")) return PaintOrder::stackedUntilMapped;
    if (!name.isEmpty()) return PaintOrder::stacked;
    // A mutter that is replaced by another deletes the name that the new one has just set.
    if (hasGuardWindowOfMutter()) return PaintOrder::mapped;
    return std::nullopt;
}

QByteArray ManagerWatch::managerName() const {
    const X11Atoms& atoms = m_connection.atoms();
    const auto check = m_connection.property32(m_connection.root(), atoms.netSupportingWmCheck);
    return check.empty() ? QByteArray() : m_connection.property8(check.front(), atoms.netWmName);
}

bool ManagerWatch::hasGuardWindowOfMutter() const {
    const std::vector<xcb_window_t> windows = m_connection.children(m_connection.root());
    std::vector<xcb_get_property_cookie_t> names;
    names.reserve(windows.size());
    std::transform(windows.begin(), windows.end(), std::back_inserter(names),
                   [this](xcb_window_t window) {
                       return m_connection.requestProperty(window, XCB_ATOM_WM_NAME);
                   });
    // Every answer is taken, whatever the others say.
    return std::count_if(names.begin(), names.end(), [this](auto request) {
               return m_connection.takeProperty8(request) == "mutter guard window";
           }) > 0;
}
