#include "Platform/X11/Overlays/StackingGuard.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

constexpr uint8_t alphaDepth = 32;

/// What was asked about a window, to be taken later, so that many requests travel together.
struct WindowRequest {
    WindowRequest(XcbConnection& connection, xcb_window_t asked)
        : window(asked),
          attributes(xcb_get_window_attributes(connection, asked)),
          geometry(xcb_get_geometry(connection, asked)),
          maskID(connection.requestProperty(asked, connection.atoms().veylaMaskID)) {}

    xcb_window_t window;
    xcb_get_window_attributes_cookie_t attributes;
    xcb_get_geometry_cookie_t geometry;
    xcb_get_property_cookie_t maskID;
};

struct WindowState {
    WindowState(XcbConnection& connection, const WindowRequest& request) {
        const auto attributes =
            xcbReply(xcb_get_window_attributes_reply, connection.get(), request.attributes);
        const auto geometry = xcbReply(xcb_get_geometry_reply, connection.get(), request.geometry);
        isMask = !connection.takeProperty8(request.maskID).isEmpty();
        if (!attributes || !geometry) return;
        const int border = 2 * geometry->border_width;
        neighbour.window = request.window;
        neighbour.rect = {geometry->x, geometry->y, geometry->width + border,
                          geometry->height + border};
        neighbour.isOpaque = geometry->depth != alphaDepth;
        neighbour.isOverrideRedirect = attributes->override_redirect != 0;
        isVisible = attributes->map_state == XCB_MAP_STATE_VIEWABLE &&
                    attributes->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT;
    }

    StackingGuard::Neighbour neighbour;
    bool isVisible = false;
    bool isMask = false;
};

}  // namespace

