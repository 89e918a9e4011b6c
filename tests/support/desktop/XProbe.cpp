#include "support/desktop/XProbe.h"

#include <algorithm>
#include <xcb/shape.h>

QList<XWindow> XProbe::childrenOf(xcb_window_t parent) const {
    const auto tree = reply(xcb_query_tree_reply, xcb_query_tree(connection(), parent));
    QList<XWindow> windows;
    if (!tree) return windows;
    const xcb_window_t* children = xcb_query_tree_children(tree.get());
    for (int index = 0; index < xcb_query_tree_children_length(tree.get()); ++index) {
        if (const auto child = window(children[index])) windows.append(*child);
    }
    return windows;
}

std::optional<XWindow> XProbe::window(xcb_window_t id) const {
    const auto attributes =
        reply(xcb_get_window_attributes_reply, xcb_get_window_attributes(connection(), id));
    const auto frame = geometry(id);
    if (!attributes || !frame) return std::nullopt;
    return XWindow{.id = id,
                   .frame = *frame,
                   .isMapped = attributes->map_state != XCB_MAP_STATE_UNMAPPED,
                   .isOverrideRedirect = attributes->override_redirect != 0};
}

QList<XWindow> XProbe::windowsWith(const QString& property,
                                   std::optional<xcb_window_t> parent) const {
    QList<XWindow> found;
    for (const XWindow& child : childrenOf(parent.value_or(root()))) {
        const auto names =
            reply(xcb_list_properties_reply, xcb_list_properties(connection(), child.id));
        if (names) {
            const xcb_atom_t* atoms = xcb_list_properties_atoms(names.get());
            const xcb_atom_t* end = atoms + xcb_list_properties_atoms_length(names.get());
            if (std::find(atoms, end, atom(property)) != end) found.append(child);
        }
        found += windowsWith(property, child.id);
    }
    return found;
}

std::optional<XWindow> XProbe::windowWith(const QString& property, const QString& text) const {
    const QList<XWindow> candidates = windowsWith(property);
    for (auto candidate = candidates.rbegin(); candidate != candidates.rend(); ++candidate) {
        if (textOf(candidate->id, property) == text) return *candidate;
    }
    return std::nullopt;
}

xcb_window_t XProbe::topLevelOf(xcb_window_t window) const {
    while (true) {
        const auto tree = reply(xcb_query_tree_reply, xcb_query_tree(connection(), window));
        if (!tree || tree->parent == root() || tree->parent == XCB_NONE) return window;
        window = tree->parent;
    }
}

bool XProbe::isAbove(xcb_window_t upper, xcb_window_t lower) const {
    const xcb_window_t upperTop = topLevelOf(upper);
    const xcb_window_t lowerTop = topLevelOf(lower);
    bool hasPassedLower = false;
    for (const XWindow& window : rootChildren()) {
        if (window.id == upperTop) return hasPassedLower;
        if (window.id == lowerTop) hasPassedLower = true;
    }
    return false;
}

bool XProbe::isClickThrough(xcb_window_t window) const {
    const auto shape = reply(xcb_shape_get_rectangles_reply,
                             xcb_shape_get_rectangles(connection(), window, XCB_SHAPE_SK_INPUT));
    return shape && xcb_shape_get_rectangles_rectangles_length(shape.get()) == 0;
}
