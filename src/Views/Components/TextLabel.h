#pragma once

#include "Views/Design/Typography.h"

#include <QColor>
#include <QLabel>

/// Text as it is, never read as markup. One line is cut off with an ellipsis where there is no
/// room, and then shows all of itself as its tooltip; a paragraph wraps, inside words where it
/// must.
class TextLabel final : public QLabel {
public:
    enum class Lines { one, paragraph };

    TextLabel(const QString& text, const TextStyle& style, const QColor& color,
              Lines lines = Lines::one);

    /// Shows another text; costs nothing when it is the same.
    void showText(const QString& text);
    void setColor(const QColor& color);
    /// Gives a line a width, in points, so that other texts do not change what is around it.
    void setLineWidth(int width) { setFixedSize(width, fontMetrics().height()); }
    /// Wraps a paragraph at that width, in points, and takes as many lines as that needs.
    void setParagraphWidth(int width);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    bool hasFixedWidth() const { return minimumWidth() == maximumWidth(); }
    QString cutToolTip() const;
    int textWidth() const;

    QString m_text;
    QColor m_color;
    Lines m_lines;
    /// Of the text on one line; negative until it is needed. Layouts ask for it many times.
    mutable int m_textWidth = -1;
};
