#pragma once

#include <QImage>

/// A picture as it is seen through frosted glass: blurred by nearly a Gaussian of that standard
/// deviation in pixels. Beyond its edges it goes on in their colours. The result is opaque and as
/// large as the picture. It is made at a quarter of the size, so that a large one costs little.
QImage frosted(const QImage& picture, double deviation);
