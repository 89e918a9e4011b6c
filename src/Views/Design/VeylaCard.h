#pragma once

#include <QRectF>
#include <QWidget>

class QPainter;

/// The look of a card: a rounded panel with a thin border. Adds no padding.
struct VeylaCardModifier {
    static constexpr double cornerRadius = 12;

    bool elevated = false;

    void paintBackground(QPainter& painter, const QRectF& rect) const;
    /// Drawn over the content.
    void paintBorder(QPainter& painter, const QRectF& rect) const;
};

/// The view inside a card.
QWidget* veylaCard(QWidget* content, bool elevated);

/// A rounded rectangle with continuous corners, filled, and stroked along the inside of its edge.
/// A colour that is not valid leaves that part out.
void paintPanel(QPainter& painter, const QRectF& rect, double radius, const QBrush& fill,
                const QColor& border = QColor(), double borderWidth = 1);

/// What a translucent colour looks like on an opaque one.
QColor colorOver(const QColor& above, const QColor& below);
