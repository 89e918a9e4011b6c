#include "Views/Components/TextLabel.h"

#include <QPainter>
#include <algorithm>

TextLabel::TextLabel(const QString& text, const TextStyle& style, const QColor& color, Lines lines)
    : m_lines(lines) {
    setTextFormat(Qt::PlainText);
    setFont(systemFont(style));
    setWordWrap(lines == Lines::paragraph);
    setTextInteractionFlags(Qt::NoTextInteraction);
    if (lines == Lines::one) setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setColor(color);
    showText(text);
}

void TextLabel::showText(const QString& text) {
    if (text == m_text && text == QLabel::text()) return;
    m_text = text;
    // What assistive technology reads; one line is painted below.
    setText(m_lines == Lines::one ? onOneLine(text) : text);
    if (minimumWidth() == maximumWidth()) setParagraphWidth(minimumWidth());
    updateToolTip();
    updateGeometry();
}

void TextLabel::setParagraphWidth(int width) {
    setFixedSize(width, heightForWidth(width));
}

void TextLabel::setColor(const QColor& color) {
    if (color == m_color) return;
    m_color = color;
    QPalette colors = palette();
    colors.setColor(QPalette::WindowText, color);
    setPalette(colors);
}

QSize TextLabel::sizeHint() const {
    if (m_lines == Lines::paragraph) return QLabel::sizeHint();
    return {fontMetrics().horizontalAdvance(text()) + 1, fontMetrics().height()};
}

QSize TextLabel::minimumSizeHint() const {
    if (m_lines == Lines::paragraph) return QLabel::minimumSizeHint();
    return {std::min(sizeHint().width(), 2 * fontMetrics().height()), fontMetrics().height()};
}

void TextLabel::paintEvent(QPaintEvent* event) {
    if (m_lines == Lines::paragraph) return QLabel::paintEvent(event);
    QPainter painter(this);
    painter.setPen(m_color);
    painter.drawText(rect(), static_cast<int>(alignment() | Qt::TextSingleLine),
                     fontMetrics().elidedText(text(), Qt::ElideRight, width()));
}

void TextLabel::resizeEvent(QResizeEvent* event) {
    QLabel::resizeEvent(event);
    updateToolTip();
}

void TextLabel::updateToolTip() {
    const bool isCut = m_lines == Lines::one && sizeHint().width() > width() + 1;
    // A tooltip that could be markup is read as markup.
    setToolTip(isCut ? text().toHtmlEscaped().prepend(QStringLiteral("<qt>")) +
                           QStringLiteral("</qt>")
                     : QString());
}
