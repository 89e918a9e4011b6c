#pragma once

#include "desktop/VeylaSession.h"
#include "support/desktop/Wait.h"

#include <gtest/gtest.h>

inline void PrintTo(const QRect& rect, std::ostream* stream) {
    *stream << rect.width() << "x" << rect.height() << "+" << rect.x() << "+" << rect.y();
}

inline void PrintTo(const Rect& rect, std::ostream* stream) {
    *stream << rect.width << "x" << rect.height << " at " << rect.x << ", " << rect.y;
}

/// A test of the running program. One that still runs at the end of a test is asked to quit, and
/// must do so in order: without complaints, and without leaving a window.
class VeylaTest : public testing::Test, protected VeylaSession {
protected:
    explicit VeylaTest(const DesktopSession::Options& options = {}) : VeylaSession(options) {}

    void TearDown() override {
        if (!process || !process->isRunning()) return;
        EXPECT_EQ(quit(), 0) << process->standardError().constData();
        EXPECT_TRUE(waitUntil([&] { return maskWindowCount() == 0; })) << "windows are left";
    }

    testing::AssertionResult comesTo(const QUuid& mask, const QRect& expected) {
        if (waitUntil([&] { return rectOf(mask) == expected; })) return testing::AssertionSuccess();
        return testing::AssertionFailure() << testing::PrintToString(rectOf(mask)) << " instead of "
                                           << testing::PrintToString(expected);
    }

    testing::AssertionResult becomesPainted(const QUuid& mask) {
        if (waitUntil([&] { return isPainted(mask); })) return testing::AssertionSuccess();
        return testing::AssertionFailure() << pixel(middleOf(mask)).name().toStdString();
    }

    /// Another program's window over the whole screen, below the masks that come later.
    xcb_window_t openBackdrop() {
        return neighbour.open({.frame = {0, 0, 1280, 800}, .isOverrideRedirect = true});
    }
};
