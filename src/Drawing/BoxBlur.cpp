#include "Drawing/BoxBlur.h"

#include <algorithm>
#include <cmath>

// A box of odd width w has the variance (w^2 - 1) / 12. The widths are the two odd numbers around
// the ideal one, mixed so that the variances add up to the wanted one as nearly as they can.
std::array<int, 3> boxHalfWidths(double deviation) {
    constexpr int passCount = 3;
    const double variance = deviation * deviation;
    const double ideal = std::sqrt(12 * variance / passCount + 1);
    const int narrow = std::max(0, (static_cast<int>(ideal) - 1) / 2);
    const auto boxVariance = [](int half) { return half * (half + 1) / 3.0; };
    const double missing = variance - passCount * boxVariance(narrow);
    const long wide = std::lround(missing / (boxVariance(narrow + 1) - boxVariance(narrow)));
    std::array<int, passCount> halfWidths{};
    for (int pass = 0; pass < passCount; ++pass)
        halfWidths[static_cast<std::size_t>(pass)] = pass < wide ? narrow + 1 : narrow;
    return halfWidths;
}
