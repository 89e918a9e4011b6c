#include "Views/Components/PlainTextField.h"

#include "Views/Components/StyledButton.h"
#include "Views/Design/VeylaCard.h"
#include "Views/Design/VeylaTheme.h"

#include <QKeyEvent>
#include <QPainter>
#include <algorithm>
#include <array>

namespace {

// Qt's field claims the other keys that edit, but leaves these to shortcuts of the window.
constexpr std::array unclaimedEditing{QKeySequence::DeleteStartOfWord,
                                      QKeySequence::DeleteEndOfWord, QKeySequence::DeleteEndOfLine,
                                      QKeySequence::DeleteCompleteLine};

bool isUnclaimedEditing(QKeyEvent& event) {
    return std::any_of(unclaimedEditing.begin(), unclaimedEditing.end(),
                       [&](QKeySequence::StandardKey key) { return event.matches(key); });
}

}  // namespace

PlainTextField::PlainTextField(const QString& placeholder, const TextStyle& style, Border border)
    : m_border(border) {
    setPlaceholderText(placeholder);
    setFont(systemFont(style));
    setFrame(false);
    const bool isRounded = border == Border::rounded;
    setTextMargins(isRounded ? QMargins(6, 5, 6, 5) : QMargins(-2, 2, 4, 2));
    QPalette colors = palette();
    colors.setColor(QPalette::Base, Qt::transparent);
    colors.setColor(QPalette::Text, VeylaTheme::textPrimary());
    colors.setColor(QPalette::PlaceholderText, VeylaTheme::textMuted());
    colors.setColor(QPalette::Highlight, VeylaTheme::accentBlue());
    colors.setColor(QPalette::HighlightedText, VeylaTheme::textOn(VeylaTheme::accentBlue()));
    setPalette(colors);
}

bool PlainTextField::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride &&
        isUnclaimedEditing(static_cast<QKeyEvent&>(*event))) {
        event->accept();
        return true;
    }
    return QLineEdit::event(event);
}

void PlainTextField::paintEvent(QPaintEvent* event) {
    constexpr double cornerRadius = 5;
    const bool hasBorder = m_border == Border::rounded;
    if (hasFocus() || hasBorder) {
        QPainter painter(this);
        paintPanel(painter, rect(), cornerRadius, VeylaTheme::panelMuted(),
                   VeylaTheme::withOpacity(Qt::white, hasBorder ? 0.14 : 0));
        if (hasFocus()) paintFocusRing(painter, rect(), cornerRadius);
    }
    QLineEdit::paintEvent(event);
}
