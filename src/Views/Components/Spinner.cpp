#include "Views/Components/Spinner.h"

#include "Views/Design/ApplicationLook.h"
#include "Views/Design/VeylaTheme.h"

#include <QPainter>

namespace {

constexpr int side = 18;
constexpr double ringWidth = 2;
constexpr int turnMilliseconds = 900;

}  // namespace

Spinner::Spinner() {
    setFixedSize(side, side);
    m_turn.setStartValue(0.0);
    m_turn.setEndValue(360.0);
    m_turn.setDuration(turnMilliseconds);
    m_turn.setLoopCount(-1);
    connect(&m_turn, &QVariantAnimation::valueChanged, this, qOverload<>(&QWidget::update));
}

void Spinner::paintEvent(QPaintEvent* /*event*/) {
    // What QPainter calls a degree of an arc.
    constexpr int degree = 16;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF ring = QRectF(rect()).adjusted(ringWidth, ringWidth, -ringWidth, -ringWidth);
    painter.setPen(QPen(VeylaTheme::withOpacity(Qt::white, 0.12), ringWidth));
    painter.drawEllipse(ring);
    painter.setPen(QPen(VeylaTheme::textSecondary(), ringWidth, Qt::SolidLine, Qt::RoundCap));
    painter.drawArc(ring, qRound((90 - m_turn.currentValue().toDouble()) * degree), -100 * degree);
}

void Spinner::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    // Standing still it says the same, beside its text.
    if (motionDuration(turnMilliseconds) > 0) m_turn.start();
}

void Spinner::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    m_turn.stop();
}
