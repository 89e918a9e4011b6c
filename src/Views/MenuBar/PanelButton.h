#pragma once

#include <QPushButton>
#include <QString>

class QPainter;
class TextLine;

/// A button of the menu bar panel, without any chrome, as wide as its place. Space and Enter press
/// it; the arrow keys are left to the panel. Text that has no room is cut off with an ellipsis and
/// then shown in full as the tooltip.
class PanelButton : public QPushButton {
public:
    /// `title` is what assistive technology calls it. Buttons keep the font that they paint with
    /// themselves: setting the widget's takes longer than all else here.
    PanelButton(const QString& title, QWidget* parent);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    bool event(QEvent* event) override;

    /// To be called before anything is painted: fades a button that is disabled or held down.
    void beginPaint(QPainter& painter);
    /// The ring that shows where the keyboard is.
    void paintFocus(QPainter& painter) const;
    /// Draws one line of text in the middle of the height of `rect`; `line` keeps what it found
    /// out.
    void paintLine(QPainter& painter, TextLine& line, const QRect& rect, const QString& text,
                   const QFont& font, const QColor& color);

private:
    /// What has been cut off when it was painted last; empty when all was shown.
    QString m_cutText;
};

namespace PanelRow {
inline constexpr int horizontalPadding = 10;
inline constexpr int gap = 8;
/// Of the box that a symbol is centred in.
inline constexpr int symbolBox = 16;
inline constexpr double cornerRadius = 6;
}  // namespace PanelRow
