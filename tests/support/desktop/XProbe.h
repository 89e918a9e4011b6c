#pragma once

#include "support/desktop/XClient.h"

#include <QList>

/// One window as the server describes it.
struct XWindow {
    xcb_window_t id = XCB_NONE;
    /// Relative to the parent, device pixels, y down; without the border.
    QRect frame;
    bool isMapped = false;
    bool isOverrideRedirect = false;
};

/// Looks at the windows of a display from outside.
class XProbe : public XClient {
public:
    using XClient::XClient;

    /// The children, bottom to top; windows that vanish meanwhile are left out.
    QList<XWindow> childrenOf(xcb_window_t window) const;
    QList<XWindow> rootChildren() const { return childrenOf(root()); }

    /// The window as it is now; nothing when there is none of that id.
    std::optional<XWindow> window(xcb_window_t id) const;

    /// Every window of the display, or inside a window, that has the property, at any depth, bottom
    /// to top.
    QList<XWindow> windowsWith(const QString& property,
                               std::optional<xcb_window_t> parent = {}) const;
    /// The topmost window that has the property with that text.
    std::optional<XWindow> windowWith(const QString& property, const QString& text) const;

    /// The root's child that contains the window, or is it.
    xcb_window_t topLevelOf(xcb_window_t window) const;

    /// Whether `upper`'s top-level window lies above `lower`'s in the stacking order.
    bool isAbove(xcb_window_t upper, xcb_window_t lower) const;

    /// Whether no part of the window takes pointer input.
    bool isClickThrough(xcb_window_t window) const;
};
