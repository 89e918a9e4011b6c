#pragma once

#include "Models/Geometry.h"
#include "Platform/Screens.h"

#include <QList>
#include <optional>

/// The smallest size of a mask on screen, in points.
inline constexpr Size minimumMaskSize{60, 40};

/// The visible frame of every screen, in the platform's screen order.
QList<Rect> visibleFrames(const Screens& screens);

/// The frame that a rectangle belongs to: the first that contains its centre, else the one that
/// it overlaps most, the earlier one on a tie. Nothing when there are no frames.
std::optional<Rect> bestScreenFrame(const Rect& rect, const QList<Rect>& frames);

/// The rectangle brought to at least the minimum size and then, whole, into the frame that it
/// belongs to; unchanged when there are no frames.
Rect resolvedFrame(const Rect& rect, const QList<Rect>& frames);

/// Where a rectangle is after the screens changed, when it stays where it was on its screen,
/// counted from the screen's top-left corner. Nothing when it was on no screen or its screen is
/// gone.
std::optional<Rect> rectFollowingItsScreen(const Rect& rect, const QList<ScreenInfo>& oldScreens,
                                           const QList<ScreenInfo>& newScreens);
