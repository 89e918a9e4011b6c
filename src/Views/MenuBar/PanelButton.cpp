#include "Views/MenuBar/PanelButton.h"

#include "Views/Components/StyledButton.h"
#include "Views/Design/TextLine.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QToolTip>

namespace {

constexpr double disabledOpacity = 0.4;
constexpr double pressedOpacity = 0.7;

}  // namespace

PanelButton::PanelButton(const QString& title, QWidget* parent) : QPushButton(title, parent) {
    setAutoDefault(false);
    setFocusPolicy(Qt::StrongFocus);
}

void PanelButton::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            click();
            break;
        case Qt::Key_Space:
            QPushButton::keyPressEvent(event);
            break;
        default:
            event->ignore();
    }
}

void PanelButton::enterEvent(QEnterEvent* /*event*/) {
    update();
}

void PanelButton::leaveEvent(QEvent* /*event*/) {
    update();
}

bool PanelButton::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip || m_cutText.isEmpty()) return QPushButton::event(event);
    // A tooltip that could be markup is read as markup.
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(),
                       QStringLiteral("<qt>%1</qt>").arg(m_cutText.toHtmlEscaped()), this);
    return true;
}

void PanelButton::beginPaint(QPainter& painter) {
    m_cutText.clear();
    painter.setOpacity(!isEnabled() ? disabledOpacity : isDown() ? pressedOpacity : 1);
}

void PanelButton::paintFocus(QPainter& painter) const {
    painter.setOpacity(1);
    if (hasFocus()) paintFocusRing(painter, rect(), PanelRow::cornerRadius);
}

void PanelButton::paintLine(QPainter& painter, TextLine& line, const QRect& rect,
                            const QString& text, const QFont& font, const QColor& color) {
    painter.setPen(color);
    line.paint(painter, rect, text, font);
    if (!line.cutText().isEmpty()) m_cutText = line.cutText();
}
