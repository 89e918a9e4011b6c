#pragma once

#include <QImage>
#include <QRect>

/// Frosted glass: what is seen through it is blurred by nearly a Gaussian. That is done with a
/// picture that is smaller by this factor in each direction, so that a large one costs little.
constexpr int frostShrinkage = 4;

/// How far, in pixels of the smaller picture, a change of one pixel spreads, for a standard
/// deviation in pixels of the picture in full size.
int frostReach(double deviation);

/// `part` of a smaller picture as it is seen through the glass, the same as if all of it had been
/// made. Beyond its edges the picture goes on in their colours. Opaque.
QImage frosted(const QImage& smaller, const QRect& part, double deviation);
