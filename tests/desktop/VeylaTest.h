#pragma once

#include "desktop/ComesToBe.h"
#include "desktop/VeylaSession.h"

/// A test of the running program. One that still runs at the end of a test is asked to quit, and
/// must do so in order: without complaints, and without leaving a window.
class VeylaTest : public testing::Test, protected VeylaSession {
protected:
    explicit VeylaTest(const DesktopSession::Options& options = {}) : VeylaSession(options) {}

    void TearDown() override {
        if (!process) return;
        if (process->isRunning()) {
            EXPECT_EQ(quit(), 0);
            EXPECT_TRUE(waitUntil([&] { return maskWindowCount() == 0; })) << "windows are left";
        }
        EXPECT_EQ(process->standardError().toStdString(), m_expectedLog);
    }

    testing::AssertionResult comesTo(const QUuid& mask, const QRect& expected) {
        return comesToBe([&] { return rectOf(mask); }, expected);
    }

    testing::AssertionResult becomesPainted(const QUuid& mask) {
        if (waitUntil([&] { return isPainted(mask); })) return testing::AssertionSuccess();
        return testing::AssertionFailure() << pixel(middleOf(mask)).name().toStdString();
    }

    /// A program that uses this desktop as assistive technology does, see accessibility_client.py.
    std::unique_ptr<ChildProcess> assistiveClient(const QStringList& arguments) const {
        return std::make_unique<ChildProcess>(
            QStringLiteral("/usr/bin/python3"),
            QStringList(QStringLiteral(VEYLA_SOURCE_DIR "/tests/desktop/accessibility_client.py")) +
                arguments,
            desktop.environment());
    }
    /// One that tells what happens, from now on.
    std::unique_ptr<ChildProcess> assistiveWatcher(const QString& mode) const {
        auto watcher = assistiveClient({mode});
        EXPECT_EQ(watcher->waitForFirstLine(), "ready");
        return watcher;
    }
    static QStringList linesOf(const ChildProcess& client) {
        return QString::fromUtf8(client.standardOutput()).split(u'\n', Qt::SkipEmptyParts);
    }

    /// Sets the layout of the keyboard, with arguments for setxkbmap.
    void setLayout(const QStringList& arguments) {
        ChildProcess command(QStringLiteral("setxkbmap"), arguments, desktop.environment());
        ASSERT_EQ(command.waitForExit(defaultWait), 0) << command.standardError().constData();
    }

    /// Something that happens, and what to call it.
    using Step = std::pair<const char*, std::function<void()>>;

    /// What the program says on standard error until the end.
    std::string m_expectedLog;

    /// Another program's window over the whole screen, below the masks that come later.
    xcb_window_t openBackdrop() {
        return neighbour.open({.frame = {0, 0, 1280, 800}, .isOverrideRedirect = true});
    }
};
