#pragma once

#include "Platform/Workspace.h"

#include <QStringList>
#include <algorithm>
#include <functional>
#include <gtest/gtest.h>

/// What the contract suite needs of the applications of a desktop. Every back end provides one.
class WorkspaceHarness {
public:
    virtual ~WorkspaceHarness() = default;

    virtual Workspace& workspace() = 0;
    /// Runs the main loop until the condition holds; false when it does not within a bound.
    virtual bool waitUntil(const std::function<bool()>& condition) = 0;

    /// Starts an application with that name and identifier; it comes to the front.
    virtual void launch(const QString& name) = 0;
    virtual void bringToFront(const QString& name) = 0;
    virtual void quit(const QString& name) = 0;
};

/// What every back end must tell of applications. A back end instantiates the suite with its
/// harness.
template <typename Harness>
class WorkspaceContract : public testing::Test {
protected:
    static RunningApplication application(const QString& name) { return {name, name}; }

    qsizetype count(const QString& name) {
        return this->harness.workspace().runningApplications().count(application(name));
    }

    bool becomesFrontmost(const QString& name) {
        return this->harness.waitUntil(
            [&] { return this->harness.workspace().frontmostApplication() == application(name); });
    }

    Harness harness;
    const QString m_first = QStringLiteral("Alpha");
    const QString m_second = QStringLiteral("Beta");
};

TYPED_TEST_SUITE_P(WorkspaceContract);

TYPED_TEST_P(WorkspaceContract, TellsWhatComesToTheFront) {
    Workspace& workspace = this->harness.workspace();
    QStringList seen;
    const auto note = [&](const std::optional<RunningApplication>& application) {
        seen << (application ? application : workspace.frontmostApplication())
                    .value_or(RunningApplication())
                    .bundleIdentifier.value_or(QString());
    };
    const Subscription subscription = workspace.onApplicationActivated(note);
    EXPECT_EQ(workspace.frontmostApplication(), std::nullopt);
    this->harness.launch(this->m_first);
    ASSERT_TRUE(this->becomesFrontmost(this->m_first));
    this->harness.launch(this->m_second);
    ASSERT_TRUE(this->becomesFrontmost(this->m_second));
    this->harness.bringToFront(this->m_first);
    ASSERT_TRUE(this->becomesFrontmost(this->m_first));
    EXPECT_TRUE(this->harness.waitUntil([&] { return seen.size() == 3; }));
    EXPECT_EQ(seen, (QStringList{this->m_first, this->m_second, this->m_first}));

    this->harness.quit(this->m_first);
    EXPECT_TRUE(this->harness.waitUntil(
        [&] { return workspace.frontmostApplication() != this->application(this->m_first); }));
}

TYPED_TEST_P(WorkspaceContract, TellsOfStartsAndEnds) {
    Workspace& workspace = this->harness.workspace();
    QStringList log;
    const auto note = [&](const char* what) {
        return [&log, what] { log << QLatin1StringView(what); };
    };
    const Subscription launched = workspace.onApplicationLaunched(note("launched"));
    Subscription terminated = workspace.onApplicationTerminated(note("terminated"));
    this->harness.launch(this->m_first);
    EXPECT_TRUE(log.isEmpty()) << "nothing may be told in place";
    ASSERT_TRUE(this->harness.waitUntil([&] { return !log.isEmpty(); }));
    EXPECT_EQ(this->count(this->m_first), 1);
    this->harness.launch(this->m_second);
    ASSERT_TRUE(this->harness.waitUntil([&] { return log.size() == 2; }));
    this->harness.quit(this->m_first);
    ASSERT_TRUE(this->harness.waitUntil([&] { return log.size() == 3; }));
    EXPECT_EQ(log.join(QLatin1Char(' ')).toStdString(), "launched launched terminated");
    EXPECT_EQ(this->count(this->m_first), 0);
    EXPECT_EQ(this->count(this->m_second), 1);

    terminated.reset();
    this->harness.quit(this->m_second);
    this->harness.launch(this->m_first);
    ASSERT_TRUE(this->harness.waitUntil([&] { return log.size() == 4; }));
    EXPECT_EQ(log.last().toStdString(), "launched");
}

REGISTER_TYPED_TEST_SUITE_P(WorkspaceContract, TellsWhatComesToTheFront, TellsOfStartsAndEnds);
