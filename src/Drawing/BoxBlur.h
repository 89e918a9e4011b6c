#pragma once

#include <array>

/// Three box averages in a row come close to a Gaussian. Half the width of each box, its middle
/// left out, for a standard deviation in pixels.
std::array<int, 3> boxHalfWidths(double deviation);
