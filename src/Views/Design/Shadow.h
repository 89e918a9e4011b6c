#pragma once

#include <QColor>
#include <QPointF>
#include <QRectF>

class QPainter;

struct ShadowLook {
    QColor color{};
    /// In points.
    double blurRadius = 0;
    QPointF offset{};
};

/// Draws the soft shadow of a rounded rectangle, to be painted before the rectangle itself.
void paintShadow(QPainter& painter, const QRectF& rect, double cornerRadius,
                 const ShadowLook& look);
