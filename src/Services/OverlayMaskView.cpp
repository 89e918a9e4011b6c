#include "Services/OverlayMaskView.h"

#include "Drawing/ContinuousRoundedRect.h"
#include "Drawing/MaskPanel.h"
#include "Drawing/PixelCanvas.h"
#include "Drawing/RecentCache.h"
#include "Drawing/SymbolPainter.h"
#include "Drawing/SystemColors.h"

#include <QFont>
#include <QFontMetricsF>
#include <QImage>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <limits>

namespace {

// Lengths in points.
constexpr double stackInset = 3;
constexpr double panelRadius = 18;
constexpr double glowRadius = 14;
constexpr double badgeInset = 10;
constexpr int badgeFontSize = 10;
constexpr double badgePaddingX = 8;
constexpr double badgePaddingY = 5;
constexpr double handleInset = 8;
constexpr double handleSize = 18;
constexpr double handleSymbolSize = 8;
/// The least distance between two handles, and between a handle and text.
constexpr double handleGap = 3;

constexpr double frostOpacity = 0.55;
/// The ultra-thin material. Its blur is strong enough for headlines to be illegible.
constexpr double frostTint = 0.10;
constexpr double frostBlur = 20;

/// Two colours side by side, neither covering a part of the other, as one.
Color together(const Color& a, const Color& b) {
    const double opacity = a.opacity + b.opacity;
    if (opacity <= 0) return {0, 0, 0, 0};
    const auto mix = [&](double first, double second) {
        return (first * a.opacity + second * b.opacity) / opacity;
    };
    return {mix(a.red, b.red), mix(a.green, b.green), mix(a.blue, b.blue), opacity};
}

/// The opacity that can be painted. One that is not a number hides what the mask is there to hide.
double paintedOpacity(double opacity) {
    return std::isnan(opacity) ? 1 : std::clamp(opacity, 0.0, 1.0);
}

/// Truncated toward zero, within the range of an integer; 0 when it is not a number.
int percentage(double opacity) {
    if (std::isnan(opacity)) return 0;
    constexpr double limit = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(opacity * 100, -limit, limit));
}

/// The layers of the panel as one paint: everything below the outline has the same shape, so that
/// each pixel is painted once and edges have no seam. The blur of what lies below goes beneath it,
/// for the material lies over the colour and lets only a part of that through; what it shows
/// instead, apart from its own tint, is that blur again.
MaskPanel panelOf(const OverlayMaskView& view) {
    MaskPanel panel{
        .inset = stackInset, .cornerRadius = panelRadius, .fill = {}, .outline = {}, .glow = {}};
    panel.fill = view.fillColor().withOpacity(paintedOpacity(view.mask.opacity));
    if (view.mask.style == ScreenMask::Style::frosted)
        panel.fill = together(panel.fill.withOpacity(1 - frostOpacity),
                              SystemColors::white.withOpacity(frostTint * frostOpacity));
    if (view.isSelected)
        panel.glow = MaskPanel::Glow{SystemColors::cyan.withOpacity(0.28), glowRadius};
    if (view.isEditingEnabled) {
        panel.outline = view.isSelected
                            ? MaskPanel::Outline{SystemColors::cyan.withOpacity(0.95), 3}
                            : MaskPanel::Outline{SystemColors::white.withOpacity(0.34), 1};
    }
    return panel;
}

/// The four handles, one in each corner of a stack, in pixels.
struct HandleLayout {
    HandleLayout(const PixelCanvas& canvas, const QRect& stack) {
        // In a small mask the handles shrink together with their insets rather than overlap.
        const double room = std::min(stack.width(), stack.height()) / canvas.scale();
        const double factor = std::min(1.0, room / (2 * (handleInset + handleSize) + handleGap));
        scale = factor * canvas.scale();
        const int inset = qRound(handleInset * scale);
        side = qRound(handleSize * scale);
        const QRect corners = stack.adjusted(inset, inset, -inset - side, -inset - side);
        left = corners.x();
        top = corners.y();
        right = corners.x() + corners.width();
        bottom = corners.y() + corners.height();
    }

    /// Pixels to a point of the drawing of a handle.
    double scale;
    int side;
    int left, top, right, bottom;
};

QFont badgeFont(const PixelCanvas& canvas) {
    QFont font;
    font.setFamilies({QStringLiteral("Nunito"), QStringLiteral("Varela Round"), font.family()});
    font.setPixelSize(canvas.pixels(badgeFontSize));
    font.setWeight(QFont::DemiBold);
    return font;
}

