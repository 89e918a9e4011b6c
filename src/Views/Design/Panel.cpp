#include "Views/Design/Panel.h"

#include "Views/Design/VeylaCard.h"

#include <QPainter>

void Panel::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    paintPanel(painter, rect(), m_look.cornerRadius, m_look.fill, m_look.border);
}
