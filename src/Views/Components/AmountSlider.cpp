#include "Views/Components/AmountSlider.h"

#include "Views/Components/StyledButton.h"
#include "Views/Design/VeylaCard.h"
#include "Views/Design/VeylaTheme.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

namespace {

constexpr double knobRadius = 8;
constexpr double margin = knobRadius + 2;
constexpr double trackHeight = 4;
constexpr double smallStep = 0.01;
constexpr double largeStep = 0.1;

}  // namespace

AmountSlider::AmountSlider(double minimum, double maximum, const QColor& tint)
    : m_minimum(minimum), m_maximum(maximum), m_amount(minimum), m_given(minimum), m_tint(tint) {
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize AmountSlider::sizeHint() const {
    constexpr int preferredWidth = 160;
    return {preferredWidth, static_cast<int>(2 * margin)};
}

void AmountSlider::showAmount(double amount) {
    m_given = amount;
    const double shown = std::clamp(amount, m_minimum, m_maximum);
    if (shown == m_amount) return;
    m_amount = shown;
    update();
    QAccessibleValueChangeEvent event(this, m_amount);
    QAccessible::updateAccessibility(&event);
}

std::optional<AccessibleAmount> AmountSlider::accessibleAmount() const {
    return AccessibleAmount{m_amount, m_minimum, m_maximum, smallStep};
}

void AmountSlider::choose(double amount) {
    const double chosen = std::clamp(amount, m_minimum, m_maximum);
    // What lies beyond the bounds can be brought to the bound where it is shown.
    if (chosen == m_given) return;
    showAmount(chosen);
    if (m_onChange) m_onChange(chosen);
}

void AmountSlider::chooseAt(double x) {
    const double length = std::max(1.0, width() - 2 * margin);
    choose(m_minimum + (x - margin) / length * (m_maximum - m_minimum));
}

double AmountSlider::knobX() const {
    const double part = (m_amount - m_minimum) / (m_maximum - m_minimum);
    return margin + part * (width() - 2 * margin);
}

void AmountSlider::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) chooseAt(event->position().x());
}

void AmountSlider::mouseMoveEvent(QMouseEvent* event) {
    if (event->buttons() & Qt::LeftButton) chooseAt(event->position().x());
}

void AmountSlider::wheelEvent(QWheelEvent* event) {
    // The pane around it scrolls; a value must not change by passing over it.
    event->ignore();
}

void AmountSlider::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Left:
        case Qt::Key_Down:
            return choose(m_amount - smallStep);
        case Qt::Key_Right:
        case Qt::Key_Up:
            return choose(m_amount + smallStep);
        case Qt::Key_PageDown:
            return choose(m_amount - largeStep);
        case Qt::Key_PageUp:
            return choose(m_amount + largeStep);
        case Qt::Key_Home:
            return choose(m_minimum);
        case Qt::Key_End:
            return choose(m_maximum);
        default:
            QWidget::keyPressEvent(event);
    }
}

void AmountSlider::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double middle = height() / 2.0;
    const QRectF track(margin, middle - trackHeight / 2, width() - 2 * margin, trackHeight);
    paintPanel(painter, track, trackHeight / 2, VeylaTheme::withOpacity(Qt::white, 0.14));
    QRectF filled = track;
    filled.setRight(knobX());
    paintPanel(painter, filled, trackHeight / 2, m_tint);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    painter.drawEllipse(QPointF(knobX(), middle), knobRadius - 1, knobRadius - 1);
    if (hasFocus()) {
        const QRectF ring(knobX() - margin, middle - margin, 2 * margin, 2 * margin);
        paintFocusRing(painter, ring, margin);
    }
}
