#include "Views/Components/ToggleSwitch.h"

#include "Views/Components/StyledButton.h"
#include "Views/Design/VeylaCard.h"
#include "Views/Design/VeylaTheme.h"

#include <QEvent>
#include <QPainter>
#include <QSignalBlocker>

namespace {

constexpr QSizeF track{30, 18};
constexpr double knobInset = 2;
constexpr double gap = 8;

}  // namespace

ToggleSwitch::ToggleSwitch(const QString& title, const QColor& tint) : m_tint(tint) {
    setText(title);
    setFont(systemFont({11, QFont::Medium}));
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void ToggleSwitch::showIsOn(bool isOn) {
    const QSignalBlocker silence(this);
    setChecked(isOn);
}

QSize ToggleSwitch::sizeHint() const {
    if (!m_sizeHint.isValid()) {
        const int textWidth = fontMetrics().horizontalAdvance(text());
        m_sizeHint = {static_cast<int>(track.width() + gap) + textWidth + 4,
                      std::max(static_cast<int>(track.height()), fontMetrics().height()) + 6};
    }
    return m_sizeHint;
}

void ToggleSwitch::changeEvent(QEvent* event) {
    if (event->type() == QEvent::FontChange) m_sizeHint = {};
    QCheckBox::changeEvent(event);
}

bool ToggleSwitch::hitButton(const QPoint& position) const {
    return rect().contains(position);
}

void ToggleSwitch::paintEvent(QPaintEvent* /*event*/) {
    constexpr double disabledOpacity = 0.4;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isEnabled()) painter.setOpacity(disabledOpacity);
    const QRectF box(QPointF(2, (height() - track.height()) / 2), track);
    // The knob's place tells the state as well as the colour does.
    const QColor off = VeylaTheme::withOpacity(Qt::white, 0.16);
    paintPanel(painter, box, track.height() / 2, isChecked() ? m_tint : off);
    const double diameter = track.height() - 2 * knobInset;
    const double x = isChecked() ? box.right() - knobInset - diameter : box.left() + knobInset;
    painter.setPen(Qt::NoPen);
    painter.setBrush(isChecked() ? VeylaTheme::textOn(m_tint) : QColor(Qt::white));
    painter.drawEllipse(QRectF(x, box.top() + knobInset, diameter, diameter));
    painter.setPen(VeylaTheme::textPrimary());
    painter.drawText(QRectF(box.right() + gap, 0, width(), height()),
                     static_cast<int>(Qt::AlignVCenter | Qt::AlignLeft), text());
    if (hasFocus()) paintFocusRing(painter, box.adjusted(-2, -2, 2, 2), track.height() / 2 + 2);
}
