#include "Views/Components/CheckBox.h"

#include "Views/Components/StyledButton.h"
#include "Views/Design/VeylaCard.h"
#include "Views/Design/VeylaTheme.h"

#include <QPainter>
#include <QSignalBlocker>

namespace {

constexpr double side = 14;
constexpr double cornerRadius = 4;
constexpr double gap = 8;
/// Room for the ring that shows the keyboard.
constexpr double margin = 2;

void paintTick(QPainter& painter, const QRectF& box) {
    constexpr double thickness = 1.75;
    painter.setPen(QPen(VeylaTheme::textOn(VeylaTheme::accentBlue()), thickness, Qt::SolidLine,
                        Qt::RoundCap, Qt::RoundJoin));
    const QPointF origin = box.topLeft();
    painter.drawPolyline(QPolygonF(
        {origin + QPointF(3.5, 7.25), origin + QPointF(6, 9.75), origin + QPointF(10.5, 4.5)}));
}

}  // namespace

CheckBox::CheckBox(const QString& title) {
    setText(title);
    setFont(systemFont({11, QFont::Medium}));
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void CheckBox::showIsOn(bool isOn) {
    const QSignalBlocker silence(this);
    setChecked(isOn);
}

QSize CheckBox::sizeHint() const {
    const int textWidth = fontMetrics().horizontalAdvance(text());
    return {static_cast<int>(margin + side + gap) + textWidth + 4,
            std::max(static_cast<int>(side + 2 * margin), fontMetrics().height()) + 4};
}

bool CheckBox::hitButton(const QPoint& position) const {
    return rect().contains(position);
}

void CheckBox::paintEvent(QPaintEvent* /*event*/) {
    constexpr double disabledOpacity = 0.4;
    constexpr double hoverLight = 0.08;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isEnabled()) painter.setOpacity(disabledOpacity);
    const QRectF box(margin, (height() - side) / 2, side, side);
    if (isChecked())
        paintPanel(painter, box, cornerRadius, VeylaTheme::accentBlue());
    else
        paintPanel(painter, box, cornerRadius, VeylaTheme::panelMuted(),
                   VeylaTheme::withOpacity(Qt::white, 0.3));
    if (underMouse() && isEnabled())
        paintPanel(painter, box, cornerRadius, VeylaTheme::withOpacity(Qt::white, hoverLight));
    if (isChecked()) paintTick(painter, box);
    painter.setPen(VeylaTheme::textPrimary());
    painter.drawText(QRectF(box.right() + gap, 0, width(), height()),
                     static_cast<int>(Qt::AlignVCenter | Qt::AlignLeft), text());
    if (hasFocus())
        paintFocusRing(painter, box.adjusted(-margin, -margin, margin, margin),
                       cornerRadius + margin);
}
