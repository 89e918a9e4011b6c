#include "Views/Design/TextLine.h"

#include "Views/Design/Typography.h"

#include <QFontMetrics>
#include <QPainter>
#include <QTextOption>

TextLine::TextLine() {
    QTextOption option;
    option.setWrapMode(QTextOption::NoWrap);
    // As the windows are read, whatever language the text begins with.
    option.setTextDirection(Qt::LeftToRight);
    m_layout.setTextOption(option);
    m_layout.setCacheEnabled(true);
}

void TextLine::paint(QPainter& painter, const QRect& rect, const QString& text, const QFont& font) {
    if (text != m_text || font != m_font || rect.width() != m_width) {
        m_text = text;
        m_font = font;
        m_width = rect.width();
        const QString line = onOneLine(text);
        layOut(line);
        const bool isCut = qRound(m_layout.lineAt(0).naturalTextWidth()) > m_width;
        m_cutText = isCut ? line : QString();
        if (isCut) layOut(QFontMetrics(font).elidedText(line, Qt::ElideRight, m_width));
    }
    const QTextLine line = m_layout.lineAt(0);
    // Not its height(), which is rounded up.
    const double room = rect.height() - line.ascent() - line.descent();
    m_layout.draw(&painter, QPointF(rect.left(), rect.top() + room / 2));
}

void TextLine::layOut(const QString& line) {
    m_layout.setText(line);
    m_layout.setFont(m_font);
    m_layout.beginLayout();
    m_layout.createLine();
    m_layout.endLayout();
}
