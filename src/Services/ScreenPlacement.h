#pragma once

#include <optional>

#include <QList>

#include "Models/Geometry.h"

class Screens;

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
