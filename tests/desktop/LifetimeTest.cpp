#include "desktop/VeylaTest.h"

#include <csignal>

using namespace Qt::Literals::StringLiterals;

namespace {

class Lifetime : public VeylaTest {
protected:
    QUuid m_mask = addMask({100, 500, 200, 100});
    QUuid m_other = addMask({500, 500, 200, 100}, Qt::blue);

    bool isCovered() { return isPainted(m_mask) && isPainted(m_other); }
};

}  // namespace

TEST_F(Lifetime, AKilledProgramLeavesTheMasksUntilTheNextStartTakesOver) {
    openBackdrop();
    start();
    for (int round = 0; round < 2; ++round) {
        const xcb_window_t former = windowOf(m_mask)->id;
        process->sendSignal(SIGKILL);
        ASSERT_EQ(process->waitForExit(defaultWait), -SIGKILL);
        if (round == 1) desktop.startCompositor();
        // The server repaints what a window that comes and goes has covered.
        neighbour.destroy(neighbour.open({.frame = {0, 0, 1280, 800}, .isOverrideRedirect = true}));
        EXPECT_TRUE(waitUntil([&] { return isCovered(); }));
        EXPECT_TRUE(isEveryMaskShownOnce());
        restart();
        EXPECT_TRUE(waitUntil([&] { return windowOf(m_mask)->id != former && isCovered(); }));
        EXPECT_TRUE(isEveryMaskShownOnce());
    }
    input.drag(middleOf(m_mask), middleOf(m_mask) + QPoint(40, 30));
    EXPECT_TRUE(comesTo(m_mask, {140, 230, 200, 100}));
}

TEST_F(Lifetime, HiddenMasksLeaveNothingBehind) {
    start();
    ASSERT_EQ(run({u"hide-masks"_s}).status, 0);
    EXPECT_TRUE(waitUntil([&] { return !windowOf(m_mask)->isMapped; }));
    process->sendSignal(SIGKILL);
    EXPECT_EQ(process->waitForExit(defaultWait), -SIGKILL);
    EXPECT_TRUE(waitUntil([&] { return maskWindowCount() == 0; }));
}

TEST_F(Lifetime, EverySignalToEndAndQuitLeaveNothing) {
    for (const int number : {SIGTERM, SIGINT, SIGHUP, 0}) {
        SCOPED_TRACE(number);
        start();
        EXPECT_TRUE(isCovered());
        if (number == 0) {
            EXPECT_EQ(quit(), 0);
        } else {
            process->sendSignal(number);
            EXPECT_EQ(process->waitForExit(defaultWait), 0);
        }
        EXPECT_EQ(process->standardError().constData(), QByteArray());
        EXPECT_TRUE(waitUntil([&] { return maskWindowCount() == 0; }));
    }
}
