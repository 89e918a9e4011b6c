#pragma once

#include "Views/Components/AccessibleElement.h"

#include <QColor>
#include <QWidget>

/// Paints a filled circle.
void paintDot(QPainter& painter, const QRectF& rect, const QColor& color);

/// A filled circle that stands for something, which is its accessible name.
class ColorDot final : public QWidget, public AccessibleElement {
public:
    /// The diameter is in points.
    ColorDot(int diameter, const QColor& color, QWidget* parent);

    void setColor(const QColor& color);
    const QColor& color() const { return m_color; }
    QAccessible::Role accessibleRole() const override { return QAccessible::Graphic; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QColor m_color;
};
