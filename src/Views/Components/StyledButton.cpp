#include "Views/Components/StyledButton.h"

#include "Views/Design/VeylaCard.h"
#include "Views/Design/VeylaTheme.h"

#include <QEvent>
#include <QKeyEvent>
#include <QPainter>
#include <cmath>

namespace {

constexpr double symbolGap = 6;
constexpr double disabledOpacity = 0.4;
constexpr double hoverLight = 0.07;
constexpr double pressedShade = 0.18;

}  // namespace

StyledButton::StyledButton(const QString& title, const ButtonLook& look) : m_look(look) {
    setText(title);
    setFont(systemFont(look.text));
    setAutoDefault(false);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::ArrowCursor);
    const auto horizontal = look.fixedSize.isValid() ? QSizePolicy::Fixed : QSizePolicy::Minimum;
    setSizePolicy(horizontal, QSizePolicy::Fixed);
}

void StyledButton::show(const QString& title, const QString& symbolName) {
    if (title == text() && symbolName == m_look.symbol.name) return;
    m_look.symbol.name = symbolName;
    setText(title);
    updateGeometry();
    update();
}

void StyledButton::setSymbolColor(const QColor& color) {
    if (color == m_look.symbol.color) return;
    m_look.symbol.color = color;
    update();
}

void StyledButton::setLook(const ButtonLook& look) {
    m_look = look;
    setFont(systemFont(look.text));
    updateGeometry();
    update();
}

double StyledButton::contentWidth() const {
    const bool hasSymbol = !m_look.symbol.name.isEmpty();
    const double symbolWidth = hasSymbol ? m_look.symbol.side() : 0;
    if (text().isEmpty()) return symbolWidth;
    const double gap = hasSymbol ? symbolGap : 0;
    return symbolWidth + gap + fontMetrics().horizontalAdvance(text());
}

QSize StyledButton::sizeHint() const {
    if (m_look.fixedSize.isValid()) return m_look.fixedSize;
    const double height = std::max(text().isEmpty() ? 0.0 : fontMetrics().height(),
                                   m_look.symbol.name.isEmpty() ? 0.0 : m_look.symbol.side());
    const QMargins& padding = m_look.padding;
    return {static_cast<int>(std::ceil(contentWidth())) + padding.left() + padding.right(),
            static_cast<int>(std::ceil(height)) + padding.top() + padding.bottom()};
}

void StyledButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isEnabled()) painter.setOpacity(disabledOpacity);
    const QRectF box = rect();
    if (m_look.hasGradient)
        paintPanel(painter, box, m_look.cornerRadius, VeylaTheme::primaryGradient(box));
    else if (m_look.fill.isValid())
        paintPanel(painter, box, m_look.cornerRadius, m_look.fill, m_look.border);
    if (isDown())
        paintPanel(painter, box, m_look.cornerRadius,
                   VeylaTheme::withOpacity(Qt::black, pressedShade));
    else if (underMouse() && isEnabled())
        paintPanel(painter, box, m_look.cornerRadius,
                   VeylaTheme::withOpacity(Qt::white, hoverLight));
    paintContent(painter);
    if (hasFocus()) paintFocusRing(painter, box, m_look.cornerRadius);
}

void StyledButton::paintContent(QPainter& painter) {
    const QMargins& padding = m_look.padding;
    double x = m_look.isLeading ? padding.left() : (width() - contentWidth()) / 2;
    const double middle = height() / 2.0;
    if (!m_look.symbol.name.isEmpty()) {
        const double side = m_look.symbol.side();
        SymbolPainter::paint(painter, m_look.symbol, {x + side / 2, middle});
        x += side + symbolGap;
    }
    if (text().isEmpty()) return;
    painter.setPen(m_look.textColor);
    const QRectF place(x, 0, width() - x, height());
    painter.drawText(place, static_cast<int>(Qt::AlignVCenter | Qt::AlignLeft), text());
}

void StyledButton::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        click();
    else
        QPushButton::keyPressEvent(event);
}

void StyledButton::enterEvent(QEnterEvent* /*event*/) {
    update();
}

