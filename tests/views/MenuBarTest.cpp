#include "MenuBarFixture.h"
#include "Views/MenuBar/ColorDot.h"
#include "Views/MenuBar/MenuBarButton.h"
#include "Views/MenuBar/MenuBarMaskRow.h"
#include "Views/MenuBar/MenuBarPresetRow.h"
#include "Views/MenuBar/MenuBarView.h"

#include <QScrollBar>

using namespace Qt::Literals::StringLiterals;

namespace {

const QStringList actionTitles{u"New Mask"_s,
                               u"Hide All Masks"_s,
                               u"Lock Editing"_s,
                               u"Open Dashboard"_s,
                               u"Save Layout as Preset"_s,
                               u"Open Settings"_s,
                               u"Check for Updates…"_s,
                               u"What's New"_s,
                               u"Show Walkthrough"_s};
const QStringList selectionTitles{u"Duplicate Selected"_s, u"Toggle Visibility"_s,
                                  u"Delete Selected"_s};

class MenuBarTest : public MenuBarFixture {
protected:
    QStringList titles() const {
        QStringList all;
        for (const auto* const button : shown<MenuBarButton>())
            all << button->text();
        return all;
    }
    QStringList presetNames() const {
        QStringList all;
        for (const auto* const row : shown<MenuBarPresetRow>())
            all << row->accessibleName();
        return all;
    }
    QStringList maskNames() const {
        QStringList all;
        for (const QWidget* const view : shown<QWidget>()) {
            const QString identifier = accessibleIdentifier(*view);
            const bool isName = identifier.startsWith(u"panel-mask-"_s) &&
                                !identifier.startsWith(u"panel-mask-visibility-"_s);
            if (isName) all << view->accessibleName();
        }
        return all;
    }
    QString textOf(const QString& identifier) const { return nameOf(part(identifier)); }
    void use(const QString& name) {
        QWidget* const view = part(name);
        ASSERT_TRUE(view) << name.toStdString();
        QTest::mouseClick(view, Qt::LeftButton);
        settle();
    }
    static QString focused() { return nameOf(QApplication::focusWidget()); }
};

}  // namespace

TEST_F(MenuBarTest, ShowsWhatThereIs) {
    struct Case {
        int masks;
        QList<int> presets;
        QStringList presetRows;
        int maskRows;
        bool hasSelection;
    };
    const Case cases[] = {
        {0, {}, {}, 0, false},
        {1, {}, {}, 1, false},
        {0, {0, 1, 2}, {u"P0, 0 masks"_s, u"P1, 1 mask"_s, u"P2, 2 masks"_s}, 0, false},
        {12,
         {1, 1, 1, 1, 1, 1, 1, 1, 1},
         {u"P0, 1 mask"_s, u"P1, 1 mask"_s, u"P2, 1 mask"_s, u"P3, 1 mask"_s, u"P4, 1 mask"_s,
          u"P5, 1 mask"_s},
         5,
         true},
    };
    int former = 0;
    for (const Case& each : cases) {
        state().masks.set({});
        state().presets.set({});
        state().selectedMaskID.set(std::nullopt);
        for (int index = 0; index < each.masks; ++index)
            addNamedMask(u"Mask %1"_s.arg(index));
        for (qsizetype index = 0; index < each.presets.size(); ++index)
            addPreset(u"P%1"_s.arg(index), each.presets[index]);
        // Also one that has no row of its own.
        if (each.hasSelection) state().selectedMaskID.set(masks().last().id);
        openPanel();
        EXPECT_EQ(titles(), each.hasSelection ? actionTitles + selectionTitles : actionTitles);
        EXPECT_EQ(presetNames(), each.presetRows);
        EXPECT_EQ(part(u"Presets"_s) != nullptr, !each.presets.isEmpty());
        EXPECT_EQ(maskNames().size(), each.maskRows);
        EXPECT_EQ(textOf(u"panel-overlay-count"_s), u"%1 active overlays"_s.arg(each.masks));
        EXPECT_EQ(part(u"Veyla Panel"_s)->width(), 250);
        EXPECT_NE(m_panel->height(), former) << "the height is that of another content";
        EXPECT_EQ(m_panel->findChildren<QScrollBar*>().size(), 0) << "it is cut off";
        former = m_panel->height();
        key(Qt::Key_Escape);
        EXPECT_FALSE(isOpen());
    }
}

