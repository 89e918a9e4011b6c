#include "Views/MenuBar/ColorDot.h"

#include <QPainter>

ColorDot::ColorDot(int diameter, const QColor& color) : m_color(color) {
    setFixedSize(diameter, diameter);
}

void ColorDot::setColor(const QColor& color) {
    if (color == m_color) return;
    m_color = color;
    update();
}

void ColorDot::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(m_color);
    painter.drawEllipse(rect());
}
