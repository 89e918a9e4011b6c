#include "Views/Design/VeylaTheme.h"

#include "Drawing/SystemColors.h"

#include <cmath>

namespace {

QColor fromHex(const char16_t* hex) {
    return paintColor(Color::fromHex(QString::fromUtf16(hex)).value_or(SystemColors::black));
}

QColor white(double opacity) {
    return paintColor(SystemColors::white.withOpacity(opacity));
}

// WCAG 2.1, "relative luminance".
double relativeLuminance(const QColor& color) {
    const auto linear = [](double channel) {
        return channel <= 0.03928 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

bool isContrastIncreased = false;

/// A colour as it usually is, and for more contrast.
struct Tone {
    QColor usual;
    QColor increased;

    QColor now() const { return isContrastIncreased ? increased : usual; }
};

}  // namespace

namespace VeylaTheme {

void setContrastIncreased(bool isIncreased) {
    isContrastIncreased = isIncreased;
}

QColor background() {
    static const QColor color = fromHex(u"#090A0F");
    return color;
}

QColor window() {
    static const QColor color = fromHex(u"#0A0B10");
    return color;
}

QColor windowSecondary() {
    return window();
}

QColor sidebar() {
    static const QColor color = fromHex(u"#0E1017");
    return color;
}

QColor sidebarSecondary() {
    static const QColor color = fromHex(u"#161A24");
    return color;
}

QColor panel() {
    static const QColor color = fromHex(u"#11131E");
    return color;
}

QColor panelElevated() {
    static const QColor color = fromHex(u"#141826");
    return color;
}

QColor panelMuted() {
    static const QColor color = fromHex(u"#0F1320");
    return color;
}

QColor border() {
    static const Tone tone{white(0.07), white(0.5)};
    return tone.now();
}

QColor softBorder() {
    static const Tone tone{white(0.05), white(0.4)};
    return tone.now();
}

QColor textPrimary() {
    static const Tone tone{white(0.96), white(1)};
    return tone.now();
}

QColor textSecondary() {
    static const Tone tone{fromHex(u"#94A3B8"), fromHex(u"#E2E8F0")};
    return tone.now();
}

QColor textMuted() {
    static const Tone tone{fromHex(u"#64748B"), fromHex(u"#CBD5E1")};
    return tone.now();
}

QColor accentBlue() {
    static const Tone tone{fromHex(u"#6366F1"), fromHex(u"#A5B4FC")};
    return tone.now();
}

QColor accentIndigo() {
    static const Tone tone{fromHex(u"#8B5CF6"), fromHex(u"#C4B5FD")};
    return tone.now();
}

QColor accentGreen() {
    static const Tone tone{fromHex(u"#10B981"), fromHex(u"#34D399")};
    return tone.now();
}

QColor accentRed() {
    static const Tone tone{fromHex(u"#F43F5E"), fromHex(u"#FDA4AF")};
    return tone.now();
}

QColor warning() {
    static const QColor color = fromHex(u"#FF9500");
    return color;
}

QColor focusRing() {
    static const Tone tone{fromHex(u"#A5B4FC"), fromHex(u"#FFFFFF")};
    return tone.now();
}

QLinearGradient primaryGradient(const QRectF& rect) {
    static const QColor left = fromHex(u"#4F46E5");
    static const QColor right = fromHex(u"#7C3AED");
    QLinearGradient gradient(rect.topLeft(), rect.topRight());
    gradient.setColorAt(0, left);
    gradient.setColorAt(1, right);
    return gradient;
}

QColor textOn(const QColor& accent) {
    // Where black and white have the same contrast (WCAG 2.1).
    constexpr double middleLuminance = 0.179;
    return isContrastIncreased && relativeLuminance(accent) > middleLuminance ? background()
                                                                              : QColor(Qt::white);
}

QColor withOpacity(QColor color, double factor) {
    color.setAlphaF(color.alphaF() * static_cast<float>(factor));
    return color;
}

}  // namespace VeylaTheme