TEST_F(MenuBarTest, FollowsTheStateOnceInATurn) {
    const QUuid first = addNamedMask(u"First"_s);
    const QUuid second = addNamedMask(u"Second\nline"_s);
    openPanel();
    EXPECT_EQ(maskNames(), (QStringList{u"First"_s, u"Second line"_s}));
    const int height = m_panel->height();

    state().selectedMaskID.set(second);
    state().masks.update([](QList<ScreenMask>& all) { all[0].colorHex = u"no colour"_s; });
    EXPECT_EQ(maskNames(), (QStringList{u"First"_s, u"Second line"_s})) << "within the turn";
    settle();
    EXPECT_EQ(maskNames(), (QStringList{u"First"_s, u"Second line, selected"_s}));
    EXPECT_EQ(titles(), actionTitles + selectionTitles);
    EXPECT_GT(m_panel->height(), height);
    EXPECT_EQ(MenuBarMaskRow::dotColor(masks()[0]), QColor(Qt::white));
    state().setColorHex(second, u"#34C759"_s);
    EXPECT_EQ(MenuBarMaskRow::dotColor(masks()[1]), QColor(0x34, 0xc7, 0x59));

    state().currentFrontmostAppName.set(u"Editor"_s);
    state().isEditingEnabled.set(false);
    state().areMasksVisible.set(false);
    desktop().updateFramework.setCanCheck(true);
    settle();
    EXPECT_EQ(textOf(u"panel-frontmost-app"_s), u"Editor");
    EXPECT_EQ(titles().mid(1, 2), (QStringList{u"Show All Masks"_s, u"Unlock Editing"_s}));
    EXPECT_EQ(shown<MenuBarButton>().at(1)->icon(), u"eye");
    EXPECT_EQ(shown<MenuBarButton>().at(2)->icon(), u"lock.open");
    EXPECT_EQ(dynamic_cast<ColorDot*>(part(u"panel-status"_s))->color().name(), u"#f43f5e");
    EXPECT_EQ(textOf(u"panel-status"_s), u"Masks are hidden") << "told by more than its colour";

    key(Qt::Key_Escape);
    state().deleteSelectedMask();
    state().setMaskName(first, u"Renamed"_s);
    openPanel();
    EXPECT_EQ(maskNames(), (QStringList{u"Renamed, selected"_s}));
}

TEST_F(MenuBarTest, EveryRowDoesWhatItSays) {
    const QUuid first = addNamedMask(u"First"_s);
    const QUuid second = addNamedMask(u"Second"_s);
    addPreset(u"Calls"_s, 3);
    desktop().updateFramework.setCanCheck(true);
    const auto visibility = [](const QUuid& id) {
        return u"panel-mask-visibility-"_s + uuidText(id);
    };
    const auto isVisible = [this](qsizetype index) { return masks().at(index).isVisible; };
    struct Case {
        QString row;
        /// Whether the panel stays.
        bool stays;
        std::function<bool()> holds;
    };
    const Case cases[] = {
        {u"panel-toggle-all"_s, true, [&] { return !state().areMasksVisible.value(); }},
        {u"panel-toggle-all"_s, true, [&] { return state().areMasksVisible.value(); }},
        {u"panel-toggle-editing"_s, true, [&] { return !state().isEditingEnabled.value(); }},
        {u"panel-mask-"_s + uuidText(second), true,
         [&] { return state().selectedMaskID.value() == second; }},
        {visibility(first), true, [&] { return !isVisible(0) && isVisible(1); }},
        {visibility(first), true, [&] { return isVisible(0) && isVisible(1); }},
        {u"panel-toggle-selected"_s, true, [&] { return isVisible(0) && !isVisible(1); }},
        {u"panel-duplicate-selected"_s, true, [&] { return masks().size() == 3; }},
        {u"panel-delete-selected"_s, true, [&] { return masks().size() == 2; }},
        {u"panel-new-mask"_s, false, [&] { return masks().size() == 3; }},
        {u"panel-preset-"_s + uuidText(state().presets.value()[0].id), false,
         [&] { return masks().size() == 3 && masks()[0].id != first; }},
        {u"panel-open-settings"_s, false, [&] { return m_calls == QStringList{u"settings"_s}; }},
        {u"panel-check-for-updates"_s, false,
         [&] { return desktop().updateFramework.checkCount() == 1; }},
    };
    for (const Case& each : cases) {
        if (!isOpen()) openPanel();
        use(each.row);
        EXPECT_TRUE(each.holds()) << each.row.toStdString();
        EXPECT_EQ(isOpen(), each.stays) << each.row.toStdString();
    }
}

