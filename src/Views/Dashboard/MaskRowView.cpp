#include "Views/Dashboard/MaskRowView.h"

#include "Drawing/SymbolPainter.h"
#include "Drawing/SystemColors.h"
#include "Platform/AccessibleIdentifier.h"
#include "Views/Components/StyledButton.h"
#include "Views/Design/Typography.h"
#include "Views/Design/VeylaCard.h"
#include "Views/Design/VeylaTheme.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QDrag>
#include <QFontMetrics>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QToolTip>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int horizontalPadding = 12;
constexpr int verticalPadding = 10;
constexpr int dotDiameter = 12;
constexpr int gap = 10;
constexpr double cornerRadius = 10;

QFont nameFont() {
    return systemFont({13});
}

QFont summaryFont() {
    return systemFont({10});
}

Symbol visibilitySymbol(bool isVisible) {
    const QColor color =
        VeylaTheme::withOpacity(VeylaTheme::textSecondary(), isVisible ? 0.6 : 0.3);
    return {isVisible ? u"eye"_s : u"eye.slash"_s, 11, SymbolWeight::regular, color};
}

}  // namespace

MaskRowView::MaskRowView(const ScreenMask& mask, bool isSelected, const Actions& actions)
    : m_mask(mask), m_isSelected(isSelected), m_actions(actions) {
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleIdentifier(*this, u"mask-row-"_s + uuidText(mask.id));
    describe();
}

void MaskRowView::show(const ScreenMask& mask, bool isSelected) {
    if (mask == m_mask && isSelected == m_isSelected) return;
    const bool changesSelection = isSelected != m_isSelected;
    m_mask = mask;
    m_isSelected = isSelected;
    describe();
    update();
    if (!changesSelection) return;
    QAccessible::State changed;
    changed.selected = true;
    QAccessibleStateChangeEvent event(this, changed);
    QAccessible::updateAccessibility(&event);
}

void MaskRowView::describe() {
    const QString opacity = truncatedText(m_mask.opacity * 100);
    setAccessibleName(u"%1, %2, %3% opacity, %4"_s.arg(
        onOneLine(m_mask.name), ScreenMask::displayName(m_mask.style), opacity,
        m_mask.isVisible ? u"visible"_s : u"hidden"_s));
}

void MaskRowView::describeState(QAccessible::State& state) const {
    state.selectable = true;
    state.selected = m_isSelected;
}

int MaskRowView::rowHeight() {
    return QFontMetrics(nameFont()).height() + QFontMetrics(summaryFont()).height() + 2 +
           2 * verticalPadding;
}

QString MaskRowView::summaryText(const ScreenMask& mask) {
    return u"%1 × %2 px • %3%"_s.arg(truncatedText(mask.frame.width),
                                     truncatedText(mask.frame.height),
                                     truncatedText(mask.opacity * 100));
}

std::optional<QUuid> MaskRowView::maskIDIn(const QMimeData* payload) {
    if (!payload || !payload->hasText()) return std::nullopt;
    const QString text = payload->text();
    const QUuid id = QUuid::fromString(text);
    const bool isID = !id.isNull() && text.compare(uuidText(id), Qt::CaseInsensitive) == 0;
    return isID ? std::optional(id) : std::nullopt;
}

QRect MaskRowView::textRect() const {
    const int left = horizontalPadding + dotDiameter + gap;
    const int right = horizontalPadding + static_cast<int>(visibilitySymbol(true).side()) + gap;
    return {left, verticalPadding, width() - left - right, height() - 2 * verticalPadding};
}

void MaskRowView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor accent = VeylaTheme::accentBlue();
    if (m_isSelected) {
        // The ground below shows through, so that the tint is the same on every card.
        paintPanel(painter, rect(), cornerRadius, VeylaTheme::withOpacity(accent, 0.12),
                   VeylaTheme::withOpacity(accent, 0.45));
    } else {
        paintPanel(painter, rect(), cornerRadius, VeylaTheme::sidebarSecondary());
    }
    const QRectF dot(horizontalPadding, (height() - dotDiameter) / 2.0, dotDiameter, dotDiameter);
    painter.setPen(QPen(VeylaTheme::withOpacity(Qt::white, 0.25), 1));
    painter.setBrush(paintColor(Color::fromHex(m_mask.colorHex).value_or(SystemColors::black)));
    painter.drawEllipse(dot.adjusted(0.5, 0.5, -0.5, -0.5));

    const QRect text = textRect();
    const auto drawLine = [&](const QFont& font, const QColor& color, int top,
                              const QString& line) {
        const QFontMetrics metrics(font);
        painter.setFont(font);
        painter.setPen(color);
        painter.drawText(QRect(text.left(), top, text.width(), metrics.height()),
                         static_cast<int>(Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine),
                         metrics.elidedText(line, Qt::ElideRight, text.width()));
        return top + metrics.height();
    };
    const int below =
        drawLine(nameFont(), VeylaTheme::textPrimary(), text.top(), onOneLine(m_mask.name));
    drawLine(summaryFont(), VeylaTheme::textSecondary(), below + 2, summaryText(m_mask));

    const Symbol eye = visibilitySymbol(m_mask.isVisible);
    SymbolPainter::paint(painter, eye,
                         {width() - horizontalPadding - eye.side() / 2, height() / 2.0});
    if (hasFocus()) paintFocusRing(painter, rect(), cornerRadius);
}

void MaskRowView::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) m_pressedAt = event->position().toPoint();
}

void MaskRowView::mouseMoveEvent(QMouseEvent* event) {
    if (!m_pressedAt) return;
    const int distance = (event->position().toPoint() - *m_pressedAt).manhattanLength();
    if (distance >= QApplication::startDragDistance()) startDrag();
}

void MaskRowView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !m_pressedAt) return;
    m_pressedAt.reset();
    if (rect().contains(event->position().toPoint())) m_actions.onSelect();
}

void MaskRowView::startDrag() {
    auto* const payload = new QMimeData;
    payload->setText(uuidText(m_mask.id));
    // The row may go away while it is being dragged.
    auto* const drag = new QDrag(window());
    drag->setMimeData(payload);
    drag->setPixmap(grab());
    drag->setHotSpot(*m_pressedAt);
    m_pressedAt.reset();
    drag->exec(Qt::CopyAction | Qt::MoveAction, Qt::MoveAction);
}

void MaskRowView::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
        case Qt::Key_Space:
            return m_actions.onSelect();
        default:
            event->ignore();
    }
}

void MaskRowView::contextMenuEvent(QContextMenuEvent* event) {
    if (!m_actions.onContextMenu) return event->ignore();
    const bool isFromKeyboard = event->reason() == QContextMenuEvent::Keyboard;
    m_actions.onContextMenu(isFromKeyboard ? mapToGlobal(rect().center()) : event->globalPos());
}

bool MaskRowView::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return QWidget::event(event);
    const QString name = onOneLine(m_mask.name);
    const bool isCut = QFontMetrics(nameFont()).horizontalAdvance(name) > textRect().width();
    const auto* const help = static_cast<QHelpEvent*>(event);
    if (isCut)
        QToolTip::showText(help->globalPos(), u"<qt>"_s + name.toHtmlEscaped() + u"</qt>"_s, this);
    else
        QToolTip::hideText();
    return true;
}
