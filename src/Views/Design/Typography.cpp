#include "Views/Design/Typography.h"

#include "Drawing/RecentCache.h"

#include <QFontInfo>
#include <QGuiApplication>
#include <algorithm>
#include <cmath>
#include <optional>

namespace {

// Desktops ship with text of 9 to 11 typographic points, 12 to 15 pixels at the usual 96 dots per
// inch; the design stands for all of these.
constexpr double largestOrdinaryText = 15;

constexpr qsizetype longestLine = 1000;

QFont makeFont(const TextStyle& style) {
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

/// What follows from the application's font. Finding out its size takes a search in the font
/// database, and fonts that share their data find their glyphs only once.
struct DerivedFonts {
    static constexpr std::size_t styles = 32;

    QFont source;
    double scale;
    RecentCache<TextStyle, QFont> fonts{styles};
};

DerivedFonts& derivedFonts() {
    static std::optional<DerivedFonts> derived;
    const QFont source = QGuiApplication::font();
    if (!derived || !derived->source.isCopyOf(source))
        derived.emplace(DerivedFonts{
            source, std::max(1.0, QFontInfo(source).pixelSize() / largestOrdinaryText)});
    return *derived;
}

}  // namespace

double textScale() {
    return derivedFonts().scale;
}

QFont systemFont(const TextStyle& style) {
    return derivedFonts().fonts.findOrMake(style, [&] { return makeFont(style); });
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

QString withBreakableWords(const QString& text) {
    constexpr int longestWord = 32;
    constexpr int partLength = 8;
    constexpr QChar zeroWidthSpace(0x200B);
    QString result;
    result.reserve(text.size());
    qsizetype wordStart = 0;
    for (qsizetype index = 0; index <= text.size(); ++index) {
        if (index < text.size() && !text[index].isSpace()) continue;
        const QString word = text.mid(wordStart, index - wordStart);
        const bool isLong = word.size() > longestWord;
        for (qsizetype place = 0; place < word.size(); ++place) {
            const bool mayBreak = isLong && place % partLength == 0 && place > 0;
            // A character of two halves stays whole.
            if (mayBreak && !word[place].isLowSurrogate()) result += zeroWidthSpace;
            result += word[place];
        }
        if (index < text.size()) result += text[index];
        wordStart = index + 1;
    }
    return result;
}
