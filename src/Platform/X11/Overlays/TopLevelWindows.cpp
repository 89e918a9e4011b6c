#include "Platform/X11/Overlays/TopLevelWindows.h"

#include <algorithm>
#include <utility>

namespace {

QRect outerRect(int x, int y, int width, int height, int border) {
    return {x, y, width + 2 * border, height + 2 * border};
}

}  // namespace

void TopLevelWindows::start() {
    m_lifetime.emplace();
    m_connection.selectRootEvents(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
    m_events =
        m_connection.onEvent([this](const xcb_generic_event_t& event) { handleEvent(event); });
    askForTree();
}

void TopLevelWindows::stop() {
    m_events.reset();
    m_lifetime.reset();
    m_entries.clear();
    m_isKnown = false;
    m_isTreeAwaited = false;
    m_awaitedAnswers = 0;
}

const TopLevelWindows::Entry* TopLevelWindows::find(xcb_window_t window) const {
    const auto index = indexOf(window);
    return index ? &m_entries[*index] : nullptr;
}

std::optional<std::size_t> TopLevelWindows::indexOf(xcb_window_t window) const {
    const auto found = std::find_if(m_entries.begin(), m_entries.end(),
                                    [&](const Entry& entry) { return entry.window == window; });
    if (found == m_entries.end()) return std::nullopt;
    return static_cast<std::size_t>(found - m_entries.begin());
}

void TopLevelWindows::askForTree() {
    m_isTreeOutdated = m_isTreeAwaited;
    if (std::exchange(m_isTreeAwaited, true)) return;
    m_connection.whenReplied<xcb_query_tree_reply_t>(
        xcb_query_tree(m_connection, m_connection.root()),
        m_lifetime->guard(
            [this](const XcbReply<xcb_query_tree_reply_t>& tree) { takeTree(tree.get()); }));
}

void TopLevelWindows::takeTree(const xcb_query_tree_reply_t* tree) {
    m_isTreeAwaited = false;
    // Some of what has happened meanwhile may not be in it.
    if (m_isTreeOutdated) return askForTree();
    if (!tree) return;
    const std::vector<Entry> known = std::exchange(m_entries, {});
    const xcb_window_t* const children = xcb_query_tree_children(tree);
    for (int i = 0; i < xcb_query_tree_children_length(tree); ++i) {
        const auto found = std::find_if(known.begin(), known.end(), [&](const Entry& entry) {
            return entry.window == children[i];
        });
        if (found != known.end()) {
            m_entries.push_back(*found);
            continue;
        }
        m_entries.emplace_back().window = children[i];
        if (!m_connection.owns(children[i])) askAbout(children[i]);
    }
    if (m_awaitedAnswers == 0) m_isKnown = true;
}

void TopLevelWindows::askAbout(xcb_window_t window) {
    ++m_awaitedAnswers;
    using Attributes = xcb_get_window_attributes_reply_t;
    using Geometry = xcb_get_geometry_reply_t;
    const auto answer = std::make_shared<XcbReply<Attributes>>();
    const auto attributesCookie = xcb_get_window_attributes(m_connection, window);
    const auto geometryCookie = xcb_get_geometry(m_connection, window);
    m_connection.whenReplied<Attributes>(
        attributesCookie,
        [answer](XcbReply<Attributes> attributes) { *answer = std::move(attributes); });
    m_connection.whenReplied<Geometry>(
        geometryCookie, m_lifetime->guard([this, window, answer](const XcbReply<Geometry>& reply) {
            learn(window, answer->get(), reply.get());
        }));
}

void TopLevelWindows::learn(xcb_window_t window,
                            const xcb_get_window_attributes_reply_t* attributes,
                            const xcb_get_geometry_reply_t* geometry) {
    const bool isLast = --m_awaitedAnswers == 0;
    const auto index = indexOf(window);
    if (index && attributes && geometry) {
        Entry& entry = m_entries[*index];
        if (attributes->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT) entry.visual = attributes->visual;
        if (!entry.isPlaceTold) {
            entry.border = geometry->border_width;
            entry.rect = outerRect(geometry->x, geometry->y, geometry->width, geometry->height,
                                   entry.border);
        }
        if (!entry.isMappingTold) entry.isMapped = attributes->map_state == XCB_MAP_STATE_VIEWABLE;
        if (entry.isVisible() && onNewPixmap) onNewPixmap(entry);
        if (m_isKnown && entry.isVisible()) tellChange(entry.rect);
    }
    if (!isLast || std::exchange(m_isKnown, true)) return;
    const xcb_screen_t& screen = m_connection.screen();
    tellChange(QRect(0, 0, screen.width_in_pixels, screen.height_in_pixels));
}

void TopLevelWindows::tellChange(const QRegion& region) const {
    if (onChanged) onChanged(region);
}

void TopLevelWindows::handleEvent(const xcb_generic_event_t& event) {
    const xcb_window_t root = m_connection.root();
    switch (event.response_type) {
        case XCB_CREATE_NOTIFY: {
            const auto& create = reinterpret_cast<const xcb_create_notify_event_t&>(event);
            if (create.parent != root) return;
            add(create.window,
                outerRect(create.x, create.y, create.width, create.height, create.border_width),
                create.border_width);
            break;
        }
        case XCB_CONFIGURE_NOTIFY: {
            const auto& configure = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
            if (configure.event == root) handleConfigure(configure);
            break;
        }
        case XCB_CIRCULATE_NOTIFY: {
            const auto& circulate = reinterpret_cast<const xcb_circulate_notify_event_t&>(event);
            const auto index = indexOf(circulate.window);
            if (circulate.event != root || !index) return;
            const bool isToTop = circulate.place == XCB_PLACE_ON_TOP;
            placeAbove(*index, isToTop ? m_entries.back().window : xcb_window_t{XCB_NONE});
            tellChange(find(circulate.window)->rect);
            break;
        }
        case XCB_MAP_NOTIFY: {
            const auto& map = reinterpret_cast<const xcb_map_notify_event_t&>(event);
            if (map.event == root) setMapped(map.window, true);
            break;
        }
        case XCB_UNMAP_NOTIFY: {
            const auto& unmap = reinterpret_cast<const xcb_unmap_notify_event_t&>(event);
            if (unmap.event == root) setMapped(unmap.window, false);
            break;
        }
        case XCB_REPARENT_NOTIFY: {
            const auto& reparent = reinterpret_cast<const xcb_reparent_notify_event_t&>(event);
            if (reparent.event != root) return;
            // A window that a manager put into a frame is a top-level window no more.
            if (reparent.parent != root) return remove(reparent.window);
            if (!indexOf(reparent.window)) askForTree();
            break;
        }
        case XCB_DESTROY_NOTIFY: {
            const auto& destroy = reinterpret_cast<const xcb_destroy_notify_event_t&>(event);
            if (destroy.event == root) remove(destroy.window);
            break;
        }
        default:
            break;
    }
}

void TopLevelWindows::handleConfigure(const xcb_configure_notify_event_t& event) {
    m_isTreeOutdated = true;
    auto index = indexOf(event.window);
    if (!index) return;
    const bool isRestacked = placeAbove(*index, event.above_sibling);
    index = indexOf(event.window);
    Entry& entry = m_entries[*index];
    const QRect rect = outerRect(event.x, event.y, event.width, event.height, event.border_width);
    const QRect previous = std::exchange(entry.rect, rect);
    const bool isNewBorder = std::exchange(entry.border, event.border_width) != event.border_width;
    entry.isPlaceTold = true;
    if (m_connection.owns(event.window) || !entry.isVisible()) return;
    if (previous.size() != rect.size() || isNewBorder) onNewPixmap(entry);
    if (previous != rect)
        tellChange(QRegion(previous) + rect);
    else if (isRestacked || isNewBorder)
        tellChange(rect);
}

void TopLevelWindows::add(xcb_window_t window, const QRect& rect, int border) {
    if (indexOf(window)) return;
    // New windows lie above all others, but not above the one that a compositor paints on.
    askForTree();
    Entry& entry = m_entries.emplace_back();
    entry.window = window;
    entry.rect = rect;
    entry.border = border;
    entry.isPlaceTold = true;
    // The rest is asked for should it be mapped.
}

void TopLevelWindows::remove(xcb_window_t window) {
    m_isTreeOutdated = true;
    onGone(window);
    const auto index = indexOf(window);
    if (!index) return;
    const Entry entry = m_entries[*index];
    m_entries.erase(m_entries.begin() + static_cast<std::ptrdiff_t>(*index));
    if (entry.isVisible()) tellChange(entry.rect);
}

void TopLevelWindows::setMapped(xcb_window_t window, bool isMapped) {
    m_isTreeOutdated = true;
    const auto index = indexOf(window);
    if (!index) return;
    Entry& entry = m_entries[*index];
    entry.isMapped = isMapped;
    entry.isMappingTold = true;
    if (m_connection.owns(window)) return;
    if (entry.visual == XCB_NONE) {
        if (isMapped) askAbout(window);
        return;
    }
    if (isMapped) onNewPixmap(entry);
    tellChange(entry.rect);
}

bool TopLevelWindows::placeAbove(std::size_t index, xcb_window_t sibling) {
    const auto below = sibling == XCB_NONE ? std::nullopt : indexOf(sibling);
    if (sibling != XCB_NONE && (!below || *below == index)) return false;
    // Counted without the window itself.
    std::size_t place = below ? *below + 1 : 0;
    if (below && *below > index) --place;
    if (place == index) return false;
    const Entry entry = m_entries[index];
    m_entries.erase(m_entries.begin() + static_cast<std::ptrdiff_t>(index));
    m_entries.insert(m_entries.begin() + static_cast<std::ptrdiff_t>(place), entry);
    return true;
}
