#pragma once

/// A snapping guide: a vertical line at an x or a horizontal line at a y, in points.
struct GuideLine {
    enum class Orientation { vertical, horizontal };

    Orientation orientation = Orientation::vertical;
    double position = 0;

    static GuideLine vertical(double x) { return {Orientation::vertical, x}; }
    static GuideLine horizontal(double y) { return {Orientation::horizontal, y}; }

    bool operator==(const GuideLine&) const = default;
};
