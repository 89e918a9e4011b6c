#pragma once

#include "Models/Color.h"
#include "Models/ScreenMask.h"
#include "Platform/OverlaySurfaces.h"

class QPainter;

/// The look of one mask on screen: a rounded panel in the mask's style, its outline and glow, the
/// selection badge and the resize handles. A value, rebuilt whenever something changes.
struct OverlayMaskView {
    ScreenMask mask;
    bool isSelected = false;
    bool isEditingEnabled = true;

    /// The colour of the panel before the mask's opacity is applied.
    Color fillColor() const;

    /// Whether the other view paints the same pixels at the same size; the frame, the name and
    /// the identity are not painted.
    bool paintsLike(const OverlayMaskView& other) const;

    /// Whether the other view has the same accessible description.
    bool isDescribedLike(const OverlayMaskView& other) const;

    AccessibleDescription accessibleDescription() const;

    /// Paints the mask into `size` points, origin top-left, on a transparent ground.
    void paint(QPainter& painter, Size size) const;

    /// What lies below a frosted mask is blurred within its panel, as SurfaceContent tells.
    double backdropBlur() const;
    QPainterPath blurredShape(Size size, double scale) const;

    bool operator==(const OverlayMaskView&) const = default;
};
