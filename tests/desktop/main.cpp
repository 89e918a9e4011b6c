#include "desktop/MaskOperator.h"
#include "support/desktop/DesktopSession.h"

#include <QApplication>
#include <cstdio>
#include <exception>
#include <gtest/gtest.h>
#include <string_view>

/// Runs the tests on a desktop of their own: X server, window manager, session bus, accessibility
/// bus and home are started here and end here. A test that needs another server makes one. With
/// `--operate-masks` this is a program for those tests instead.
int main(int argc, char** argv) {
    if (argc > 1 && std::string_view(argv[1]) == "--operate-masks")
        return runMaskOperator(argc, argv);
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
