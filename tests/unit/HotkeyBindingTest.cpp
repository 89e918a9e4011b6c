#include "Models/AppSettings.h"
#include "Models/HotkeyBinding.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace {

TEST(HotkeyBinding, DisplaysModifiersInFixedOrder) {
    const struct {
        HotkeyBinding binding;
        QString text;
        QString words;
    } cases[]{{{45, 6400}, u"⌃⌥⌘N"_s, u"Ctrl+Alt+Super+N"_s},
              {{45, 6912}, u"⌃⌥⇧⌘N"_s, u"Ctrl+Alt+Shift+Super+N"_s},
              {{49, 256}, u"⌘Space"_s, u"Super+Space"_s},
              {{36, 0}, u"↩"_s, u"Enter"_s},
              {{48, 0}, u"Tab"_s, u"Tab"_s},
              {{51, 0}, u"⌫"_s, u"Backspace"_s},
              {{53, 0}, u"⎋"_s, u"Escape"_s},
              {{123, 0}, u"←"_s, u"Left"_s},
              {{124, 0}, u"→"_s, u"Right"_s},
              {{125, 0}, u"↓"_s, u"Down"_s},
              {{200, 0}, u"Key200"_s, u"Key200"_s},
              {{117, 4096}, u"⌃Key117"_s, u"Ctrl+Delete"_s},
              {{126, 512 | 1 | 1024}, u"⇧↑"_s, u"Shift+Up"_s}};
    for (const auto& [binding, text, words] : cases) {
        EXPECT_EQ(binding.displayString().toStdString(), text.toStdString());
        EXPECT_EQ(binding.keyboardText().toStdString(), words.toStdString());
    }
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
    EXPECT_EQ(AppSettings::defaults().autoShowMasksOnScreenShare, false);
}

}  // namespace
