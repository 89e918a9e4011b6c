#pragma once

#include <QList>
#include <QRect>

/// The space that a panel asks for, as the window-manager hints define it: widths count from the
/// edges of the root, and each holds between its start and end along that edge. All in pixels.
struct PanelStrut {
    int left = 0, right = 0, top = 0, bottom = 0;
    int leftStart = 0, leftEnd = 0;
    int rightStart = 0, rightEnd = 0;
    int topStart = 0, topEnd = 0;
    int bottomStart = 0, bottomEnd = 0;
    /// Where the panel's window is, relative to the root.
    QRect window;
};

/// What the panels leave of a screen. Because a strut counts from the edge of the whole root, one
/// on a screen further in covers the screens before it too; so it counts only for the screens that
/// its window is on. A strut that would leave less than nothing is ignored.
QRect visibleFrameBesidePanels(const QRect& screen, const QList<PanelStrut>& panels, QSize root);
