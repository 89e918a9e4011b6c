#include "desktop/ComesToBe.h"
#include "support/desktop/X11WorkspaceHarness.h"

#include <QTemporaryDir>
#include <csignal>
#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace {

using KernelEvents = ProcessWatch::KernelEvents;

class WorkspaceTest : public testing::TestWithParam<KernelEvents> {
protected:
    void SetUp() override {
        if (GetParam() == KernelEvents::whereAllowed && !workspace().seesEveryProgram())
            GTEST_SKIP() << "the kernel does not tell this process of new programs";
    }

    X11Workspace& workspace() { return m_harness.workspace(); }

    std::unique_ptr<ChildProcess> start(
        const QString& name, const QStringList& arguments,
        const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment()) {
        return NeighbourProgram::start(environment, m_folder.path(), name, arguments);
    }

    testing::AssertionResult identifiersBecome(const QStringList& expected) {
        const auto identifiers = [this] {
            QStringList all;
            for (const auto& each : workspace().runningApplications())
                all << each.bundleIdentifier.value_or(u"absent"_s);
            return all;
        };
        return comesToBe(identifiers, expected);
    }

    bool becomesFrontmost(const QString& name) {
        return waitUntil([&] {
            return workspace().frontmostApplication() == RunningApplication{name, name};
        });
    }

    void claimActive(xcb_window_t window) {
        NeighbourClient& manager = m_harness.pager();
        manager.setNumbers(manager.root(), u"_NET_ACTIVE_WINDOW"_s, u"WINDOW"_s, {window});
        manager.roundTrip();
    }

    QTemporaryDir m_folder;
    X11WorkspaceHarness m_harness{GetParam()};
};

TEST_P(WorkspaceTest, RecordersCountWithoutAWindow) {
    QList<QStringList> ways{{u"hidden"_s}, {u"service"_s, u"org.example.Recorder"_s}};
    if (workspace().seesEveryProgram()) ways.append({u"idle"_s});
    const auto harmless = start(u"harmless"_s, {u"hidden"_s});
    for (const QStringList& way : ways) {
        const auto recorder = start(u"kazam"_s, way);
        EXPECT_TRUE(identifiersBecome({u"com.apple.QuickTimePlayerX"_s})) << way[0].toStdString();
        recorder->sendSignal(SIGKILL);
        EXPECT_TRUE(identifiersBecome({})) << way[0].toStdString();
    }
}

TEST_P(WorkspaceTest, RecordersOfOneKindAreOneApplication) {
    int launched = 0;
    int terminated = 0;
    const Subscription launches = workspace().onApplicationLaunched([&] { ++launched; });
    const Subscription ends = workspace().onApplicationTerminated([&] { ++terminated; });
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"DISPLAY"_s, u":4711"_s);
    const auto ofOtherDisplay = start(u"obs"_s, {u"idle"_s}, environment);

    const auto first = start(u"peek"_s, {u"hidden"_s});
    ASSERT_TRUE(identifiersBecome({u"com.apple.QuickTimePlayerX"_s}));
    const auto second = start(u"kazam"_s, {u"hidden"_s});
    const auto sharing = start(u"krfb"_s, {u"hidden"_s});
    EXPECT_TRUE(identifiersBecome({u"com.apple.QuickTimePlayerX"_s, u"com.apple.screensharing"_s}));
    // What runs already is found at the start.
    EXPECT_TRUE(waitUntil([&] {
        return X11WorkspaceHarness(GetParam()).workspace().runningApplications().size() == 2;
    }));
    first->sendSignal(SIGKILL);
    sharing->sendSignal(SIGKILL);
    EXPECT_TRUE(identifiersBecome({u"com.apple.QuickTimePlayerX"_s}));
    second->sendSignal(SIGKILL);
    EXPECT_TRUE(identifiersBecome({}));
    // The first recorder left a second one of its kind.
    EXPECT_TRUE(waitUntil([&] { return terminated == 2; }));
    EXPECT_EQ(launched, 2);
}

TEST_P(WorkspaceTest, AMomentWithoutAnActiveWindowIsNoActivation) {
    const NeighbourProgram& editor = m_harness.launch(u"Editor"_s, 2);
    ASSERT_TRUE(becomesFrontmost(u"Editor"_s));
    ASSERT_TRUE(waitUntil([&] { return m_harness.pager().isViewable(editor.windows()[1]); }));
    int activated = 0;
    const Subscription activations =
        workspace().onApplicationActivated([&](const auto&) { ++activated; });
    for (const xcb_window_t window : editor.windows()) {
        m_harness.pager().requestActivation(window);
        ASSERT_TRUE(waitUntil([&] { return m_harness.pager().activeWindow() == window; }));
    }
    // No window, and a window that nobody has. The manager may still be at its own last word.
    for (const xcb_window_t nothing : {xcb_window_t{XCB_NONE}, xcb_window_t{1}}) {
        EXPECT_TRUE(waitUntil([&] {
            claimActive(nothing);
            return !workspace().frontmostApplication();
        }));
        claimActive(editor.windows()[0]);
        EXPECT_TRUE(becomesFrontmost(u"Editor"_s));
    }
    EXPECT_EQ(activated, 0) << "the application stays the one in front";
    m_harness.launch(u"Mail"_s);
    EXPECT_TRUE(becomesFrontmost(u"Mail"_s));
    EXPECT_TRUE(waitUntil([&] { return activated == 1; }));
}

INSTANTIATE_TEST_SUITE_P(, WorkspaceTest,
                         testing::Values(KernelEvents::whereAllowed, KernelEvents::never),
                         [](const auto& test) {
                             return test.param == KernelEvents::never ? "WithoutKernelEvents"
                                                                      : "WithKernelEvents";
                         });

}  // namespace
