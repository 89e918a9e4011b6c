#pragma once

#include "Drawing/SymbolPainter.h"
#include "Views/Design/Typography.h"

#include <QColor>
#include <QMargins>
#include <QPushButton>

/// How a button looks; lengths are in points. Colours that are not valid are not painted.
struct ButtonLook {
    TextStyle text{};
    QColor textColor{};
    /// Its name is empty for a button without a symbol.
    Symbol symbol{};
    QColor fill{};
    /// Fills with the gradient of primary actions instead.
    bool hasGradient = false;
    QColor border{};
    double cornerRadius = 7;
    QMargins padding{10, 8, 10, 8};
    /// Nothing means as large as the content.
    QSize fixedSize{};
    bool isLeading = false;
};

/// A push button with the program's own look: symbol, text, or both. Lightens under the pointer
/// and shows where the keyboard is.
class StyledButton final : public QPushButton {
public:
    StyledButton(const QString& title, const ButtonLook& look);

    /// Changes what is shown; costs nothing when it is the same.
    void show(const QString& title, const QString& symbolName);
    void setSymbolColor(const QColor& color);
    /// Takes another look, symbol included.
    void setLook(const ButtonLook& look);

    using QPushButton::show;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    /// Return presses it as Space does.
    void keyPressEvent(QKeyEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    double contentWidth() const;
    void paintContent(QPainter& painter);

    ButtonLook m_look;
};

/// Full-width or hugging button on the gradient.
StyledButton* primaryButton(const QString& title, const QString& symbolName);
/// Button on the sidebar's second colour.
StyledButton* secondaryButton(const QString& title, const QString& symbolName);
/// Square button of a symbol alone; `label` is what assistive technology and the tooltip say.
StyledButton* iconButton(const QString& label, const QString& symbolName);
/// A symbol without any box around it.
StyledButton* bareIconButton(const QString& label, const Symbol& symbol, const QSize& size);
/// Button of text alone on the muted panel.
StyledButton* textButton(const QString& title, const TextStyle& text, const QMargins& padding,
                         double cornerRadius);

/// Small button that leaves everything as it is.
StyledButton* cancelButton();
/// Small button of text alone that stands out, on a colour or, without one, on the gradient.
StyledButton* prominentButton(const QString& title, const QColor& fill = {});
/// Small button of text alone for what cannot be undone.
StyledButton* destructiveButton(const QString& title);
/// Underlined text that leads out of the program, to that address.
StyledButton* linkButton(const QString& title, const TextStyle& text, const QColor& color,
                         const QString& address);

/// Draws the ring that shows where the keyboard is, along the inside of `rect`.
void paintFocusRing(QPainter& painter, const QRectF& rect, double cornerRadius);
