#include "Drawing/SoftGlow.h"

#include "Drawing/BoxBlur.h"

#include <QPainter>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

namespace {

/// Averages every value of a line of `count` values, `stride` apart, with its neighbours. Beyond
/// the ends lies nothing.
void averageLine(const float* from, float* to, int count, std::ptrdiff_t stride, int half) {
    const float weight = 1.0F / static_cast<float>(2 * half + 1);
    float sum = 0;
    for (int i = 0; i < std::min(half, count); ++i)
        sum += from[i * stride];
    for (int i = 0; i < count; ++i) {
        if (i + half < count) sum += from[(i + half) * stride];
        to[i * stride] = sum * weight;
        if (i - half >= 0) sum -= from[(i - half) * stride];
    }
}

struct Field {
    int width;
    int height;
    std::vector<float> values;
};

void blur(Field& field, const std::array<int, 3>& halfWidths) {
    std::vector<float> scratch(field.values.size());
    for (const int half : halfWidths) {
        for (int y = 0; y < field.height; ++y) {
            const std::ptrdiff_t start = std::ptrdiff_t{y} * field.width;
            averageLine(field.values.data() + start, scratch.data() + start, field.width, 1, half);
        }
        for (int x = 0; x < field.width; ++x)
            averageLine(scratch.data() + x, field.values.data() + x, field.height, field.width,
                        half);
    }
}

/// How much of each pixel the shape covers, with a margin on every side.
Field coverage(const QPainterPath& shape, QSize size, int margin) {
    QImage image(size + QSize(2 * margin, 2 * margin), QImage::Format_Alpha8);
    image.fill(0);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(margin, margin);
    painter.fillPath(shape, Qt::black);
    painter.end();
    Field field{image.width(), image.height(), {}};
    field.values.reserve(static_cast<std::size_t>(field.width) *
                         static_cast<std::size_t>(field.height));
    for (int y = 0; y < field.height; ++y) {
        const uchar* line = image.constScanLine(y);
        field.values.insert(field.values.end(), line, line + field.width);
    }
    return field;
}

}  // namespace

int SoftGlow::reach() const {
    int sum = 0;
    for (const int half : boxHalfWidths(blurRadius / 2))
        sum += half;
    return sum;
}

QImage SoftGlow::around(const QPainterPath& shape, QSize size) const {
    const int margin = reach();
    Field field = coverage(shape, size, margin);
    blur(field, boxHalfWidths(blurRadius / 2));
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < size.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        const float* values =
            field.values.data() + std::ptrdiff_t{y + margin} * field.width + margin;
        for (int x = 0; x < size.width(); ++x) {
            const float alpha = values[x] * static_cast<float>(color.alphaF());
            const int rounded = std::clamp(static_cast<int>(std::lround(alpha)), 0, 255);
            line[x] = qPremultiply(qRgba(color.red(), color.green(), color.blue(), rounded));
        }
    }
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
    painter.fillPath(shape, Qt::black);
    return image;
}
