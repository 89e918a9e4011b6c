#pragma once

#include <QFont>
#include <QString>

/// The fonts of the program's windows. Sizes count in points of the design, of which 13 are the
/// desktop's default text size: a user who has chosen larger text gets all of it larger, never
/// smaller.
struct TextStyle {
    double size = 12;
    QFont::Weight weight = QFont::Normal;
    /// Extra room after each letter, in points.
    double tracking = 0;
    bool isMonospaced = false;
    /// Shown in capitals; the text itself stays as it is.
    bool isUpperCase = false;

    bool operator==(const TextStyle&) const = default;
};

/// Follows the application's font; cheap to ask again.
QFont systemFont(const TextStyle& style);

/// How much larger than the design the text is, cheap to ask for; lengths that hold text grow with
/// it.
double textScale();

/// The number without its fraction, as views write lengths and percentages.
QString truncatedText(double number);

/// The text on one line: line breaks and control characters become blanks, and what no window
/// could show is cut off.
QString onOneLine(const QString& text);

/// The text with places, which nobody sees, where a word may be broken that is too long for a line.
QString withBreakableWords(const QString& text);