void paintBadge(PixelCanvas& canvas, const QRect& stack, const HandleLayout& handles) {
    const QString text = QStringLiteral("Selected");
    const QFont font = badgeFont(canvas);
    const QFontMetricsF metrics(font);
    const int textWidth = qCeil(metrics.horizontalAdvance(text));
    const int textHeight = qCeil(metrics.height());
    const int paddingX = canvas.pixels(badgePaddingX);
    const int paddingY = canvas.pixels(badgePaddingY);
    const int height = textHeight + 2 * paddingY;
    const int gap = canvas.pixels(handleGap);
    // A mask too low for the inset below the badge as well has the badge at mid-height.
    const int inset = canvas.pixels(badgeInset);
    const QPoint corner =
        stack.topLeft() + QPoint(inset, std::min(inset, (stack.height() - height) / 2));

    // A handle lies above the badge's left end: the text starts where the handle leaves it legible.
    // Where even that cannot be had, outline and glow tell the selection alone.
    const int textLeft = std::max(corner.x() + paddingX, handles.left + handles.side + gap);
    if (textLeft + textWidth + gap > handles.right) return;
    const QRect capsule(corner.x(), corner.y(), textLeft + textWidth + paddingX - corner.x(),
                        height);
    if (!stack.contains(capsule)) return;

    QPainter& painter = canvas.painter();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(ContinuousRoundedRect{capsule, capsule.height() / 2.0}.path(),
                     paintColor(SystemColors::cyan.withOpacity(0.75)));
    painter.setFont(font);
    painter.setPen(paintColor(SystemColors::white.withOpacity(0.95)));
    painter.drawText(QPoint(textLeft, corner.y() + paddingY + qRound(metrics.ascent())), text);
}

QImage drawHandle(int side, double scale) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(paintColor(SystemColors::black.withOpacity(0.26)));
    const QRectF circle = image.rect();
    painter.drawEllipse(circle);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(paintColor(SystemColors::white.withOpacity(0.16)), scale));
    painter.drawEllipse(circle.adjusted(scale / 2, scale / 2, -scale / 2, -scale / 2));
    SymbolPainter::paint(painter,
                         {.name = QStringLiteral("arrow.up.left.and.arrow.down.right"),
                          .size = handleSymbolSize * scale,
                          .weight = SymbolWeight::bold,
                          .color = paintColor(SystemColors::white.withOpacity(0.92))},
                         circle.center());
    return image;
}

void paintHandles(PixelCanvas& canvas, const HandleLayout& layout) {
    thread_local RecentCache<double, QImage> cache(4);
    const QImage& handle =
        cache.findOrMake(layout.scale, [&] { return drawHandle(layout.side, layout.scale); });
    for (const int y : {layout.top, layout.bottom})
        for (const int x : {layout.left, layout.right})
            canvas.painter().drawImage(x, y, handle);
}

}  // namespace

Color OverlayMaskView::fillColor() const {
    const std::optional<Color> parsed = Color::fromHex(mask.colorHex);
    switch (mask.style) {
        case ScreenMask::Style::blackout:
            return parsed.value_or(SystemColors::black);
        case ScreenMask::Style::frosted:
            return parsed.value_or(SystemColors::blue).withOpacity(0.45);
        case ScreenMask::Style::softTint:
            return parsed.value_or(SystemColors::indigo).withOpacity(0.72);
    }
    return SystemColors::black;
}

bool OverlayMaskView::paintsLike(const OverlayMaskView& other) const {
    return mask.style == other.mask.style && mask.opacity == other.mask.opacity &&
           mask.colorHex == other.mask.colorHex && isSelected == other.isSelected &&
           isEditingEnabled == other.isEditingEnabled;
}

bool OverlayMaskView::isDescribedLike(const OverlayMaskView& other) const {
    return mask.id == other.mask.id && mask.name == other.mask.name &&
           mask.style == other.mask.style && mask.opacity == other.mask.opacity &&
           isSelected == other.isSelected && isEditingEnabled == other.isEditingEnabled;
}

AccessibleDescription OverlayMaskView::accessibleDescription() const {
    const QString label = QStringLiteral("Overlay mask, ") + mask.name + QStringLiteral(", ") +
                          ScreenMask::displayName(mask.style) + QStringLiteral(" style, ") +
                          QString::number(percentage(mask.opacity)) + QStringLiteral("% opacity") +
                          (isSelected ? QStringLiteral(", selected") : QString()) +
                          (isEditingEnabled ? QStringLiteral(", editing enabled")
                                            : QStringLiteral(", editing locked"));
    return {label, QStringLiteral("overlay-mask-") + uuidText(mask.id), isSelected};
}

double OverlayMaskView::backdropBlur() const {
    return mask.style == ScreenMask::Style::frosted ? frostBlur : 0;
}

QPainterPath OverlayMaskView::blurredShape(Size size, double scale) const {
    const QSize ground(PixelCanvas::wholePixels(size.width, scale),
                       PixelCanvas::wholePixels(size.height, scale));
    return panelOf(*this).edge(ground, scale);
}

void OverlayMaskView::paint(QPainter& painter, Size size) const {
    PixelCanvas canvas(painter);
    const QSize ground = canvas.pixels(size);
    const int inset = canvas.pixels(stackInset);
    const QRect stack = QRect(QPoint(0, 0), ground).adjusted(inset, inset, -inset, -inset);
    if (stack.isEmpty()) return;
    panelOf(*this).paint(canvas, ground);
    if (!isEditingEnabled) return;
    const HandleLayout handles(canvas, stack);
    if (isSelected) paintBadge(canvas, stack, handles);
    paintHandles(canvas, handles);
}
