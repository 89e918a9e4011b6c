#include "Views/Design/Typography.h"

#include <QFontInfo>
#include <QGuiApplication>
#include <algorithm>
#include <cmath>

namespace {

// Desktops ship with text of 9 to 11 typographic points, 12 to 15 pixels at the usual 96 dots per
// inch; the design stands for all of these.
constexpr double largestOrdinaryText = 15;

constexpr qsizetype longestLine = 1000;

}  // namespace

double textScale() {
    return std::max(1.0, QFontInfo(QGuiApplication::font()).pixelSize() / largestOrdinaryText);
}

QFont systemFont(const TextStyle& style) {
    QFont font = QGuiApplication::font();
    if (style.isMonospaced) {
        font.setStyleHint(QFont::Monospace);
        font.setFamilies({QStringLiteral("monospace")});
    }
    const double pixels = style.size * textScale();
    font.setPixelSize(std::max(1, qRound(pixels)));
    font.setWeight(style.weight);
    if (style.tracking != 0)
        font.setLetterSpacing(QFont::AbsoluteSpacing, style.tracking * textScale());
    if (style.isUpperCase) font.setCapitalization(QFont::AllUppercase);
    return font;
}

QString truncatedText(double number) {
    return QString::number(std::trunc(number), 'f', 0);
}

QString onOneLine(const QString& text) {
    QString line = text.left(longestLine);
    // Half of a character is none.
    if (line.size() < text.size() && line.back().isHighSurrogate()) line.chop(1);
    for (QChar& character : line) {
        const bool breaksLine = character.category() == QChar::Other_Control ||
                                character == QChar::LineSeparator ||
                                character == QChar::ParagraphSeparator;
        if (breaksLine) character = u' ';
    }
    return line;
}
