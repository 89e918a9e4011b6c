#include "desktop/VeylaTest.h"

using namespace Qt::Literals::StringLiterals;
using PassThrough = VeylaTest;

TEST_F(PassThrough, ClicksReachWhatIsBelowExactlyWhenTheyShould) {
    const xcb_window_t below = openBackdrop();
    const QUuid ordinary = addMask({100, 100, 200, 100});
    const QUuid passing = addMask({500, 100, 200, 100}, Qt::blue);
    workspace.masks.last().isClickThrough = true;
    start();
    const auto reachesBelow = [&](const QUuid& mask) {
        neighbour.takeInput();
        input.click(middleOf(mask));
        const auto events = neighbour.takeInput();
        EXPECT_LE(events.size(), 1);
        return !events.isEmpty() && events.first().window == below;
    };
    for (const auto& [command, isOrdinaryPassed] : {std::pair("status", false),
                                                    {"toggle-editing", true},
                                                    {"toggle-editing", false},
                                                    {"hide-masks", true},
                                                    {"show-masks", false}}) {
        SCOPED_TRACE(command);
        const xcb_window_t window = windowOf(ordinary)->id;
        ASSERT_EQ(run({QString::fromLatin1(command)}).status, 0);
        EXPECT_TRUE(waitUntil([&] { return reachesBelow(ordinary) == isOrdinaryPassed; }));
        EXPECT_TRUE(reachesBelow(passing));
        EXPECT_EQ(windowOf(ordinary)->id, window);
    }
    EXPECT_TRUE(isPainted(ordinary) && isPainted(passing));
    // Only the one that takes clicks can be selected, and no click has moved anything.
    EXPECT_EQ(QUuid(status().value("selectedMaskID"_L1).toString()), ordinary);
    EXPECT_EQ(rectOf(passing), (QRect{500, 600, 200, 100}));
}

TEST_F(PassThrough, MasksNeverTakeTheFocus) {
    const xcb_window_t window = neighbour.open({.frame = {0, 0, 400, 400}});
    neighbour.requestActivation(window);
    ASSERT_TRUE(waitUntil([&] { return probe.focus() == window; }));
    const QUuid mask = addMask({100, 500, 200, 100});
    start();
    input.click(middleOf(mask));
    EXPECT_TRUE(waitUntil([&] { return !status().value("selectedMaskID"_L1).isNull(); }));
    EXPECT_EQ(probe.focus(), window);
}