void StyledButton::leaveEvent(QEvent* /*event*/) {
    update();
}

StyledButton* primaryButton(const QString& title, const QString& symbolName) {
    ButtonLook look;
    look.text = {13, QFont::DemiBold};
    look.textColor = Qt::white;
    look.symbol = {symbolName, 12, SymbolWeight::semibold, Qt::white};
    look.hasGradient = true;
    look.cornerRadius = 9;
    look.padding = {16, 10, 16, 10};
    return new StyledButton(title, look);
}

StyledButton* secondaryButton(const QString& title, const QString& symbolName) {
    ButtonLook look;
    look.text = {11, QFont::Medium};
    look.textColor = VeylaTheme::textPrimary();
    look.symbol = {symbolName, 11, SymbolWeight::regular, VeylaTheme::textSecondary()};
    look.fill = VeylaTheme::sidebarSecondary();
    look.border = VeylaTheme::softBorder();
    return new StyledButton(title, look);
}

StyledButton* iconButton(const QString& label, const QString& symbolName) {
    constexpr int side = 30;
    ButtonLook look;
    look.symbol = {symbolName, 12, SymbolWeight::regular, VeylaTheme::textSecondary()};
    look.fill = VeylaTheme::panelMuted();
    look.border = VeylaTheme::softBorder();
    look.fixedSize = {side, side};
    auto* const button = new StyledButton(QString(), look);
    button->setAccessibleName(label);
    button->setToolTip(label);
    return button;
}

StyledButton* bareIconButton(const QString& label, const Symbol& symbol, const QSize& size) {
    ButtonLook look;
    look.symbol = symbol;
    look.cornerRadius = 5;
    look.fixedSize = size;
    auto* const button = new StyledButton(QString(), look);
    button->setAccessibleName(label);
    button->setToolTip(label);
    return button;
}

StyledButton* textButton(const QString& title, const TextStyle& text, const QMargins& padding,
                         double cornerRadius) {
    ButtonLook look;
    look.text = text;
    look.textColor = VeylaTheme::textPrimary();
    look.fill = VeylaTheme::panelMuted();
    look.border = VeylaTheme::softBorder();
    look.cornerRadius = cornerRadius;
    look.padding = padding;
    return new StyledButton(title, look);
}

StyledButton* cancelButton() {
    return textButton(QStringLiteral("Cancel"), {11, QFont::Medium}, {14, 7, 14, 7}, 7);
}

StyledButton* prominentButton(const QString& title, const QColor& fill) {
    ButtonLook look;
    look.text = {11, QFont::DemiBold};
    look.textColor = fill.isValid() ? VeylaTheme::textOn(fill) : QColor(Qt::white);
    look.fill = fill;
    look.hasGradient = !fill.isValid();
    look.padding = {14, 7, 14, 7};
    return new StyledButton(title, look);
}

StyledButton* destructiveButton(const QString& title) {
    ButtonLook look;
    look.text = {11, QFont::Medium};
    look.textColor = VeylaTheme::accentRed();
    look.fill = VeylaTheme::withOpacity(VeylaTheme::accentRed(), 0.1);
    look.border = VeylaTheme::withOpacity(VeylaTheme::accentRed(), 0.25);
    look.padding = {14, 7, 14, 7};
    return new StyledButton(title, look);
}

StyledButton* linkButton(const QString& title, const TextStyle& text, const QColor& color,
                         const QString& address) {
    ButtonLook look;
    look.text = text;
    look.textColor = color;
    look.cornerRadius = 4;
    look.padding = {6, 3, 6, 3};
    auto* const button = new StyledButton(title, look);
    QFont font = button->font();
    font.setUnderline(true);
    button->setFont(font);
    button->setCursor(Qt::PointingHandCursor);
    button->setToolTip(address);
    return button;
}

void paintFocusRing(QPainter& painter, const QRectF& rect, double cornerRadius) {
    constexpr double width = 2;
    paintPanel(painter, rect, cornerRadius, Qt::NoBrush, VeylaTheme::focusRing(), width);
}
