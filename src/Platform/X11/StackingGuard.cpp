#include "Platform/X11/StackingGuard.h"

#include <algorithm>
#include <unordered_set>
#include <utility>
#include <xcb/xfixes.h>

namespace {

// More raises than this in a second mean that another program insists on lying above.
constexpr std::size_t mostRaisesPerSecond = 40;
constexpr std::chrono::seconds contestWindow{1};
// How long to wait before the next raise in a contest.
constexpr std::chrono::milliseconds contestDelay{50};

}  // namespace

StackingGuard::StackingGuard(XcbConnection& connection, Scheduler& scheduler, SystemLog& log,
                             Client& client)
    : m_connection(connection), m_scheduler(scheduler), m_log(log), m_client(client) {
    m_connection.selectRootEvents(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
    watchManagers();
    readManagerName();
    m_subscriptions.keep(
        m_connection.onEvent([this](const xcb_generic_event_t& event) { handleEvent(event); }));
    m_subscriptions.keep(m_connection.onBurstEnd([this] {
        if (std::exchange(m_needsRemake, false) && onManagerReplaced) onManagerReplaced();
        if (std::exchange(m_needsAudit, false)) audit();
    }));
}

void StackingGuard::watchManagers() {
    if (!m_connection.hasExtension(xcb_xfixes_id)) {
        m_log.write(QStringLiteral(
            "Veyla cannot see window managers come and go: the X server lacks XFIXES"));
        return;
    }
    const auto version = xcbReply(xcb_xfixes_query_version_reply, m_connection.get(),
                                  xcb_xfixes_query_version(m_connection, 5, 0));
    m_selectionEvent =
        static_cast<uint8_t>(xcb_get_extension_data(m_connection, &xcb_xfixes_id)->first_event +
                             XCB_XFIXES_SELECTION_NOTIFY);
    const X11Atoms& atoms = m_connection.atoms();
    for (const xcb_atom_t selection : {atoms.wmSelection, atoms.compositorSelection})
        xcb_xfixes_select_selection_input(
            m_connection, m_connection.root(), selection,
            XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
}

void StackingGuard::readManagerName() {
    const X11Atoms& atoms = m_connection.atoms();
    const auto check = m_connection.property32(m_connection.root(), atoms.netSupportingWmCheck);
    const QByteArray name =
        check.empty() ? QByteArray() : m_connection.property8(check.front(), atoms.netWmName);
    // Paints override-redirect windows in the order in which they were mapped.
    m_mapsDecideOrder = name.contains("Mutter") || name.contains("GNOME Shell");
}

void StackingGuard::handleEvent(const xcb_generic_event_t& event) {
    const uint8_t type = event.response_type & 0x7f;
    const xcb_window_t root = m_connection.root();
    switch (type) {
        case XCB_MAP_NOTIFY:
            m_needsAudit |= reinterpret_cast<const xcb_map_notify_event_t&>(event).event == root;
            break;
        case XCB_CONFIGURE_NOTIFY:
            m_needsAudit |=
                canChangeOrder(reinterpret_cast<const xcb_configure_notify_event_t&>(event));
            break;
        case XCB_DESTROY_NOTIFY:
            m_siblings.erase(reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window);
            break;
        case XCB_CIRCULATE_NOTIFY:
        case XCB_REPARENT_NOTIFY:
            m_needsAudit = true;
            break;
        case XCB_PROPERTY_NOTIFY: {
            const auto& property = reinterpret_cast<const xcb_property_notify_event_t&>(event);
            if (property.window == root &&
                property.atom == m_connection.atoms().netSupportingWmCheck)
                readManagerName();
            break;
        }
        default:
            break;
    }
    if (m_selectionEvent != 0 && type == m_selectionEvent) {
        const auto& change = reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(event);
        m_needsRemake |= change.owner != XCB_NONE;
    }
}

bool StackingGuard::canChangeOrder(const xcb_configure_notify_event_t& event) {
    if (event.event != m_connection.root()) return false;
    if (!m_connection.owns(event.window)) return true;
    // A mask that is dragged stays where it is in the order, which matters only when it may come
    // to lie under something; one that another program lowers or raises does not.
    const auto [known, isNew] = m_siblings.try_emplace(event.window, event.above_sibling);
    const bool isMoved =
        isNew || std::exchange(known->second, event.above_sibling) != event.above_sibling;
    return isMoved || m_isSomethingAbove;
}

void StackingGuard::audit() {
    const auto shown = m_client.shownWindows();
    if (shown.empty() || m_delayedAudit.isActive() || !isCovered(shown)) return;
    if (!isContested()) {
        raise();
        return;
    }
    m_delayedAudit = m_scheduler.after(contestDelay, [this] {
        m_delayedAudit.reset();
        const auto stillShown = m_client.shownWindows();
        if (!stillShown.empty() && isCovered(stillShown)) raise();
        m_connection.flush();
    });
}

void StackingGuard::raise() {
    m_recentRaises.push_back(Clock::now());
    m_client.raiseShownWindows(m_mapsDecideOrder);
}

bool StackingGuard::isContested() {
    const auto windowStart = Clock::now() - contestWindow;
    while (!m_recentRaises.empty() && m_recentRaises.front() < windowStart)
        m_recentRaises.pop_front();
    // Once slowed down, a contest goes on at the slower rate until it is quiet for a while.
    const std::size_t limit = m_hasLoggedContest ? 2 : mostRaisesPerSecond;
    if (m_recentRaises.size() < limit) {
        if (m_recentRaises.empty()) m_hasLoggedContest = false;
        return false;
    }
    if (!std::exchange(m_hasLoggedContest, true)) {
        const QByteArray name =
            m_connection.property8(m_lastIntruder, m_connection.atoms().netWmName);
        m_log.write(QStringLiteral("Veyla: another program keeps raising its window 0x%1 \"%2\" "
                                   "above the masks; raising them less often from now on")
                        .arg(m_lastIntruder, 0, 16)
                        .arg(QString::fromUtf8(name)));
    }
    return true;
}

std::vector<xcb_window_t> StackingGuard::topLevelWindows() const {
    const auto tree = xcbReply(xcb_query_tree_reply, m_connection.get(),
                               xcb_query_tree(m_connection, m_connection.root()));
    if (!tree) return {};
    const xcb_window_t* const children = xcb_query_tree_children(tree.get());
    return {children, children + xcb_query_tree_children_length(tree.get())};
}

bool StackingGuard::isCovered(const std::vector<xcb_window_t>& shown) const {
    const auto windows = topLevelWindows();
    const std::unordered_set<xcb_window_t> masks(shown.begin(), shown.end());
    const auto isMask = [&](xcb_window_t window) { return masks.contains(window); };

    const auto lowest = std::find_if(windows.begin(), windows.end(), isMask);
    std::vector<xcb_window_t> order;
    std::copy_if(lowest, windows.end(), std::back_inserter(order), isMask);
    if (order != shown) return true;

    const bool isNothingBetween =
        windows.end() - lowest == static_cast<std::ptrdiff_t>(shown.size());
    m_isSomethingAbove = !isNothingBetween;
    if (isNothingBetween) return false;
    std::vector<QRect> rects;
    for (const xcb_window_t mask : shown) {
        const auto geometry = xcbReply(xcb_get_geometry_reply, m_connection.get(),
                                       xcb_get_geometry(m_connection, mask));
        if (geometry)
            rects.emplace_back(geometry->x, geometry->y, geometry->width, geometry->height);
    }
    return std::any_of(lowest, windows.end(), [&](xcb_window_t window) {
        return !isMask(window) && !m_client.isOwnWindow(window) && isVisibleAbove(window, rects);
    });
}

bool StackingGuard::isVisibleAbove(xcb_window_t window, const std::vector<QRect>& masks) const {
    const auto attributesCookie = xcb_get_window_attributes(m_connection, window);
    const auto geometryCookie = xcb_get_geometry(m_connection, window);
    const auto attributes =
        xcbReply(xcb_get_window_attributes_reply, m_connection.get(), attributesCookie);
    const auto geometry = xcbReply(xcb_get_geometry_reply, m_connection.get(), geometryCookie);
    const bool isVisible = attributes && geometry &&
                           attributes->map_state == XCB_MAP_STATE_VIEWABLE &&
                           attributes->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT;
    if (!isVisible) return false;

    const int border = 2 * geometry->border_width;
    const QRect rect(geometry->x, geometry->y, geometry->width + border, geometry->height + border);
    const bool isCovering = std::any_of(masks.begin(), masks.end(),
                                        [&](const QRect& mask) { return mask.intersects(rect); });
    if (isCovering) m_lastIntruder = window;
    return isCovering;
}
