#include "desktop/VeylaTest.h"

#include <QLocalServer>
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

TEST_F(Lifetime, MoreSignalsDoNotCutTheEndShort) {
    for (int round = 0; round < 5; ++round) {
        start();
        process->sendSignal(SIGTERM);
        EXPECT_TRUE(waitUntil([&] {
            process->sendSignal(SIGHUP);
            process->sendSignal(SIGINT);
            return !process->isRunning();
        }));
        EXPECT_EQ(process->exitStatus(), 0);
        EXPECT_TRUE(waitUntil([&] { return maskWindowCount() == 0; })) << "masks without a process";
    }
}

TEST_F(Lifetime, NoSessionManagerRestoresItOrTakesItAlong) {
    QLocalServer manager;
    const QString address = desktop.home().path() + u"/manager"_s;
    ASSERT_TRUE(manager.listen(address));
    environment.insert(u"SESSION_MANAGER"_s, u"local/here:"_s + address);
    startArguments = QStringList{u"-session"_s, u"10a4_0"_s};
    start();
    EXPECT_FALSE(manager.hasPendingConnections());
    manager.close();
    EXPECT_TRUE(isCovered());
    EXPECT_FALSE(status()[u"dashboardVisible"].toBool(true));
}
