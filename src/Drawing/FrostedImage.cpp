#include "Drawing/FrostedImage.h"

#include "Drawing/BoxBlur.h"

#include <algorithm>
#include <cstdint>
#include <numeric>

namespace {

struct ChannelSums {
    std::uint32_t red = 0;
    std::uint32_t green = 0;
    std::uint32_t blue = 0;

    void add(QRgb pixel) {
        red += static_cast<std::uint32_t>(qRed(pixel));
        green += static_cast<std::uint32_t>(qGreen(pixel));
        blue += static_cast<std::uint32_t>(qBlue(pixel));
    }
    void remove(QRgb pixel) {
        red -= static_cast<std::uint32_t>(qRed(pixel));
        green -= static_cast<std::uint32_t>(qGreen(pixel));
        blue -= static_cast<std::uint32_t>(qBlue(pixel));
    }
};

/// Averages every pixel of a line with `half` neighbours on each side; the results come to lie
/// `stride` pixels apart.
void averageLine(const QRgb* from, int count, QRgb* to, qsizetype stride, int half) {
    // Divides by multiplying with a fixed-point number, which is several times faster.
    constexpr int fractionBits = 24;
    constexpr std::uint32_t roundUp = 1U << (fractionBits - 1);
    const auto width = static_cast<std::uint32_t>(2 * half + 1);
    const std::uint32_t weight = ((1U << fractionBits) + width / 2) / width;
    const auto average = [&](std::uint32_t sum) {
        return static_cast<int>((sum * weight + roundUp) >> fractionBits);
    };
    const auto at = [&](int i) { return from[std::clamp(i, 0, count - 1)]; };

    ChannelSums sums;
    for (int i = -half; i < half; ++i)
        sums.add(at(i));
    for (int i = 0; i < count; ++i) {
        sums.add(at(i + half));
        to[i * stride] = qRgb(average(sums.red), average(sums.green), average(sums.blue));
        sums.remove(at(i - half));
    }
}

/// Averages along the lines, whose pixels become the columns of `to`.
void averageTransposed(const QImage& from, QImage& to, int half) {
    auto* const target = reinterpret_cast<QRgb*>(to.bits());
    const qsizetype stride = to.bytesPerLine() / qsizetype{sizeof(QRgb)};
    for (int y = 0; y < from.height(); ++y)
        averageLine(reinterpret_cast<const QRgb*>(from.constScanLine(y)), from.width(), target + y,
                    stride, half);
}

}  // namespace

int frostReach(double deviation) {
    const auto halfWidths = boxHalfWidths(deviation / frostShrinkage);
    return std::accumulate(halfWidths.begin(), halfWidths.end(), 0);
}

QImage frosted(const QImage& smaller, const QRect& part, double deviation) {
    const int reach = frostReach(deviation);
    // What lies beyond does not come as far as the part.
    const QRect needed = part.adjusted(-reach, -reach, reach, reach) & smaller.rect();
    QImage blurred = smaller.copy(needed).convertToFormat(QImage::Format_RGB32);
    QImage turned(needed.size().transposed(), QImage::Format_RGB32);
    for (const int half : boxHalfWidths(deviation / frostShrinkage)) {
        averageTransposed(blurred, turned, half);
        averageTransposed(turned, blurred, half);
    }
    return blurred.copy(part.translated(-needed.topLeft()));
}
