#include "Views/Components/TextLabel.h"

#include <QEvent>
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
    if (text == m_text) return;
    m_text = text;
    m_textWidth = -1;
    const bool isLine = m_lines == Lines::one;
    // What assistive technology reads; one line is painted below.
    setText(isLine ? onOneLine(text) : withBreakableWords(text));
    if (!isLine) setAccessibleName(QLabel::text() == text ? QString() : text);
    if (!isLine && hasFixedWidth()) setParagraphWidth(minimumWidth());
    updateGeometry();
}

void TextLabel::setParagraphWidth(int width) {
    setFixedSize(width, std::max(heightForWidth(width), fontMetrics().height()));
    // Layouts need not try other widths.
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void TextLabel::setColor(const QColor& color) {
    if (color == m_color) return;
    m_color = color;
    QPalette colors = palette();
    colors.setColor(QPalette::WindowText, color);
    setPalette(colors);
}

int TextLabel::textWidth() const {
    if (m_textWidth < 0) m_textWidth = fontMetrics().horizontalAdvance(text());
    return m_textWidth;
}

QSize TextLabel::sizeHint() const {
    if (m_lines == Lines::paragraph) return hasFixedWidth() ? minimumSize() : QLabel::sizeHint();
    return {hasFixedWidth() ? minimumWidth() : textWidth() + 1, fontMetrics().height()};
}

QSize TextLabel::minimumSizeHint() const {
    if (m_lines == Lines::paragraph)
        return hasFixedWidth() ? minimumSize() : QLabel::minimumSizeHint();
    return {std::min(sizeHint().width(), 2 * fontMetrics().height()), fontMetrics().height()};
}

void TextLabel::paintEvent(QPaintEvent* event) {
    if (m_lines == Lines::paragraph) return QLabel::paintEvent(event);
    QPainter painter(this);
    painter.setPen(m_color);
    const bool isCut = textWidth() > width();
    painter.drawText(rect(), static_cast<int>(alignment() | Qt::TextSingleLine),
                     isCut ? fontMetrics().elidedText(text(), Qt::ElideRight, width()) : text());
}

// Whether the text is cut is found out when somebody asks for the whole of it.
bool TextLabel::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip && m_lines == Lines::one) setToolTip(cutToolTip());
    return QLabel::event(event);
}

void TextLabel::changeEvent(QEvent* event) {
    if (event->type() == QEvent::FontChange) m_textWidth = -1;
    QLabel::changeEvent(event);
}

QString TextLabel::cutToolTip() const {
    if (textWidth() <= width()) return {};
    // A tooltip that could be markup is read as markup.
    return QStringLiteral("<qt>%1</qt>").arg(text().toHtmlEscaped());
}