StackingGuard::StackingGuard(XcbConnection& connection, Scheduler& scheduler, SystemLog& log,
                             ManagerWatch& managers, Client& client)
    : m_connection(connection),
      m_scheduler(scheduler),
      m_log(log),
      m_managers(managers),
      m_client(client) {
    m_connection.selectRootEvents(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
    m_subscriptions.keep(
        m_connection.onEvent([this](const xcb_generic_event_t& event) { handleEvent(event); }));
    m_subscriptions.keep(m_connection.onBurstEnd([this] {
        if (std::exchange(m_needsAudit, false)) audit();
    }));
}

void StackingGuard::handleEvent(const xcb_generic_event_t& event) {
    const xcb_window_t root = m_connection.root();
    switch (event.response_type) {
        case XCB_MAP_NOTIFY: {
            const auto& map = reinterpret_cast<const xcb_map_notify_event_t&>(event);
            if (map.event != root) return;
            m_needsAudit = true;
            if (map.override_redirect != 0 && !m_connection.owns(map.window))
                m_newlyMapped.insert(map.window);
            break;
        }
        case XCB_CONFIGURE_NOTIFY:
            m_needsAudit |=
                canChangeOrder(reinterpret_cast<const xcb_configure_notify_event_t&>(event));
            break;
        case XCB_UNMAP_NOTIFY:
            forgetUnmapped(reinterpret_cast<const xcb_unmap_notify_event_t&>(event).window);
            break;
        case XCB_DESTROY_NOTIFY: {
            const auto window = reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window;
            m_siblings.erase(window);
            forgetUnmapped(window);
            break;
        }
        case XCB_CIRCULATE_NOTIFY:
        case XCB_REPARENT_NOTIFY:
            m_siblings.clear();
            m_needsAudit = true;
            break;
        default:
            break;
    }
}

void StackingGuard::forgetUnmapped(xcb_window_t window) {
    m_newlyMapped.erase(window);
    if (m_ceiling != window) return;
    m_ceiling.reset();
    // What lay above it did not matter while it was there.
    m_needsAudit = true;
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
    return isMoved || needsToHearOfMoves();
}

void StackingGuard::audit() {
    if (m_client.shownWindows().empty()) return;
    const auto intruders = findIntruders();
    if (intruders.empty()) return;
    if (m_contests.mayAnswer(intruders)) return raiseAgainst(intruders);
    if (m_delayedAudit.isActive()) return;
    if (m_contests.takeBeginning()) logContest(intruders.front());
    m_delayedAudit = m_scheduler.after(Contests::delay, [this] {
        m_delayedAudit.reset();
        if (m_client.shownWindows().empty()) return;
        const auto stillThere = findIntruders();
        if (!stillThere.empty()) raiseAgainst(stillThere);
        m_connection.flush();
    });
}

void StackingGuard::raiseAgainst(const std::vector<xcb_window_t>& intruders) {
    m_contests.noteAnswer(intruders);
    m_newlyMapped.clear();
    m_client.raiseShownWindows(m_ceiling);
}

void StackingGuard::logContest(xcb_window_t intruder) {
    const QByteArray name = m_connection.property8(intruder, m_connection.atoms().netWmName);
    m_log.write(QStringLiteral("Veyla: another program keeps raising its window 0x%1 \"%2\" "
                               "above the masks; raising them less often from now on")
                    .arg(intruder, 0, 16)
                    .arg(QString::fromUtf8(name)));
}

// The masks, what lies above the lowest of them, and what may be painted above them all the same.
std::vector<xcb_window_t> StackingGuard::windowsToLookAt(const std::vector<xcb_window_t>& windows,
                                                         const std::vector<xcb_window_t>& masks) {
    const auto lowest =
        masks.empty() ? windows.end() : std::find(windows.begin(), windows.end(), masks.front());
    std::vector<xcb_window_t> found;
    if (m_managers.paintOrder() == PaintOrder::stacked)
        m_newlyMapped.clear();
    else
        std::copy_if(windows.begin(), lowest, std::back_inserter(found), [this](xcb_window_t each) {
            return m_newlyMapped.contains(each) && !m_client.isOwnWindow(each);
        });
    // Otherwise nothing lies between the masks, and nothing above them.
    m_isSomethingAbove = windows.end() - lowest != static_cast<std::ptrdiff_t>(masks.size());
    if (m_isSomethingAbove || !found.empty())
        std::copy_if(lowest, windows.end(), std::back_inserter(found),
                     [this](xcb_window_t each) { return !m_client.isOwnWindow(each); });
    return found;
}

std::vector<xcb_window_t> StackingGuard::findIntruders() {
    m_ceiling.reset();
    m_managers.learnPaintOrder();
    const auto shown = m_client.shownWindows();
    const std::unordered_set<xcb_window_t> isShown(shown.begin(), shown.end());
    const auto windows = m_connection.children(m_connection.root());
    std::vector<xcb_window_t> masks;
    std::copy_if(windows.begin(), windows.end(), std::back_inserter(masks),
                 [&](xcb_window_t window) { return isShown.contains(window); });
    std::vector<xcb_window_t> intruders;
    if (masks != shown) intruders.push_back(XCB_NONE);

    std::vector<WindowRequest> requests;
    for (const xcb_window_t window : windowsToLookAt(windows, masks))
        requests.emplace_back(m_connection, window);
    std::vector<QRect> maskRects;
    std::vector<Neighbour> neighbours;
    for (const WindowRequest& request : requests) {
        const WindowState state(m_connection, request);
        if (isShown.contains(request.window)) maskRects.push_back(state.neighbour.rect);
        // A mask of another Veyla hides as well as ours, and its owner would insist as well.
        else if (state.isVisible && !state.isMask)
            neighbours.push_back(state.neighbour);
    }
    for (const Neighbour& neighbour : neighbours) {
        const bool isOverMask =
            std::any_of(maskRects.begin(), maskRects.end(),
                        [&](const QRect& mask) { return mask.intersects(neighbour.rect); });
        if (!isOverMask) continue;
        if (m_client.isScreenLocker(neighbour)) {
            // Right below it, masks cannot lie above what is higher.
            m_ceiling = neighbour.window;
            break;
        }
        intruders.push_back(neighbour.window);
    }
    return intruders;
}
