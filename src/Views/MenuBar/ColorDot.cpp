#include "Views/MenuBar/ColorDot.h"

#include <QPainter>

void paintDot(QPainter& painter, const QRectF& rect, const QColor& color) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawEllipse(rect);
}

ColorDot::ColorDot(int diameter, const QColor& color, QWidget* parent)
    : QWidget(parent), m_color(color) {
    setFixedSize(diameter, diameter);
}

void ColorDot::setColor(const QColor& color) {
    if (color == m_color) return;
    m_color = color;
    update();
}

void ColorDot::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    paintDot(painter, rect(), m_color);
}
