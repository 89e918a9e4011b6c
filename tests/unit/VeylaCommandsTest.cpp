#include "App/VeylaCommands.h"
#include "support/AppStateFixture.h"

using namespace Qt::Literals::StringLiterals;

namespace {

class VeylaCommandsTest : public AppStateFixture {
protected:
    VeylaCommandsTest() : m_commands(state(), [this] { ++m_settingsOpened; }) {
        desktop().updateFramework.setCanCheck(true);
    }

    QStringList titles() const {
        QStringList all;
        for (const MenuCommand& item : m_commands.items())
            all << item.title;
        return all;
    }
    MenuCommand item(const QString& title) const {
        return m_commands.items().at(static_cast<std::size_t>(titles().indexOf(title)));
    }

    int m_settingsOpened = 0;
    VeylaCommands m_commands;
};

}  // namespace

TEST_F(VeylaCommandsTest, ItemsDoWhatTheyAreCalled) {
    state().hasCompletedOnboarding.set(true);
    const struct {
        QString title;
        const char* shortcut;
        std::function<bool()> holds;
    } cases[] = {
        {u"New Mask"_s, "Ctrl+Alt+N", [&] { return masks().size() == 1; }},
        {u"Hide All Masks"_s, "Ctrl+Alt+H", [&] { return !state().areMasksVisible.value(); }},
        {u"Show All Masks"_s, "Ctrl+Alt+H", [&] { return state().areMasksVisible.value(); }},
        {u"Lock Editing"_s, "Ctrl+Alt+L", [&] { return !state().isEditingEnabled.value(); }},
        {u"Unlock Editing"_s, "Ctrl+Alt+L", [&] { return state().isEditingEnabled.value(); }},
        {u"Toggle Selected Visibility"_s, "Ctrl+Alt+V", [&] { return !masks()[0].isVisible; }},
        {u"Duplicate Selected Mask"_s, "Ctrl+Alt+D", [&] { return masks().size() == 2; }},
        {u"Delete Selected Mask"_s, "Ctrl+Del", [&] { return masks().size() == 1; }},
        {u"Save Current Layout as Preset"_s, "Ctrl+Alt+S",
         [&] { return state().isSavePresetPresented.value(); }},
        {u"Show Walkthrough"_s, "", [&] { return state().isOnboardingPresented.value(); }},
        {u"What's New"_s, "", [&] { return state().isWhatsNewPresented.value(); }},
        {u"Open Settings"_s, "Ctrl+,", [&] { return m_settingsOpened == 1; }},
    };
    for (const auto& [title, shortcut, holds] : cases) {
        ASSERT_TRUE(titles().contains(title)) << title.toStdString();
        EXPECT_EQ(item(title).shortcuts.value(0).toString().toStdString(), shortcut);
        EXPECT_TRUE(item(title).isEnabled) << title.toStdString();
        item(title).perform();
        EXPECT_TRUE(holds()) << title.toStdString();
    }
    state().finishOnboarding();
    item(u"Show Walkthrough"_s).perform();
    EXPECT_FALSE(state().isOnboardingPresented.value()) << "while release notes are shown";
    EXPECT_FALSE(state().hasCompletedOnboarding.value());
}

TEST_F(VeylaCommandsTest, WhatCannotBeDoneIsDisabled) {
    const QStringList ofTheSelection{u"Duplicate Selected Mask"_s, u"Toggle Selected Visibility"_s,
                                     u"Delete Selected Mask"_s};
    for (int round = 0; round < 3; ++round) {
        if (round == 1) state().createMask();
        // A selection that names no mask is none.
        if (round == 2) state().masks.set({});
        for (const QString& title : titles())
            EXPECT_EQ(item(title).isEnabled, round == 1 || !ofTheSelection.contains(title))
                << title.toStdString();
    }
    EXPECT_FALSE(VeylaCommands(state(), nullptr).items().back().isEnabled);
}

TEST_F(VeylaCommandsTest, TheUpdateCommandFollowsTheUpdater) {
    for (const bool canCheck : {false, true}) {
        desktop().updateFramework.setCanCheck(canCheck);
        advance(0);
        EXPECT_EQ(item(u"Check for Updates…"_s).isEnabled, canCheck);
    }
    item(u"Check for Updates…"_s).perform();
    EXPECT_EQ(desktop().updateFramework.checkCount(), 1);
}
