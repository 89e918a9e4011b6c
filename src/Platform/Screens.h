#pragma once

#include "Models/Geometry.h"
#include "Reactive/Subscription.h"

#include <QList>
#include <QString>
#include <functional>
#include <optional>

/// One display, in points of the global desktop space.
struct ScreenInfo {
    /// The name of the output or monitor; stays the same while the display is plugged in.
    QString name;
    Rect frame;
    /// The frame without the panels and docks on this display.
    Rect visibleFrame;
    /// Device pixels per point.
    double scaleFactor = 1;

    bool operator==(const ScreenInfo&) const = default;
};

/// The displays of the desktop and the pointer on them.
class Screens {
public:
    virtual ~Screens() = default;

    /// Every display, the primary one first. Empty when there is none.
    virtual QList<ScreenInfo> screens() const = 0;
    /// The primary display, absent when there is none.
    virtual std::optional<ScreenInfo> mainScreen() const = 0;
    /// Where the pointer is, in the global desktop space; may lie outside every display.
    virtual Point pointerLocation() const = 0;
    /// Calls back each time displays come, go, move, change size, scale or visible frame. Inside
    /// the call `screens()` already returns the new displays.
    virtual Subscription onScreensChanged(std::function<void()> callback) = 0;
};
