#include "Platform/X11/PanelStruts.h"

#include <algorithm>

namespace {

bool rangesOverlap(int startA, int endA, int startB, int endB) {
    return startA <= endB && startB <= endA;
}

QRect withoutPanel(const QRect& screen, const QRect& visible, const PanelStrut& panel, QSize root) {
    const bool isBeside =
        rangesOverlap(panel.leftStart, panel.leftEnd, screen.top(), screen.bottom());
    const bool isBesideRight =
        rangesOverlap(panel.rightStart, panel.rightEnd, screen.top(), screen.bottom());
    const bool isAbove = rangesOverlap(panel.topStart, panel.topEnd, screen.left(), screen.right());
    const bool isBelow =
        rangesOverlap(panel.bottomStart, panel.bottomEnd, screen.left(), screen.right());

    int left = visible.left();
    int top = visible.top();
    int right = visible.right();
    int bottom = visible.bottom();
    if (panel.left > 0 && isBeside) left = std::max(left, panel.left);
    if (panel.right > 0 && isBesideRight) right = std::min(right, root.width() - panel.right - 1);
    if (panel.top > 0 && isAbove) top = std::max(top, panel.top);
    if (panel.bottom > 0 && isBelow) bottom = std::min(bottom, root.height() - panel.bottom - 1);

    const bool isSomethingLeft = left <= right && top <= bottom;
    return isSomethingLeft ? QRect(QPoint(left, top), QPoint(right, bottom)) : visible;
}

}  // namespace

QRect visibleFrameBesidePanels(const QRect& screen, const QList<PanelStrut>& panels, QSize root) {
    QRect visible = screen;
    for (const PanelStrut& panel : panels)
        if (panel.window.intersects(screen)) visible = withoutPanel(screen, visible, panel, root);
    return visible;
}
