#pragma once

#include "Models/Geometry.h"
#include "Platform/Screens.h"

#include <QList>
#include <QRect>
#include <QString>
#include <cstdint>
#include <optional>
#include <vector>

/// A display as the X server counts it: device pixels, origin top-left of the root, y downward.
struct NativeScreen {
    QString name;
    QRect frame;
    /// The frame without panels.
    QRect visibleFrame;
    /// Device pixels per point.
    double scaleFactor = 1;

    bool operator==(const NativeScreen&) const = default;
};

/// The one place where device pixels of the X server and points of the global desktop space are
/// converted into each other. Like in the toolkit, the top-left corner of a screen has the same
/// numbers in points and in pixels, and distances from there are scaled by the screen's own
/// factor; then everything is turned over, so that y counts upward from the bottom-left corner of
/// the primary screen. Screens of a factor above 1 therefore leave gaps beside them.
class DesktopSpace {
public:
    DesktopSpace() = default;
    /// The first screen is the primary one. `rootSize` stands in when there is no screen.
    DesktopSpace(QList<NativeScreen> screens, QSize rootSize);

    const QList<ScreenInfo>& screens() const { return m_screens; }
    const QList<NativeScreen>& nativeScreens() const { return m_native; }

    /// The point at a position in pixels, which belongs to the screen that holds it, else to the
    /// nearest one.
    Point toGlobal(QPoint native) const;
    /// Converts by the screen that the rectangle belongs to (its centre, else most of it).
    Rect toGlobal(const QRect& native) const;
    /// Edges are rounded to whole pixels, so that what touches in points touches in pixels.
    QRect toNative(const Rect& global) const;
    /// Pixels per point on the screen that a rectangle belongs to.
    double scaleFactorAt(const Rect& global) const;

    bool operator==(const DesktopSpace&) const = default;

private:
    const NativeScreen& screenNear(QPoint native) const;
    qsizetype screenIndexOf(const Rect& global) const;
    Rect toGlobal(const QRect& native, const NativeScreen& screen) const;

    QList<NativeScreen> m_native;
    QList<ScreenInfo> m_screens;
    // Those of the screens, in the same order.
    QList<Rect> m_frames;
    // Where the global origin is, in the toolkit's points: left edge and bottom edge of the
    // primary screen.
    double m_originX = 0;
    double m_originY = 0;
};
