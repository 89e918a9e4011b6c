#pragma once

#include "Drawing/PixelCanvas.h"
#include "Models/Color.h"

#include <QPainterPath>
#include <optional>

/// A filled panel with smoothly rounded corners, an outline inside its edge and a glow around it.
/// Lengths are in points, and are brought to whole device pixels.
struct MaskPanel {
    struct Outline {
        Color color;
        double width = 1;

        bool operator==(const Outline&) const = default;
    };
    struct Glow {
        Color color;
        double blurRadius = 0;

        bool operator==(const Glow&) const = default;
    };

    /// The distance between the panel and every edge of the ground it is painted on. The glow is
    /// cut off at the edge of the ground.
    double inset = 0;
    double cornerRadius = 0;
    Color fill;
    std::optional<Outline> outline;
    std::optional<Glow> glow;

    /// Paints the panel on the ground that starts at the canvas's origin. What was painted last is
    /// kept for the thread, so that the same panel at another size costs little.
    void paint(PixelCanvas& canvas, QSize ground) const;

    /// The outer edge of the panel on that ground, in device pixels, where a point is `scale`.
    QPainterPath edge(QSize ground, double scale) const;

    bool operator==(const MaskPanel&) const = default;
};
