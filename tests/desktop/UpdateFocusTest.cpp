#include "Platform/Qt/QtUpdateDialogs.h"
#include "support/desktop/NeighbourClient.h"
#include "support/desktop/Wait.h"
#include "support/desktop/XTestInput.h"

#include <QApplication>
#include <QDialog>
#include <QWindow>
#include <X11/keysym.h>
#include <gtest/gtest.h>

// Under a real window manager, which decides who has the keyboard.
TEST(UpdateFocus, AnOfferThatNobodyWaitsForLeavesTheKeyboardAlone) {
    NeighbourClient neighbour;
    XTestInput input;
    const xcb_window_t editor = neighbour.open({.frame = {0, 0, 400, 400}});
    const auto typingReachesEditor = [&] {
        neighbour.takeInput();
        input.typeKeysyms({XK_a});
        const auto events = neighbour.takeInput();
        return !events.isEmpty() && events.first().window == editor;
    };
    neighbour.requestActivation(editor);
    ASSERT_TRUE(waitUntil(typingReachesEditor));

    QtUpdateDialogs dialogs;
    int answers = 0;
    const auto show = [&](bool isExpected) {
        dialogs.showOffer({QStringLiteral("1.2"), QStringLiteral("1.0"), {}}, isExpected,
                          [&](UpdateChoice) { ++answers; });
    };
    const auto window = [] { return QGuiApplication::allWindows().value(0); };
    show(false);
    ASSERT_TRUE(waitUntil([&] { return window() && window()->isExposed(); }));
    EXPECT_TRUE(typingReachesEditor());
    EXPECT_EQ(QApplication::activeWindow(), nullptr);

    dialogs.bringToFront();
    ASSERT_TRUE(waitUntil([] { return QApplication::activeWindow() != nullptr; }));
    EXPECT_FALSE(typingReachesEditor());
    input.typeKeysyms({XK_Escape});
    EXPECT_TRUE(waitUntil([&] { return answers == 1; }));
    EXPECT_TRUE(waitUntil([] { return QGuiApplication::allWindows().isEmpty(); }));
    show(true);
    EXPECT_TRUE(waitUntil([] { return QApplication::activeWindow() != nullptr; }));
}
