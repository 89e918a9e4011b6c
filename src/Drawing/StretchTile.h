#pragma once

#include <QImage>
#include <QPainter>
#include <QSize>

/// An image that is drawn at any size from its own upward: its middle column and its middle row
/// are repeated, its four corners stay as they are. So a large panel costs as much to prepare as a
/// small one.
class StretchTile {
public:
    /// The image must look alike for some pixels around its middle column and row.
    explicit StretchTile(QImage image) : m_image(std::move(image)) {}

    /// The size to prepare for a target, when nothing changes along an edge further than `border`
    /// pixels from its ends.
    static QSize tileSize(QSize target, int border);

    /// Draws the tile at the painter's origin; a painter's unit must be a device pixel, and no
    /// side of `target` less than that of the tile.
    void draw(QPainter& painter, QSize target) const;

private:
    QImage m_image;
};
