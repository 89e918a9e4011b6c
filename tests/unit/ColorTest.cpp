#include "Models/Color.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace {

TEST(Color, ReadsSixHexadecimalDigitsBetweenCharactersThatAreNotAlphanumeric) {
    const Color expected{.red = 0x10 / 255.0, .green = 0xAB / 255.0, .blue = 0x14 / 255.0};
    for (const QString& text :
         {u"#10AB14"_s, u"#10ab14"_s, u"10aB14"_s, u"  #10AB14\t\n"_s, u"«10AB14»"_s, u"🎨10AB14🎨"_s,
          u"--(10AB14)--"_s, u"\xD800"_s + u"10AB14\xDC00"_s, u"\u200B10AB14\u20AC"_s}) {
        EXPECT_EQ(Color::fromHex(text), expected) << text.toStdString();
    }
    EXPECT_EQ(Color::fromHex(u"#000000"_s), (Color{0, 0, 0, 1}));
    EXPECT_EQ(Color::fromHex(u"#FFFFFF"_s), (Color{1, 1, 1, 1}));
}

TEST(Color, ReadsNothingElse) {
    for (const QString& text :
         {QString(), u"#"_s, u"🎨"_s, u"\xDC00"_s, u"#123"_s, u"#1234"_s, u"#12345"_s, u"#1234567"_s,
          u"#12345678"_s, u"#12345G"_s, u"#12 456"_s, u"0x1234"_s, u"#1234.5"_s, u"+12-34+"_s,
          u"11111111111111111"_s, u"#１２３４５６"_s, u"#٠١٢٣٤٥"_s,
          // A letter, mark or number of any script at an end belongs to the text.
          u"é101114"_s, u"101114\u0301"_s, u"101114²"_s, u"101114Ⅷ"_s, u"𝔸101114"_s,
          u"101114𐍈"_s}) {
        EXPECT_EQ(Color::fromHex(text), std::nullopt) << text.toStdString();
    }
}

}  // namespace
