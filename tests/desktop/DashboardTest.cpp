#include "desktop/DashboardTest.h"

#include "support/desktop/TrayPanel.h"

using namespace Qt::Literals::StringLiterals;

namespace {

TEST_F(DashboardTest, AReaderFindsReadsAndUsesEveryKindOfControl) {
    const QUuid mask = addMask({900, 500, 321.9, 181.9});
    workspace.masks[0].colorHex = u"#007AFF"_s;
    workspace.masks[0].opacity = 0.86;
    const QString group = u"group-row-"_s + uuidText(addGroup());
    openDashboard();
    EXPECT_TRUE(shows({u"create-mask-button"_s, u"Create new mask"_s, u"Screen Privacy Tool"_s,
                       u"Masks: 1"_s, group, u"Calls, 0 masks"_s}));
    const auto row = named(rowOf(mask));
    ASSERT_EQ(row.size(), 1);
    EXPECT_EQ(row[0][1], u"Mask 1, Blackout, 86% opacity, visible");
    EXPECT_EQ(row[0][2], u"list item");

    ASSERT_TRUE(use({u"press"_s, rowOf(mask)}));
    EXPECT_TRUE(shows({u"mask-name-field"_s, u"Mask name"_s, u"321 × 181 px · Blackout"_s, u"86%"_s,
                       u"Toggles"_s, u"X: 900,  Y: 500 px"_s, u"Narrower (-20)"_s,
                       u"Mask ID: "_s + uuidText(mask), u"delete-mask-button"_s}));
    EXPECT_TRUE(named(u"Blue"_s).value(0).value(3).contains(u"checked"_s));
    EXPECT_TRUE(named(rowOf(mask)).value(0).value(3).contains(u"selected"_s));

    const std::pair<QStringList, std::function<testing::AssertionResult()>> uses[] = {
        {{u"press"_s, u"Frosted"_s}, [&] { return becomes("masks", "style", u"frosted"_s); }},
        {{u"set"_s, u"Opacity"_s, u"0.5"_s}, [&] { return becomes("masks", "opacity", 0.5); }},
        {{u"press"_s, u"Red"_s}, [&] { return becomes("masks", "colorHex", u"#FF3B30"_s); }},
        {{u"press"_s, u"Click-through"_s},
         [&] { return becomes("masks", "isClickThrough", true); }},
        {{u"press"_s, u"Hide Group"_s}, [&] { return becomes("groups", "isVisible", false); }},
        {{u"type"_s, u"mask-name-field"_s, u"Typed"_s}, [&] { return shows({u"Frosted"_s}); }},
    };
    for (const auto& [arguments, holds] : uses) {
        EXPECT_TRUE(use(arguments)) << arguments.join(u' ').toStdString();
        EXPECT_TRUE(holds()) << arguments.join(u' ').toStdString();
    }
    EXPECT_EQ(valueOf("masks", "name"), u"Mask 1"_s) << "typed and not submitted";
    ASSERT_TRUE(use({u"press"_s, u"delete-mask-button"_s}));
    EXPECT_TRUE(shows({u"No Mask Selected"_s}));
    ASSERT_TRUE(use({u"press"_s, u"empty-state-replay-walkthrough"_s}));
    EXPECT_TRUE(shows(
        {u"onboarding-overlay"_s, u"onboarding-skip-button"_s, u"1 of 5"_s, u"Create a mask"_s}));
    ASSERT_TRUE(use({u"press"_s, u"onboarding-next-button"_s}));
    EXPECT_TRUE(shows({u"2 of 5"_s}));
}

TEST_F(DashboardTest, TheKeyboardAloneDoesEverything) {
    openDashboard();
    watchFocus();

    input.typeKeysyms({control, 'n'});
    shortcut('n');
    ASSERT_TRUE(becomes("masks", "name", u"Mask 1"_s));
    EXPECT_EQ(status()[u"masks"].toArray().size(), 1) << "Control and N creates something";
    ASSERT_TRUE(tabTo(u"Mask name"_s));
    input.typeKeysyms({control, 'a'});
    for (const char letter : {'c', 'h', 'a', 't'})
        key(static_cast<std::uint32_t>(letter));
    key(enter);
    EXPECT_TRUE(becomes("masks", "name", u"chat"_s));
    pressIn(u"Blackout"_s, right);
    ASSERT_TRUE(waitUntil([&] { return focusChanges().last() == u"Frosted"; }));
    EXPECT_TRUE(becomes("masks", "style", u"frosted"_s));
    pressIn(u"Opacity"_s, 0xff50);  // Home
    EXPECT_TRUE(becomes("masks", "opacity", 0.15));
    pressIn(u"Graphite"_s, space);
    EXPECT_TRUE(becomes("masks", "colorHex", u"#1C1C1E"_s));
    pressIn(u"Click-through"_s, space);
    EXPECT_TRUE(becomes("masks", "isClickThrough", true));

    pressIn(u"Layer options"_s, space);
    ASSERT_TRUE(waitUntil([&] { return menu().has_value(); }));
    key(down);
    key(enter);
    EXPECT_TRUE(becomes("groups", "name", u"Group 1"_s));
    EXPECT_EQ(valueOf("masks", "groupID"), valueOf("groups", "id"));
    pressIn(u"Group 1, 1 mask"_s, f2);
    EXPECT_TRUE(waitUntil([&] { return focusChanges().last() == u"Group name"; }));
    key('x');
    key(enter);
    EXPECT_TRUE(waitUntil([&] { return focusChanges().last().endsWith(u", 1 mask"); }));
    EXPECT_TRUE(becomes("groups", "name", u"x"_s));

    shortcut('h');
    shortcut('l');
    EXPECT_TRUE(shows({u"Show All"_s, u"Unlock Editing"_s, u"Masks: 0"_s}));
    shortcut('d');
    EXPECT_TRUE(waitUntil([&] { return status()[u"masks"].toArray().size() == 2; }));
    input.typeKeysyms({control, erase});
    EXPECT_TRUE(waitUntil([&] { return status()[u"masks"].toArray().size() == 1; }));

    input.typeKeysyms({control, erase});
    ASSERT_TRUE(shows({u"empty-state-replay-walkthrough"_s}));
    pressIn(u"Replay walkthrough"_s, space);
    ASSERT_TRUE(shows({u"1 of 5"_s}));
    for (const std::uint32_t keysym : {enter, space, right})
        key(keysym);
    EXPECT_TRUE(shows({u"4 of 5"_s}));
    key(escape);
    EXPECT_TRUE(waitUntil([&] { return named(u"onboarding-overlay"_s).isEmpty(); }));
}

TEST_F(DashboardTest, ARowIsDraggedIntoAGroup) {
    const QUuid mask = addMask({1100, 20, 160, 90});
    addMask({1100, 120, 160, 90});
    const QUuid group = addGroup();
    workspace.selectedMaskID = mask;
    openDashboard();
    ASSERT_TRUE(shows({rowOf(mask), u"group-row-"_s + uuidText(group)}));
    const QPoint target = placeOf(u"group-row-"_s + uuidText(group)).center();
    const auto isHighlighted = [&] {
        // Between the count and the buttons, and not below what is dragged.
        return pixel(target - QPoint(40, 0)).blue() > 60;
    };
    EXPECT_FALSE(isHighlighted());
    const QPoint from = placeOf(rowOf(mask)).topLeft() + QPoint(8, 8);
    input.movePointer(from);
    input.press();
    for (int step = 1; step <= 10; ++step)
        input.movePointer(from + (target - from) * step / 10);
    EXPECT_TRUE(waitUntil([&] {
        input.movePointer(target);
        return isHighlighted();
    })) << "the group does not light up";
    input.release();
    EXPECT_TRUE(waitUntil([&] { return !isHighlighted(); }));
    EXPECT_TRUE(becomes("masks", "groupID", valueOf("groups", "id")));
    EXPECT_TRUE(shows({u"Calls, 1 mask"_s}));
    EXPECT_TRUE(valueOf("masks", "groupID", 1).isNull());
}

TEST_F(DashboardTest, ItComesAndGoesAndTheMasksStay) {
    addMask({1100, 20, 160, 90});
    openDashboard();
    ASSERT_TRUE(showsDashboard());
    neighbour.move(dashboard(), {60, 40, 1000, 600});
    ASSERT_TRUE(waitUntil([&] { return probe.geometry(dashboard())->width() == 1000; }));
    const QRect frame = dashboardFrame();
    struct Way {
        const char* what;
        std::vector<std::uint32_t> keys;
        QStringList command;
        bool isShown;
    };
    const Way steps[] = {
        {"Control and W", {control, 'w'}, {}, false},
        {"veyla", {}, {}, true},
        {"toggle-dashboard hides", {}, {u"toggle-dashboard"_s}, false},
        {"toggle-dashboard shows", {}, {u"toggle-dashboard"_s}, true},
        {"the hot key hides", {control, alt, super, 's'}, {}, false},
        {"the hot key shows", {control, alt, super, 's'}, {}, true},
        {"Alt and F4", {alt, 0xffc1}, {}, false},
        {"veyla again", {}, {}, true},
    };
    for (const auto& [what, keys, command, isShown] : steps) {
        SCOPED_TRACE(what);
        if (keys.empty())
            run(command);
        else
            input.typeKeysyms(keys);
        EXPECT_TRUE(showsDashboard(isShown));
        EXPECT_TRUE(isEveryMaskShownOnce());
        if (!isShown) continue;
        EXPECT_TRUE(waitUntil([&] { return isInFront() && dashboardFrame() == frame; }))
            << testing::PrintToString(dashboardFrame()) << " instead of "
            << testing::PrintToString(frame);
    }
    input.typeKeysyms({control, 'q'});
    EXPECT_EQ(process->waitForExit(defaultWait), 0);
}

TEST_F(DashboardTest, NoWindowComesUnasked) {
    addMask({1100, 20, 160, 90});
    for (const bool isMenuBarOnly : {false, true}) {
        SCOPED_TRACE(isMenuBarOnly);
        std::optional<TrayPanel> tray;
        if (isMenuBarOnly) tray.emplace(desktop);
        workspace.settings.menuBarOnlyMode = isMenuBarOnly;
        startArguments = isMenuBarOnly ? QStringList() : QStringList(u"--background"_s);
        start();
        // It answers when everything that its start shows has been asked for.
        EXPECT_FALSE(status()[u"dashboardVisible"].toBool(true));
        EXPECT_EQ(dashboard(), XCB_NONE);
        EXPECT_EQ(run({}).status, 0);
        EXPECT_TRUE(showsDashboard());
        EXPECT_FALSE(probe.hasState(dashboard(), u"_NET_WM_STATE_SKIP_TASKBAR"_s))
            << "asked for by the user, it is listed";
        EXPECT_EQ(quit(), 0);
    }
}

TEST_F(DashboardTest, MenusArePaintedOnTheScreen) {
    for (const bool hasCompositor : {false, true}) {
        SCOPED_TRACE(hasCompositor);
        if (hasCompositor) desktop.startCompositor();
        openDashboard();
        input.typeKeysyms({alt, 'v'});
        ASSERT_TRUE(waitUntil([&] { return menu().has_value(); }));
        const QRect frame = menu()->frame;
        const auto isGround = [](const QColor& each) { return each == QColor(u"#141826"_s); };
        const auto isText = [](const QColor& each) { return each.lightness() > 150; };
        const int area = frame.width() * frame.height();
        EXPECT_TRUE(waitUntil([&] { return Screenshot(probe).count(frame, isGround) > area / 2; }));
        EXPECT_GT(Screenshot(probe).count(frame, isText), 300);
        key(escape);
        EXPECT_EQ(quit(), 0);
    }
}

}  // namespace
