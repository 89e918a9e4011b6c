#include "Views/Components/PlainTextField.h"

#include "Views/Components/StyledButton.h"
#include "Views/Design/VeylaCard.h"
#include "Views/Design/VeylaTheme.h"

#include <QPainter>

PlainTextField::PlainTextField(const QString& placeholder, const TextStyle& style) {
    setPlaceholderText(placeholder);
    setFont(systemFont(style));
    setFrame(false);
    // Else the look of standard fields is drawn below.
    setStyleSheet(
        QStringLiteral("QLineEdit { background: transparent; border: none; padding: 0; }"));
    setTextMargins(-2, 2, 4, 2);
    QPalette colors = palette();
    colors.setColor(QPalette::Base, Qt::transparent);
    colors.setColor(QPalette::Text, VeylaTheme::textPrimary());
    colors.setColor(QPalette::PlaceholderText, VeylaTheme::textMuted());
    colors.setColor(QPalette::Highlight, VeylaTheme::accentBlue());
    colors.setColor(QPalette::HighlightedText, Qt::white);
    setPalette(colors);
}

void PlainTextField::paintEvent(QPaintEvent* event) {
    constexpr double cornerRadius = 5;
    if (hasFocus()) {
        QPainter painter(this);
        paintPanel(painter, rect(), cornerRadius, VeylaTheme::panelMuted());
        paintFocusRing(painter, rect(), cornerRadius);
    }
    QLineEdit::paintEvent(event);
}
