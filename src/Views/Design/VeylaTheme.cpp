#include "Views/Design/VeylaTheme.h"

#include "Drawing/SystemColors.h"

namespace {

QColor fromHex(const char16_t* hex) {
    return paintColor(Color::fromHex(QString::fromUtf16(hex)).value_or(SystemColors::black));
}

QColor white(double opacity) {
    return paintColor(SystemColors::white.withOpacity(opacity));
}

}  // namespace

namespace VeylaTheme {

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
    static const QColor color = white(0.07);
    return color;
}

QColor softBorder() {
    static const QColor color = white(0.05);
    return color;
}

QColor textPrimary() {
    static const QColor color = white(0.96);
    return color;
}

QColor textSecondary() {
    static const QColor color = fromHex(u"#94A3B8");
    return color;
}

QColor textMuted() {
    static const QColor color = fromHex(u"#64748B");
    return color;
}

QColor accentBlue() {
    static const QColor color = fromHex(u"#6366F1");
    return color;
}

QColor accentIndigo() {
    static const QColor color = fromHex(u"#8B5CF6");
    return color;
}

QColor accentGreen() {
    static const QColor color = fromHex(u"#10B981");
    return color;
}

QColor accentRed() {
    static const QColor color = fromHex(u"#F43F5E");
    return color;
}

QColor warning() {
    static const QColor color = fromHex(u"#FF9500");
    return color;
}

QColor focusRing() {
    static const QColor color = fromHex(u"#A5B4FC");
    return color;
}

QLinearGradient primaryGradient(const QRectF& rect) {
    static const QColor left = fromHex(u"#4F46E5");
    static const QColor right = fromHex(u"#7C3AED");
    QLinearGradient gradient(rect.topLeft(), rect.topRight());
    gradient.setColorAt(0, left);
    gradient.setColorAt(1, right);
    return gradient;
}

QColor withOpacity(QColor color, double factor) {
    color.setAlphaF(color.alphaF() * static_cast<float>(factor));
    return color;
}

}  // namespace VeylaTheme
