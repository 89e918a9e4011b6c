#pragma once

#include "Platform/MainLoop.h"
#include "Platform/OverlaySurfaces.h"
#include "Platform/Screens.h"

#include <QList>
#include <QUuid>
#include <functional>
#include <memory>
#include <vector>

/// Makes the harness of one back end.
template <typename Harness>
using HarnessMaker = std::function<std::unique_ptr<Harness>()>;

/// What the contract suites need of a desktop, beside its ports. Every back end provides one, with
/// a single screen of 1280 by 800 points at first.
class DesktopHarness {
public:
    virtual ~DesktopHarness() = default;

    virtual MainLoop& mainLoop() = 0;
    virtual Screens& screens() = 0;
    virtual OverlaySurfaces& surfaces() = 0;

    /// Runs the main loop until the condition holds; false when it does not within a bound.
    virtual bool waitUntil(const std::function<bool()>& condition) = 0;
    /// Runs the main loop until what was asked so far has had its effect.
    virtual void settle() = 0;

    // The mouse, in points of the global space.
    virtual void movePointer(Point global) = 0;
    virtual void pressLeft() = 0;
    virtual void releaseLeft() = 0;

    /// Replaces the screens: rectangles in points, origin top-left, y downward, named "A", "B", …;
    /// the first is the primary one.
    virtual void setScreens(const QList<Rect>& topLeftFrames) = 0;

    /// The masks whose surfaces are on screen, bottom to top.
    virtual std::vector<QUuid> stack() = 0;
};
