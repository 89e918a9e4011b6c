#pragma once

#include "contract/DesktopHarness.h"
#include "contract/WorkspaceHarness.h"

#include <QStringList>
#include <gtest/gtest.h>

/// What every back end must tell of applications. A back end instantiates the suite with its
/// harness, and includes this in one file.
class WorkspaceContract : public testing::TestWithParam<HarnessMaker<WorkspaceHarness>> {
protected:
    static RunningApplication application(const QString& name) { return {name, name}; }

    qsizetype count(const QString& name) {
        return harness.workspace().runningApplications().count(application(name));
    }

    bool becomesFrontmost(const QString& name) {
        return harness.waitUntil(
            [&] { return harness.workspace().frontmostApplication() == application(name); });
    }

    const std::unique_ptr<WorkspaceHarness> owner = GetParam()();
    WorkspaceHarness& harness = *owner;
    const QString m_first = QStringLiteral("Alpha");
    const QString m_second = QStringLiteral("Beta");
};

TEST_P(WorkspaceContract, TellsWhatComesToTheFront) {
    Workspace& workspace = harness.workspace();
    QStringList seen;
    const auto note = [&](const std::optional<RunningApplication>& application) {
        seen << (application ? application : workspace.frontmostApplication())
                    .value_or(RunningApplication())
                    .bundleIdentifier.value_or(QString());
    };
    const Subscription subscription = workspace.onApplicationActivated(note);
    EXPECT_EQ(workspace.frontmostApplication(), std::nullopt);
    harness.launch(m_first);
    ASSERT_TRUE(becomesFrontmost(m_first));
    harness.launch(m_second);
    ASSERT_TRUE(becomesFrontmost(m_second));
    harness.bringToFront(m_first);
    ASSERT_TRUE(becomesFrontmost(m_first));
    EXPECT_TRUE(harness.waitUntil([&] { return seen.size() == 3; }));
    EXPECT_EQ(seen, (QStringList{m_first, m_second, m_first}));

    harness.quit(m_first);
    EXPECT_TRUE(harness.waitUntil(
        [&] { return workspace.frontmostApplication() != application(m_first); }));
}

TEST_P(WorkspaceContract, TellsOfStartsAndEnds) {
    Workspace& workspace = harness.workspace();
    QStringList log;
    const auto note = [&](const char* what) {
        return [&log, what] { log << QLatin1StringView(what); };
    };
    const Subscription launched = workspace.onApplicationLaunched(note("launched"));
    Subscription terminated = workspace.onApplicationTerminated(note("terminated"));
    harness.launch(m_first);
    EXPECT_TRUE(log.isEmpty()) << "nothing may be told in place";
    ASSERT_TRUE(harness.waitUntil([&] { return !log.isEmpty(); }));
    EXPECT_EQ(count(m_first), 1);
    harness.launch(m_second);
    ASSERT_TRUE(harness.waitUntil([&] { return log.size() == 2; }));
    harness.quit(m_first);
    ASSERT_TRUE(harness.waitUntil([&] { return log.size() == 3; }));
    EXPECT_EQ(log.join(QLatin1Char(' ')).toStdString(), "launched launched terminated");
    EXPECT_EQ(count(m_first), 0);
    EXPECT_EQ(count(m_second), 1);

    terminated.reset();
    harness.quit(m_second);
    harness.launch(m_first);
    ASSERT_TRUE(harness.waitUntil([&] { return log.size() == 4; }));
    EXPECT_EQ(log.last().toStdString(), "launched");
}
