#include "Drawing/SystemColors.h"
#include "Rendering.h"
#include "Services/OverlayMaskView.h"

#include <limits>

namespace {

using Style = ScreenMask::Style;
using SystemColors::black;
using SystemColors::cyan;
using SystemColors::white;

constexpr Size usual{320, 180};
const Color clear{0, 0, 0, 0};

struct State {
    bool isSelected;
    bool isEditingEnabled;
};
constexpr State states[] = {{false, false}, {false, true}, {true, false}, {true, true}};

OverlayMaskView makeView(Style style, const char* colorHex, double opacity, State state) {
    OverlayMaskView view;
    view.mask.style = style;
    view.mask.colorHex = QString::fromLatin1(colorHex);
    view.mask.opacity = opacity;
    view.isSelected = state.isSelected;
    view.isEditingEnabled = state.isEditingEnabled;
    return view;
}

/// An opaque white mask, on which everything that is drawn shows.
OverlayMaskView whiteView(State state) {
    return makeView(Style::blackout, "#FFFFFF", 1, state);
}

/// The pixel that holds a point counted from the top-left corner of the stack. The inset of the
/// stack is brought to whole pixels.
QPoint stackPixel(double scale, double x, double y) {
    const int inset = qRound(3 * scale);
    return {inset + int(std::floor(x * scale)), inset + int(std::floor(y * scale))};
}

QImage corner(const QImage& image, bool isRight, bool isBottom, int side) {
    return image.copy(isRight ? image.width() - side : 0, isBottom ? image.height() - side : 0,
                      side, side);
}

TEST(MaskRendering, FillsThePanelWithItsColourInEveryState) {
    const Color orange{1, 0x80 / 255.0, 0, 1};
    const Color frost = white.withOpacity(0.1 * 0.55);
    // The blur that is shown at 0.55, and upon its tint, leaves 0.45 of the colour below it.
    const auto frostOver = [&](const Color& fill) {
        const double below = 0.45 * fill.opacity;
        const double opacity = below + frost.opacity;
        const auto mix = [&](double value) { return (value * below + frost.opacity) / opacity; };
        return Color{mix(fill.red), mix(fill.green), mix(fill.blue), opacity};
    };
    struct Case {
        Style style;
        const char* colorHex;
        double opacity;
        Color center;
    };
    const Case cases[] = {
        {Style::blackout, "#FF8000", 0.85, orange.withOpacity(0.85)},
        {Style::blackout, "#FF80", 0.5, black.withOpacity(0.5)},
        {Style::blackout, "#FF8000", 0, clear},
        {Style::blackout, "", 1, black},
        {Style::frosted, "#FF8000", 0.6, frostOver(orange.withOpacity(0.45 * 0.6))},
        {Style::frosted, "none", 0.6, frostOver(SystemColors::blue.withOpacity(0.45 * 0.6))},
        {Style::frosted, "none", 1, frostOver(SystemColors::blue.withOpacity(0.45))},
        {Style::frosted, "none", 0, frost},
        {Style::softTint, "#FF8000", 0.5, orange.withOpacity(0.36)},
        {Style::softTint, "none", 1, SystemColors::indigo.withOpacity(0.72)},
        {Style::blackout, "#FF8000", -3, clear},
        {Style::softTint, "#FF8000", 7, orange.withOpacity(0.72)},
        {Style::blackout, "", std::numeric_limits<double>::infinity(), black},
        {Style::blackout, "", std::numeric_limits<double>::quiet_NaN(), black},
    };
    for (const Case& each : cases) {
        for (const State state : states) {
            for (const double scale : testedScales) {
                SCOPED_TRACE(testing::Message() << each.colorHex << " at " << each.opacity);
                const QImage image = rendered(
                    makeView(each.style, each.colorHex, each.opacity, state), usual, scale);
                EXPECT_TRUE(hasColor(image, image.rect().center(), each.center));
            }
        }
    }
}

TEST(MaskRendering, OfAFrostedMaskLiesOnABlurOfThePanelsShape) {
    for (const double scale : testedScales) {
        const OverlayMaskView frosted = makeView(Style::frosted, "", 0, {});
        QImage shape(qRound(usual.width * scale), qRound(usual.height * scale),
                     QImage::Format_ARGB32_Premultiplied);
        shape.fill(Qt::transparent);
        QPainter painter(&shape);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.fillPath(frosted.blurredShape(usual, scale), Qt::white);
        painter.end();
        EXPECT_EQ(shape, rendered(whiteView({}), usual, scale)) << scale;
        EXPECT_GT(frosted.backdropBlur(), 0);
        EXPECT_EQ(whiteView({}).backdropBlur(), 0);
    }
}

TEST(MaskRendering, DrawsTheOutlineInsideTheEdgeWhileEditing) {
    const Color fill = black.withOpacity(0.5);
    for (const State state : states) {
        const Color outline = !state.isEditingEnabled ? fill
                              : state.isSelected      ? over(cyan.withOpacity(0.95), fill)
                                                      : over(white.withOpacity(0.34), fill);
        for (const double scale : testedScales) {
            const int width = qRound((state.isSelected ? 3 : 1) * scale);
            const int inset = qRound(3 * scale);
            const QImage image = rendered(makeView(Style::blackout, "", 0.5, state), usual, scale);
            // Every edge is sharp: a pixel belongs to the outline or to the fill.
            const QPoint middle = image.rect().center();
            const int right = image.width() - 1;
            const int bottom = image.height() - 1;
            for (int depth = inset; depth < inset + width + 3; ++depth) {
                const Color expected = depth < inset + width ? outline : fill;
                EXPECT_TRUE(hasColor(image, {depth, middle.y()}, expected));
                EXPECT_TRUE(hasColor(image, {right - depth, middle.y()}, expected));
                EXPECT_TRUE(hasColor(image, {middle.x(), depth}, expected));
                EXPECT_TRUE(hasColor(image, {middle.x(), bottom - depth}, expected));
            }
        }
    }
}

TEST(MaskRendering, DrawsNothingOutsideTheStackButTheGlowOfASelectedMask) {
    for (const Size size : {Size{60, 40}, Size{61, 93}, Size{110, 48}, usual}) {
        for (const double scale : testedScales) {
            const int inset = qRound(3 * scale);
            for (const State state : states) {
                const QImage image =
                    rendered(makeView(Style::softTint, "#FF0000", 1, state), size, scale);
                const QRect stack = image.rect().adjusted(inset, inset, -inset, -inset);
                int reddest = 0;
                int strongest = 0;
                for (int y = 0; y < image.height(); ++y) {
                    for (int x = 0; x < image.width(); ++x) {
                        if (stack.contains(x, y)) continue;
                        const QRgb pixel = image.pixel(x, y);
                        reddest = std::max(reddest, qRed(pixel) - qAlpha(pixel) / 4);
                        strongest = std::max(strongest, qAlpha(pixel));
                    }
                }
                EXPECT_LE(reddest, 1);
                EXPECT_EQ(strongest > 0, state.isSelected);
                // On a straight edge the blur has half the strength of the colour.
                EXPECT_LE(strongest, 0.28 * 255 / 2 + 1);
                if (!state.isSelected) continue;
                // Two standard deviations make the blur radius of 14: cyan falls off with the
                // normal distribution around the edge.
                if (size != usual) continue;
                for (int x = 0; x < inset; ++x) {
                    const double distance = (inset - x - 0.5) / scale;
                    const Color glow =
                        cyan.withOpacity(0.28 * std::erfc(distance / 7 * M_SQRT1_2) / 2);
                    EXPECT_TRUE(hasColor(image, {x, image.height() / 2}, glow));
                }
            }
        }
    }
}

TEST(MaskRendering, ShowsFourEqualHandlesWhileEditing) {
    for (const double scale : testedScales) {
        for (const State state : states) {
            const QImage image = rendered(whiteView(state), usual, scale);
            const Color ground =
                state.isEditingEnabled ? over(black.withOpacity(0.26), white) : white;
            const double right = usual.width - 6 - 8 - 9;
            const double bottom = usual.height - 6 - 8 - 9;
            for (const double x : {17.0, right}) {
                for (const double y : {17.0, bottom}) {
                    // Beside the badge the arrow leaves the other diagonal free.
                    if (state.isSelected && y == 17 && x == 17) continue;
                    EXPECT_TRUE(hasColor(image, stackPixel(scale, x + 4, y - 4), ground));
                    EXPECT_TRUE(hasColor(image, stackPixel(scale, x - 4, y + 4), ground));
                    EXPECT_TRUE(hasColor(image, stackPixel(scale, x + 10, y), white));
                    EXPECT_TRUE(hasColor(image, stackPixel(scale, x, y - 10), white));
                    EXPECT_GT(qRed(image.pixel(stackPixel(scale, x, y))), 225) << scale;
                }
            }
        }
        const QImage image = rendered(whiteView({false, true}), {320, 180}, scale);
        const int inset = qRound(3 * scale) + qRound(8 * scale);
        const int side = qRound(18 * scale);
        const auto handle = [&](bool isRight, bool isBottom) {
            return image.copy(isRight ? image.width() - inset - side : inset,
                              isBottom ? image.height() - inset - side : inset, side, side);
        };
        EXPECT_EQ(handle(false, false), handle(true, false));
        EXPECT_EQ(handle(false, false), handle(false, true));
        EXPECT_EQ(handle(false, false), handle(true, true));
    }
}

TEST(MaskRendering, ShowsTheBadgeOfASelectedMaskWhileEditingWhereItFits) {
    const Color badge = over(cyan.withOpacity(0.75), white);
    for (const double scale : testedScales) {
        for (const State state : states) {
            const bool isShown = state.isSelected && state.isEditingEnabled;
            const QImage image = rendered(whiteView(state), usual, scale);
            EXPECT_TRUE(hasColor(image, stackPixel(scale, 50, 12), isShown ? badge : white));
            EXPECT_TRUE(hasColor(image, stackPixel(scale, 50, 9), white));
            EXPECT_TRUE(hasColor(image, stackPixel(scale, 30, 28), isShown ? badge : white));
            EXPECT_TRUE(hasColor(image, stackPixel(scale, 120, 20), white));
            // The handle above the badge's end covers no text.
            for (double y = 13; isShown && y < 29; y += 0.5)
                EXPECT_TRUE(hasColor(image, stackPixel(scale, 27.5, y), badge));
            // The text: nearly white pixels on the badge.
            const QRect inside(stackPixel(scale, 28, 14), stackPixel(scale, 70, 28));
            int lightPixels = 0;
            for (int y = inside.top(); y <= inside.bottom(); ++y)
                for (int x = inside.left(); x <= inside.right(); ++x)
                    lightPixels += qRed(image.pixel(x, y)) > 220;
            const double share = lightPixels / double(inside.width() * inside.height());
            if (isShown) {
                EXPECT_GT(share, 0.1);
                EXPECT_LT(share, 0.5);
            }
        }
        const QImage low = rendered(whiteView({true, true}), {320, 40}, scale);
        EXPECT_TRUE(hasColor(low, stackPixel(scale, 50, 8), badge));
        EXPECT_TRUE(hasColor(low, stackPixel(scale, 50, 26), badge));
        EXPECT_TRUE(hasColor(low, stackPixel(scale, 50, 4), white));
        EXPECT_TRUE(hasColor(low, stackPixel(scale, 50, 29), white));
        for (const Size tooSmall : {Size{60, 40}, Size{90, 60}}) {
            const QImage image = rendered(whiteView({true, true}), tooSmall, scale);
            EXPECT_TRUE(hasColor(image, stackPixel(scale, 28, 12), white));
        }
    }
}

TEST(MaskRendering, KeepsHandlesApartInTheSmallestMask) {
    for (const double scale : testedScales) {
        const QImage image = rendered(whiteView({false, true}), {60, 40}, scale);
        // Between the rows, and between the columns, nothing is drawn.
        const QPoint middle = image.rect().center();
        const int inset = qRound(5 * scale);
        for (int x = inset; x < image.width() - inset; ++x)
            EXPECT_TRUE(hasColor(image, {x, middle.y()}, white));
        for (int y = inset; y < image.height() - inset; ++y)
            EXPECT_TRUE(hasColor(image, {middle.x(), y}, white));
        EXPECT_NE(image.pixel(stackPixel(scale, 13, 8)), 0xffffffff);
    }
}

TEST(MaskRendering, LooksAlikeAtEverySizeAndPlace) {
    for (const State state : states) {
        const OverlayMaskView view = makeView(Style::frosted, "#FF8000", 0.7, state);
        for (const double scale : testedScales) {
            // Too small to be put together from parts, and too narrow for the badge.
            const int side = qRound(46 * scale);
            const QImage whole = rendered(view, {94, 94}, scale);
            const QImage large = rendered(view, {901, 400}, scale);
            for (const auto& [isRight, isBottom] :
                 {std::pair(true, false), {false, true}, {true, true}})
                EXPECT_EQ(corner(whole, isRight, isBottom, side),
                          corner(large, isRight, isBottom, side));

            QImage moved(large.size() + QSize(30, 30), large.format());
            moved.fill(Qt::transparent);
            QPainter painter(&moved);
            painter.translate(10, 20);
            painter.scale(scale, scale);
            view.paint(painter, {901, 400});
            EXPECT_EQ(painter.transform(), QTransform(scale, 0, 0, scale, 10, 20));
            painter.end();
            EXPECT_EQ(moved.copy(QRect(QPoint(10, 20), large.size())), large);
        }
    }
}

TEST(MaskRendering, PaintsNothingWhereThereIsNoRoom) {
    for (const Size size : {Size{0, 0}, Size{6, 200}, Size{200, 5}, Size{-4, -4}}) {
        QImage image(40, 40, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        whiteView({true, true}).paint(painter, size);
        painter.end();
        EXPECT_EQ(image.pixel(0, 0), 0U);
        EXPECT_EQ(image.pixel(20, 20), 0U);
    }
}

}  // namespace