TEST_F(MenuBarTest, RowsOfTheDashboardOpenItFirst) {
    addNamedMask(u"Mask"_s);
    struct Case {
        QString row;
        std::function<bool()> isDone;
    };
    const Case cases[] = {
        {u"panel-save-preset"_s, [&] { return state().isSavePresetPresented.value(); }},
        {u"panel-whats-new"_s, [&] { return state().isWhatsNewPresented.value(); }},
        {u"panel-show-walkthrough"_s, [&] { return state().isOnboardingPresented.value(); }},
    };
    int opened = 0;
    state().setOpenWindowAction([&](QLatin1StringView) { ++opened; });
    for (const Case& each : cases) {
        state().isWhatsNewPresented.set(false);
        openPanel();
        const int before = opened;
        use(each.row);
        EXPECT_EQ(opened, before + 1) << each.row.toStdString();
        EXPECT_FALSE(isOpen());
        advance(299);
        EXPECT_FALSE(each.isDone()) << each.row.toStdString();
        advance(1);
        EXPECT_TRUE(each.isDone()) << each.row.toStdString();
    }
    openPanel();
    use(u"panel-open-dashboard"_s);
    EXPECT_EQ(opened, 4);
    EXPECT_EQ(desktop().applicationHost.policy(), ActivationPolicy::regular);
}

TEST_F(MenuBarTest, WhatCannotBeDoneIsDisabled) {
    addNamedMask(u"Mask"_s);
    m_extra = std::make_unique<MenuBarExtra>(state(), desktop().mainLoop, desktop().trayIcon,
                                             desktop().pointerPresses, MenuBarExtra::Actions{});
    desktop().updateFramework.setCanCheck(false);
    openPanel();
    for (const QString& row : {u"panel-check-for-updates"_s, u"panel-open-settings"_s}) {
        use(row);
        ASSERT_TRUE(isOpen()) << row.toStdString();
        EXPECT_FALSE(part(row)->isEnabled());
    }
    EXPECT_EQ(desktop().updateFramework.checkCount(), 0);
    const auto brightness = [](QWidget* row) {
        const QImage picture = row->grab().toImage();
        int brightest = 0;
        for (int x = 30; x < picture.width(); ++x)
            brightest = std::max(brightest, qGray(picture.pixel(x, picture.height() / 2)));
        return brightest;
    };
    EXPECT_LT(brightness(part(u"Open Settings"_s)), brightness(part(u"Open Dashboard"_s)) * 2 / 3);
}

TEST_F(MenuBarTest, TheKeyboardReachesEverything) {
    addNamedMask(u"First"_s);
    addPreset(u"Calls"_s, 1);
    desktop().updateFramework.setCanCheck(false);
    openPanel();
    QStringList walked;
    for (int step = 0; step < 12; ++step) {
        key(Qt::Key_Down);
        walked << focused();
    }
    // Without the one that is disabled, and once at the end stays there.
    QStringList expected = actionTitles + QStringList{u"Calls, 1 mask"_s, u"First"_s, u"First"_s};
    expected.removeAll(u"Check for Updates…"_s);
    expected << u"First"_s;
    EXPECT_EQ(walked, expected);
    key(Qt::Key_Right);
    EXPECT_EQ(focused(), u"Hide First");
    key(Qt::Key_Space);
    EXPECT_FALSE(masks()[0].isVisible);
    EXPECT_EQ(focused(), u"Show First") << "the keyboard stays where it is";
    key(Qt::Key_Left);
    key(Qt::Key_Return);
    EXPECT_EQ(state().selectedMaskID.value(), masks()[0].id);
    key(Qt::Key_End);
    EXPECT_EQ(focused(), u"Delete Selected");
    key(Qt::Key_Enter);
    EXPECT_TRUE(masks().isEmpty());
    key(Qt::Key_Home);
    EXPECT_EQ(focused(), u"New Mask");
    key(Qt::Key_Tab);
    EXPECT_EQ(focused(), u"Hide All Masks");
    key(Qt::Key_Backtab);
    key(Qt::Key_Return);
    EXPECT_EQ(masks().size(), 1);
    EXPECT_FALSE(isOpen());
}
