#pragma once

#include <QColor>
#include <QLinearGradient>
#include <QRectF>

/// The fixed dark palette of the program's windows. Masks on the screen do not draw with it.
namespace VeylaTheme {

/// Lets text, accents and outlines stand out more from the grounds, which stay as they are. For
/// users who ask for it: text then has a contrast of at least 7 to 1 (WCAG 2.1, level AAA).
void setContrastIncreased(bool isIncreased);

QColor background();
QColor window();
QColor windowSecondary();
QColor sidebar();
QColor sidebarSecondary();
QColor panel();
QColor panelElevated();
QColor panelMuted();
QColor border();
QColor softBorder();
QColor textPrimary();
QColor textSecondary();
QColor textMuted();
QColor accentBlue();
QColor accentIndigo();
QColor accentGreen();
QColor accentRed();
/// Not part of the brand: what locked things are marked with, and where the keyboard is.
QColor warning();
QColor focusRing();

/// For primary actions: from the left edge of `rect` to its right edge.
QLinearGradient primaryGradient(const QRectF& rect);

/// For text and marks on an accent: white, or, with more contrast, nearly black where that is
/// easier to read.
QColor textOn(const QColor& accent);

/// The same colour with its opacity multiplied.
QColor withOpacity(QColor color, double factor);

}  // namespace VeylaTheme
