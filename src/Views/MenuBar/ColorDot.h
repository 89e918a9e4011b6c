#pragma once

#include "Views/Components/AccessibleElement.h"

#include <QColor>
#include <QWidget>

/// A filled circle. What it stands for is its accessible name; one without a name is not told.
class ColorDot final : public QWidget, public AccessibleElement {
public:
    /// The diameter is in points.
    ColorDot(int diameter, const QColor& color);

    void setColor(const QColor& color);
    const QColor& color() const { return m_color; }
    QAccessible::Role accessibleRole() const override { return QAccessible::Graphic; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QColor m_color;
};
