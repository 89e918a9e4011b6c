#include "Models/AppSettings.h"
#include "Models/HotkeyBinding.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace {

TEST(HotkeyBinding, NamesEveryKeyOfTheTableAndNoOther) {
    // The codes without a name, as inclusive ranges; every other code below 127 has one.
    const QList<std::pair<quint32, quint32>> nameless{
        {10, 10},   {52, 52},   {54, 95},   {102, 102}, {104, 108},
        {110, 110}, {112, 117}, {119, 119}, {121, 121}, {127, 300}};
    // In the order of the codes.
    const QStringList names =
        u"A S D F H G Z X C V B Q W E R Y T 1 2 3 4 6 5 = 9 7 - 8 0 ] O U [ I P ↩ L J ' K ; \\ , / "
        u"N M . Tab Space ` ⌫ ⎋ F5 F6 F7 F3 F8 F9 F11 F10 F12 F4 F2 F1 ← → ↓ ↑"_s.split(u' ');
    qsizetype next = 0;
    for (quint32 code = 0; code <= 300; ++code) {
        const bool isNameless = std::any_of(nameless.begin(), nameless.end(), [code](auto range) {
            return range.first <= code && code <= range.second;
        });
        const QString expected =
            isNameless ? u"Key"_s + QString::number(code) : names.value(next++);
        EXPECT_EQ(HotkeyBinding::keyCodeToString(code).toStdString(), expected.toStdString());
    }
    EXPECT_EQ(next, names.size());
    EXPECT_EQ(HotkeyBinding::keyCodeToString(4294967295U), u"Key4294967295"_s);
}

TEST(HotkeyBinding, DisplaysModifiersInFixedOrder) {
    const struct {
        HotkeyBinding binding;
        QString text;
        QString words;
    } cases[]{{{45, 6400}, u"⌃⌥⌘N"_s, u"Ctrl+Alt+Super+N"_s},
              {{45, 6912}, u"⌃⌥⇧⌘N"_s, u"Ctrl+Alt+Shift+Super+N"_s},
              {{49, 256}, u"⌘Space"_s, u"Super+Space"_s},
              {{200, 0}, u"Key200"_s, u"Key200"_s},
              {{117, 4096}, u"⌃Key117"_s, u"Ctrl+Delete"_s},
              {{126, 512 | 1 | 1024}, u"⇧↑"_s, u"Shift+Up"_s}};
    for (const auto& [binding, text, words] : cases) {
        EXPECT_EQ(binding.displayString().toStdString(), text.toStdString());
        EXPECT_EQ(binding.keyboardText().toStdString(), words.toStdString());
    }
}

TEST(HotkeyBinding, ConvertsTheModifierFlagsOfAnEvent) {
    constexpr quint64 capsLock = 1U << 16U;
    constexpr quint64 shift = 1U << 17U;
    constexpr quint64 control = 1U << 18U;
    constexpr quint64 option = 1U << 19U;
    constexpr quint64 command = 1U << 20U;
    EXPECT_EQ(HotkeyBinding::carbonModifiers(capsLock), 0U);
    EXPECT_EQ(HotkeyBinding::carbonModifiers(command | shift), 768U);
    EXPECT_EQ(HotkeyBinding::carbonModifiers(option), 2048U);
    EXPECT_EQ(HotkeyBinding::carbonModifiers(control), 4096U);
    EXPECT_EQ(HotkeyBinding::carbonModifiers(~quint64{0}), 6912U);
    EXPECT_EQ(HotkeyBinding::carbonModifiers(~(shift | control | option | command)), 0U);
}

TEST(HotkeyBinding, SettingsFallBackToTheDefaultBinding) {
    AppSettings settings;
    settings.hotkeyBindings = {{u"toggleEditing"_s, {.keyCode = 9, .modifiers = 256}},
                               {u"other"_s, {.keyCode = 8, .modifiers = 0}}};
    const struct {
        QString key;
        std::optional<HotkeyBinding> binding;
    } cases[]{
        {u"createMask"_s, HotkeyBinding{45, 6400}},  {u"toggleAll"_s, HotkeyBinding{4, 6400}},
        {u"toggleEditing"_s, HotkeyBinding{9, 256}}, {u"toggleDashboard"_s, HotkeyBinding{1, 6400}},
        {u"other"_s, HotkeyBinding{8, 0}},           {u"ToggleAll"_s, std::nullopt}};
    for (const auto& [key, binding] : cases) {
        EXPECT_EQ(settings.binding(key), binding) << key.toStdString();
    }
    EXPECT_EQ(HotkeyBinding::defaults().value(u"toggleEditing"_s), (HotkeyBinding{37, 6400}));
    EXPECT_EQ(HotkeyBinding::defaults().size(), 4);
}

TEST(HotkeyAction, HasNumberKeyAndTitle) {
    const struct {
        quint32 rawValue;
        QString key;
        QString title;
    } cases[]{{1, u"createMask"_s, u"Create New Mask"_s},
              {2, u"toggleAll"_s, u"Toggle All Masks"_s},
              {3, u"toggleEditing"_s, u"Lock/Unlock Editing"_s},
              {4, u"toggleDashboard"_s, u"Toggle Dashboard"_s}};
    for (const auto& [rawValue, key, title] : cases) {
        const std::optional<HotkeyAction> action = hotkeyActionFromRawValue(rawValue);
        ASSERT_TRUE(action) << rawValue;
        EXPECT_EQ(*action, allHotkeyActions.at(rawValue - 1));
        EXPECT_EQ(hotkeyBindingKey(*action), key);
        EXPECT_EQ(hotkeyActionTitle(*action), title);
    }
    EXPECT_FALSE(hotkeyActionFromRawValue(0));
    EXPECT_FALSE(hotkeyActionFromRawValue(5));
}

}  // namespace
