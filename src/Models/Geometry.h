#pragma once

#include <algorithm>
#include <cstddef>

/// A position in points. Unless a declaration says otherwise, in the global desktop space: origin
/// at the bottom-left corner of the primary screen, y upward. A point is a device-independent
/// pixel.
struct Point {
    double x = 0;
    double y = 0;

    bool operator==(const Point&) const = default;
};

/// An extent in points.
struct Size {
    double width = 0;
    double height = 0;

    bool operator==(const Size&) const = default;
};

/// A rectangle in points of the global desktop space; (x, y) is its bottom-left corner.
struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    double minX() const { return x; }
    double minY() const { return y; }
    double maxX() const { return x + width; }
    double maxY() const { return y + height; }
    double midX() const { return x + width / 2; }
    double midY() const { return y + height / 2; }
    Point center() const { return {midX(), midY()}; }
    Size size() const { return {width, height}; }

    /// The minimum edges belong to the rectangle, the maximum edges do not.
    bool contains(Point point) const {
        return minX() <= point.x && point.x < maxX() && minY() <= point.y && point.y < maxY();
    }

    /// Whether the pixel whose upper left corner the point is lies in the rectangle, as for a
    /// pointer: the topmost row of pixels is at the maximum edge, and with y upward none is at the
    /// bottom edge.
    bool containsPointer(Point point) const {
        return minX() <= point.x && point.x < maxX() && minY() < point.y && point.y <= maxY();
    }

    /// The area shared with `other`, 0 when they do not overlap.
    double intersectionArea(const Rect& other) const {
        const double sharedWidth = std::min(maxX(), other.maxX()) - std::max(minX(), other.minX());
        const double sharedHeight = std::min(maxY(), other.maxY()) - std::max(minY(), other.minY());
        return sharedWidth > 0 && sharedHeight > 0 ? sharedWidth * sharedHeight : 0;
    }

    bool operator==(const Rect&) const = default;
};

std::size_t qHash(const Rect& rect, std::size_t seed = 0) noexcept;
