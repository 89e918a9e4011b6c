#include "Drawing/StretchTile.h"

#include <QVarLengthArray>

namespace {

/// A run of pixels of the tile along one axis, and where it goes.
struct Span {
    int source;
    int sourceLength;
    int target;
    int targetLength;
};

using Spans = QVarLengthArray<Span, 3>;

Spans spans(int source, int target) {
    if (source == target) return {{0, source, 0, target}};
    const int before = source / 2;
    const int after = source - before - 1;
    return {{0, before, 0, before},
            {before, 1, before, target - before - after},
            {before + 1, after, target - after, after}};
}

}  // namespace

QSize StretchTile::tileSize(QSize target, int border) {
    return target.boundedTo(QSize(2 * border + 1, 2 * border + 1));
}

void StretchTile::draw(QPainter& painter, QSize target) const {
    for (const Span& row : spans(m_image.height(), target.height())) {
        for (const Span& column : spans(m_image.width(), target.width())) {
            const QRect source(column.source, row.source, column.sourceLength, row.sourceLength);
            const QRect place(column.target, row.target, column.targetLength, row.targetLength);
            if (source.width() == 1 && source.height() == 1) {
                // By far the largest part. A plain fill is several times faster than a stretched
                // image.
                painter.fillRect(place, m_image.pixelColor(source.topLeft()));
            } else {
                painter.drawImage(place, m_image, source);
            }
        }
    }
}
