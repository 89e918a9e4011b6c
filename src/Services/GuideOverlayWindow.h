#pragma once

#include "Models/Geometry.h"
#include "Platform/OverlaySurfaces.h"
#include "Services/GuideLine.h"

#include <QList>
#include <memory>

/// What the guide window shows: lines across the whole view. The guides are in the view's own
/// coordinates, origin bottom-left, y upward.
class GuideView final : public SurfaceContent {
public:
    explicit GuideView(QList<GuideLine> guides) : m_guides(std::move(guides)) {}

    const QList<GuideLine>& guides() const { return m_guides; }
    void paint(QPainter& painter, Size size) const override;
    /// The lines alone.
    std::optional<QList<QRect>> paintedPixels(Size size, double scale) const override;

private:
    QList<QRect> linesInPixels(QSize ground, double scale) const;

    QList<GuideLine> m_guides;
};

/// The click-through window that shows snapping guides while a mask is moved. Created hidden.
class GuideOverlayWindow {
public:
    explicit GuideOverlayWindow(OverlaySurfaces& surfaces);

    /// Shows the guides, given in the global desktop space, across `visibleFrame`; hides the
    /// window when there are none.
    void show(const QList<GuideLine>& guides, const Rect& visibleFrame);
    /// Puts the guides that are shown above all masks again.
    void bringToFront();

private:
    QList<GuideLine> m_shownGuides;
    std::unique_ptr<OverlaySurface> m_surface;
};
