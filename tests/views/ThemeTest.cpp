#include "Drawing/SystemColors.h"
#include "Rendering.h"
#include "Views/Design/Typography.h"
#include "Views/Design/VeylaCard.h"
#include "Views/Design/VeylaTheme.h"
#include "Views/TurnUpdate.h"
#include "support/HeadlessHarness.h"

#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace {

double contrast(const QColor& a, const QColor& b) {
    const auto luminance = [](const QColor& color) {
        const auto linear = [](double channel) {
            return channel <= 0.03928 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
               0.0722 * linear(color.blueF());
    };
    const auto [darker, lighter] = std::minmax({luminance(a), luminance(b)});
    return (lighter + 0.05) / (darker + 0.05);
}

}  // namespace

TEST(VeylaTheme, LetsTextStandOutForWhoAsksForIt) {
    const QColor usual = VeylaTheme::textMuted();
    VeylaTheme::setContrastIncreased(true);
    for (const QColor& text :
         {VeylaTheme::textPrimary(), VeylaTheme::textSecondary(), VeylaTheme::textMuted(),
          VeylaTheme::accentBlue(), VeylaTheme::accentIndigo(), VeylaTheme::accentGreen(),
          VeylaTheme::accentRed(), VeylaTheme::warning()})
        for (const QColor& ground : {VeylaTheme::sidebarSecondary(), VeylaTheme::panelElevated(),
                                     VeylaTheme::background()})
            EXPECT_GE(contrast(text, ground), 7) << qPrintable(text.name() + ground.name());
    EXPECT_GE(contrast(VeylaTheme::textOn(VeylaTheme::accentIndigo()), VeylaTheme::accentIndigo()),
              7);
    VeylaTheme::setContrastIncreased(false);
    EXPECT_EQ(VeylaTheme::textMuted(), usual);
}

TEST(VeylaCard, IsARoundedPanelWithABorderOverItsContent) {
    const Color border = SystemColors::white.withOpacity(0.07);
    for (const bool elevated : {false, true}) {
        SCOPED_TRACE(elevated);
        auto* const content = new QWidget;
        const std::unique_ptr<QWidget> card(veylaCard(content, elevated));
        card->resize(120, 80);
        QImage image(card->size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        card->render(&image, {}, {}, QWidget::DrawChildren);
        const Color fill = *Color::fromHex(elevated ? u"#141826"_s : u"#11131E"_s);
        EXPECT_EQ(content->geometry(), QRect(0, 0, 120, 80)) << "no padding of its own";
        EXPECT_TRUE(hasColor(image, {60, 40}, fill));
        for (const QPoint edge : {QPoint(60, 0), QPoint(60, 79), QPoint(0, 40), QPoint(119, 40)})
            EXPECT_TRUE(hasColor(image, edge, over(border, fill)));
        EXPECT_TRUE(hasColor(image, {60, 1}, fill));
        EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0);
        EXPECT_EQ(image.pixelColor(2, 2).alpha(), 0) << "less round than 12 points";
        EXPECT_GT(image.pixelColor(4, 4).alpha(), 200) << "rounder than 12 points";

        content->setAutoFillBackground(true);
        content->setPalette(QPalette(QPalette::Window, Qt::red));
        card->render(&image, {}, {}, QWidget::DrawChildren);
        EXPECT_TRUE(hasColor(image, {60, 0}, over(border, {1, 0, 0, 1}))) << "below the content";
    }
}

TEST(Typography, OneLineHoldsWhatAWindowCanShow) {
    const struct {
        QString text;
        QString line;
    } cases[] = {
        {u"a\r\nb\tc\u2028d\u2029e\u0085f"_s, u"a  b c d e f"_s},
        {u"<b>&amp;"_s, u"<b>&amp;"_s},
        {QString(999, u'x') + u"🙂"_s, QString(999, u'x')},
        {QString(998, u'x') + u"🙂"_s, QString(998, u'x') + u"🙂"_s},
    };
    for (const auto& [text, line] : cases)
        EXPECT_EQ(onOneLine(text), line);
}

TEST(TurnUpdate, ManyChangesInATurnAreOneUpdate) {
    HeadlessHarness harness;
    Published<int> first{0};
    Published<QString> second;
    int updates = 0;
    {
        TurnUpdate update(harness.mainLoop(), [&] { ++updates; });
        update.follow(first, second);
        harness.settle();
        updates = 0;
        for (int i = 0; i < 5; ++i) {
            first.set(i);
            second.set(QString::number(i));
        }
        EXPECT_EQ(updates, 0);
        harness.settle();
        EXPECT_EQ(updates, 1);
        first.set(7);
    }
    harness.settle();
    EXPECT_EQ(updates, 1) << "updated after its end";
}
