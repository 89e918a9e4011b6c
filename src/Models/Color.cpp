#include "Models/Color.h"

#include <QStringView>

namespace {

bool isAlphanumeric(char32_t codePoint) {
    switch (QChar::category(codePoint)) {
        case QChar::Letter_Uppercase:
        case QChar::Letter_Lowercase:
        case QChar::Letter_Titlecase:
        case QChar::Letter_Modifier:
        case QChar::Letter_Other:
        case QChar::Mark_NonSpacing:
        case QChar::Mark_SpacingCombining:
        case QChar::Mark_Enclosing:
        case QChar::Number_DecimalDigit:
        case QChar::Number_Letter:
        case QChar::Number_Other:
            return true;
        default:
            return false;
    }
}

/// The last code point of a text that is not empty; a lone surrogate stands for itself.
char32_t lastCodePoint(QStringView text) {
    const QChar last = text.back();
    if (last.isLowSurrogate() && text.size() > 1) {
        const QChar before = text[text.size() - 2];
        if (before.isHighSurrogate()) return QChar::surrogateToUcs4(before, last);
    }
    return last.unicode();
}

char32_t firstCodePoint(QStringView text) {
    const QChar first = text.front();
    if (first.isHighSurrogate() && text.size() > 1 && text[1].isLowSurrogate()) {
        return QChar::surrogateToUcs4(first, text[1]);
    }
    return first.unicode();
}

qsizetype codeUnitCount(char32_t codePoint) {
    return QChar::requiresSurrogates(codePoint) ? 2 : 1;
}

QStringView trimmedToAlphanumerics(QStringView text) {
    while (!text.isEmpty() && !isAlphanumeric(firstCodePoint(text))) {
        text = text.sliced(codeUnitCount(firstCodePoint(text)));
    }
    while (!text.isEmpty() && !isAlphanumeric(lastCodePoint(text))) {
        text.chop(codeUnitCount(lastCodePoint(text)));
    }
    return text;
}

std::optional<unsigned> hexDigitValue(char16_t unit) {
    if (unit >= u'0' && unit <= u'9') return unit - u'0';
    if (unit >= u'a' && unit <= u'f') return unit - u'a' + 10U;
    if (unit >= u'A' && unit <= u'F') return unit - u'A' + 10U;
    return std::nullopt;
}

}  // namespace

std::optional<Color> Color::fromHex(const QString& text) {
    constexpr qsizetype digitCount = 6;
    const QStringView digits = trimmedToAlphanumerics(text);
    if (digits.size() != digitCount) return std::nullopt;
    unsigned value = 0;
    for (const QChar digit : digits) {
        const std::optional<unsigned> digitValue = hexDigitValue(digit.unicode());
        if (!digitValue) return std::nullopt;
        value = value << 4U | *digitValue;
    }
    const auto component = [value](unsigned shift) { return (value >> shift & 0xFFU) / 255.0; };
    return Color{.red = component(16), .green = component(8), .blue = component(0)};
}
