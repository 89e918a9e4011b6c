#pragma once

#include <QFont>
#include <QString>
#include <QTextLayout>

class QPainter;
class QRect;

/// One line of text for a view that paints itself. Finding the glyphs takes longer than painting
/// them, so they are kept until another text, font or width is painted.
class TextLine {
public:
    TextLine();

    /// Paints the text from the left edge in the middle of the height, in the painter's pen, as
    /// one line that is cut off with an ellipsis where there is no room.
    void paint(QPainter& painter, const QRect& rect, const QString& text, const QFont& font);

    /// The whole of what did not fit when it was painted last; empty when it did.
    const QString& cutText() const { return m_cutText; }

private:
    void layOut(const QString& line);

    QString m_text;
    QFont m_font;
    int m_width = -1;
    QString m_cutText;
    QTextLayout m_layout;
};
