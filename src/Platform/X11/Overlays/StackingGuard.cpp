#include "Platform/X11/Overlays/StackingGuard.h"

#include <QRect>
#include <algorithm>
#include <unordered_set>
#include <utility>

namespace {

// More raises than this in a second mean that another program insists on lying above.
constexpr std::size_t mostRaisesPerSecond = 40;
constexpr std::chrono::seconds contestWindow{1};
// How long to wait before the next raise in a contest.
constexpr std::chrono::milliseconds contestDelay{50};

/// What was asked about a window, to be taken later, so that many requests travel together.
struct WindowRequest {
    WindowRequest(xcb_connection_t* connection, xcb_window_t asked)
        : window(asked),
          attributes(xcb_get_window_attributes(connection, asked)),
          geometry(xcb_get_geometry(connection, asked)) {}

    xcb_window_t window;
    xcb_get_window_attributes_cookie_t attributes;
    xcb_get_geometry_cookie_t geometry;
};

struct WindowState {
    WindowState(xcb_connection_t* connection, const WindowRequest& request) {
        const auto attributes =
            xcbReply(xcb_get_window_attributes_reply, connection, request.attributes);
        const auto geometry = xcbReply(xcb_get_geometry_reply, connection, request.geometry);
        if (!attributes || !geometry) return;
        const int border = 2 * geometry->border_width;
        rect = {geometry->x, geometry->y, geometry->width + border, geometry->height + border};
        isVisible = attributes->map_state == XCB_MAP_STATE_VIEWABLE &&
                    attributes->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT;
    }

    QRect rect;
    bool isVisible = false;
};

}  // namespace

StackingGuard::StackingGuard(XcbConnection& connection, Scheduler& scheduler, SystemLog& log,
                             Client& client)
    : m_connection(connection), m_scheduler(scheduler), m_log(log), m_client(client) {
    m_connection.selectRootEvents(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
    m_subscriptions.keep(
        m_connection.onEvent([this](const xcb_generic_event_t& event) { handleEvent(event); }));
    m_subscriptions.keep(m_connection.onBurstEnd([this] {
        if (std::exchange(m_needsAudit, false)) audit();
    }));
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
            m_siblings.clear();
            m_needsAudit = true;
            break;
        default:
            break;
    }
}

bool StackingGuard::canChangeOrder(const xcb_configure_notify_event_t& event) {
    if (event.event != m_connection.root()) return false;
    if (!m_connection.owns(event.window)) {
        // What moved may have come to lie between two masks, of which they are not told.
        m_siblings.clear();
        return true;
    }
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
    m_client.raiseShownWindows();
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

    std::vector<WindowRequest> requests;
    for (auto i = lowest; i != windows.end(); ++i)
        if (isMask(*i) || !m_client.isOwnWindow(*i)) requests.emplace_back(m_connection, *i);
    std::vector<QRect> maskRects;
    std::vector<std::pair<xcb_window_t, QRect>> intruders;
    for (const WindowRequest& request : requests) {
        const WindowState state(m_connection, request);
        if (isMask(request.window))
            maskRects.push_back(state.rect);
        else if (state.isVisible)
            intruders.emplace_back(request.window, state.rect);
    }
    const auto covering =
        std::find_if(intruders.begin(), intruders.end(), [&](const auto& intruder) {
            const bool isOverMask =
                std::any_of(maskRects.begin(), maskRects.end(),
                            [&](const QRect& mask) { return mask.intersects(intruder.second); });
            // A mask hides as well as ours, and its owner would insist as well.
            return isOverMask &&
                   m_connection.property8(intruder.first, m_connection.atoms().veylaMaskID)
                       .isEmpty();
        });
    if (covering == intruders.end()) return false;
    m_lastIntruder = covering->first;
    return true;
}
