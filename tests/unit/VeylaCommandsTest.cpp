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

TEST_F(VeylaCommandsTest, TheMenuHasItsItemsAndShortcuts) {
    const struct {
        QString title;
        const char* shortcut;
        bool needsMask = false;
    } expected[] = {{u"New Mask"_s, "Ctrl+Alt+N"},
                    {u"Hide All Masks"_s, "Ctrl+Alt+H"},
                    {u"Lock Editing"_s, "Ctrl+Alt+L"},
                    {{}, ""},
                    {u"Duplicate Selected Mask"_s, "Ctrl+Alt+D", true},
                    {u"Toggle Selected Visibility"_s, "Ctrl+Alt+V", true},
                    {u"Delete Selected Mask"_s, "Ctrl+Del", true},
                    {{}, ""},
                    {u"Save Current Layout as Preset"_s, "Ctrl+Alt+S"},
                    {u"Check for Updates…"_s, ""},
                    {u"Show Walkthrough"_s, ""},
                    {u"What's New"_s, ""},
                    {u"Open Settings"_s, "Ctrl+,"}};
    for (int round = 0; round < 3; ++round) {
        const bool hasMask = round == 1;
        if (hasMask) item(u"New Mask"_s).perform();
        // A selection that names no mask is none.
        if (round == 2) state().masks.set({});
        const auto items = m_commands.items();
        ASSERT_EQ(items.size(), std::size(expected));
        for (std::size_t index = 0; index < items.size(); ++index) {
            const auto& [title, shortcut, needsMask] = expected[index];
            EXPECT_EQ(items[index].title, title);
            EXPECT_EQ(items[index].isSeparator(), title.isEmpty());
            EXPECT_EQ(items[index].shortcuts.value(0).toString().toStdString(), shortcut);
            EXPECT_EQ(items[index].isEnabled, !needsMask || hasMask) << title.toStdString();
        }
    }
    EXPECT_FALSE(VeylaCommands(state(), nullptr).items().back().isEnabled);
}

TEST_F(VeylaCommandsTest, ItemsDoWhatTheyAreCalled) {
    state().hasCompletedOnboarding.set(true);
    const struct {
        QString title;
        std::function<bool()> holds;
    } cases[] = {
        {u"New Mask"_s, [&] { return masks().size() == 1; }},
        {u"Hide All Masks"_s, [&] { return !state().areMasksVisible.value(); }},
        {u"Show All Masks"_s, [&] { return state().areMasksVisible.value(); }},
        {u"Lock Editing"_s, [&] { return !state().isEditingEnabled.value(); }},
        {u"Unlock Editing"_s, [&] { return state().isEditingEnabled.value(); }},
        {u"Toggle Selected Visibility"_s, [&] { return !masks().first().isVisible; }},
        {u"Duplicate Selected Mask"_s, [&] { return masks().size() == 2; }},
        {u"Delete Selected Mask"_s, [&] { return masks().size() == 1; }},
        {u"Save Current Layout as Preset"_s, [&] { return state().isSavePresetPresented.value(); }},
        {u"Show Walkthrough"_s, [&] { return state().isOnboardingPresented.value(); }},
        {u"What's New"_s, [&] { return state().isWhatsNewPresented.value(); }},
        {u"Open Settings"_s, [&] { return m_settingsOpened == 1; }},
    };
    for (const auto& [title, holds] : cases) {
        ASSERT_TRUE(titles().contains(title)) << title.toStdString();
        item(title).perform();
        EXPECT_TRUE(holds()) << title.toStdString();
    }
    state().finishOnboarding();
    item(u"Show Walkthrough"_s).perform();
    EXPECT_FALSE(state().isOnboardingPresented.value()) << "while release notes are shown";
    EXPECT_FALSE(state().hasCompletedOnboarding.value());
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
