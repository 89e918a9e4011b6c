#include "support/desktop/DesktopSession.h"

#include <QApplication>
#include <cstdio>
#include <exception>
#include <gtest/gtest.h>

/// Runs the tests on a desktop of their own: X server, window manager, session bus, accessibility
/// bus and home are started here and end here. A test that needs another server makes one.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    try {
        const DesktopSession session({.hasAccessibilityBus = true});
        session.adoptEnvironment();
        qputenv("QT_QPA_PLATFORM", "xcb");
        qputenv("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1");
        const QApplication application(argc, argv);
        return RUN_ALL_TESTS();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "the desktop for the tests could not be set up: %s\n", error.what());
        return 1;
    }
}
