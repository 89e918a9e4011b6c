#include "Platform/Headless/HeadlessDesktop.h"
#include "Services/FrontmostAppMonitor.h"
#include "Services/ScreenShareMonitor.h"

#include <gtest/gtest.h>
#include <memory>

using namespace Qt::Literals::StringLiterals;

namespace {

RunningApplication named(const QString& name) {
    return {name, u"org.example."_s + name};
}

class MonitorsTest : public testing::Test {
protected:
    void runTurns() { m_desktop.mainLoop.advanceBy(std::chrono::milliseconds(0)); }

    HeadlessDesktop m_desktop;
    HeadlessWorkspace& m_workspace = m_desktop.workspace;
};

TEST_F(MonitorsTest, TheFrontmostApplicationIsPublishedAtEveryActivation) {
    m_workspace.activate(named(u"First"_s));
    runTurns();
    FrontmostAppMonitor monitor(m_workspace, m_desktop.mainLoop);
    QStringList seen;
    const Subscription name =
        monitor.appName().subscribe([&](const QString& text) { seen << text; });
    const Subscription identifier = monitor.bundleIdentifier().subscribe(
        [&](const std::optional<QString>& text) { seen << text.value_or(u"absent"_s); });
    EXPECT_EQ(seen, (QStringList{u"First"_s, u"org.example.First"_s})) << "at construction";

    const struct {
        RunningApplication application;
        bool isTold;
        QStringList published;
    } cases[] = {
        {named(u"Second"_s), true, {u"Second"_s, u"org.example.Second"_s}},
        {named(u"Second"_s), true, {u"Second"_s, u"org.example.Second"_s}},
        {{std::nullopt, u"org.example.Nameless"_s},
         false,
         {u"Unknown App"_s, u"org.example.Nameless"_s}},
        {{u"Bare"_s, std::nullopt}, true, {u"Bare"_s, u"absent"_s}},
    };
    for (const auto& each : cases) {
        seen.clear();
        if (each.isTold)
            m_workspace.activate(each.application);
        else
            m_workspace.activateUntold(each.application);
        EXPECT_TRUE(seen.isEmpty()) << "nothing is published in place";
        runTurns();
        EXPECT_EQ(seen, each.published);
    }
    seen.clear();
    m_workspace.activateUntold(std::nullopt);
    runTurns();
    EXPECT_TRUE(seen.isEmpty()) << "without an application the values stay";
}

TEST_F(MonitorsTest, CapturingApplicationsAreKnownByTheStartOfTheirIdentifier) {
    const struct {
        const char* identifier;
        bool canCapture;
    } cases[] = {{"us.zoom.xos", true},
                 {"COM.Microsoft.TEAMS2", true},
                 {"com.apple.ScreenSharing.agent", true},
                 {"com.obsproject.obs-studio", true},
                 {"us.zoom", false},
                 {"org.us.zoom.xos", false},
                 {nullptr, false}};
    for (const auto& each : cases) {
        HeadlessDesktop desktop;
        RunningApplication application;
        if (each.identifier) application.bundleIdentifier = QLatin1StringView(each.identifier);
        desktop.workspace.launch(application);
        EXPECT_EQ(
            ScreenShareMonitor(desktop.workspace, desktop.mainLoop).isLikelyScreenSharing().value(),
            each.canCapture)
            << each.identifier;
    }
}

TEST_F(MonitorsTest, SharingIsPublishedWhenItChanges) {
    const RunningApplication zoom{u"Zoom"_s, u"us.zoom.xos"_s};
    const RunningApplication recorder{u"Recorder"_s, u"com.obsproject.obs-studio"_s};
    auto monitor = std::make_unique<ScreenShareMonitor>(m_workspace, m_desktop.mainLoop);
    QList<bool> seen;
    const Subscription subscription =
        monitor->isLikelyScreenSharing().subscribe([&](bool isSharing) { seen << isSharing; });
    const auto after = [&](auto change) {
        change();
        runTurns();
        return seen;
    };
    EXPECT_EQ(after([&] { m_workspace.launch(named(u"Editor"_s)); }), QList<bool>{false});
    EXPECT_EQ(after([&] { m_workspace.launch(zoom); }), (QList<bool>{false, true}));
    EXPECT_EQ(after([&] { m_workspace.launch(recorder); }), (QList<bool>{false, true}));
    EXPECT_EQ(after([&] { m_workspace.terminate(zoom); }), (QList<bool>{false, true}));
    EXPECT_EQ(after([&] { m_workspace.terminate(recorder); }), (QList<bool>{false, true, false}));

    // A monitor may go between the event and its turn.
    m_workspace.launch(zoom);
    monitor.reset();
    runTurns();
    EXPECT_EQ(seen.size(), 3);
}

}  // namespace
