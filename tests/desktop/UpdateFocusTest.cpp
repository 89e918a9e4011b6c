#include "Platform/Qt/Updates/QtUpdateDialogs.h"
#include "support/desktop/NeighbourClient.h"
#include "support/desktop/Wait.h"
#include "support/desktop/XTestInput.h"

#include <QApplication>
#include <QWindow>
#include <X11/keysym.h>
#include <algorithm>
#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

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
        dialogs.showOffer({u"1.2"_s, u"1.0"_s, {}}, isExpected, [&](UpdateChoice) { ++answers; });
    };
    // Windows of other tests may still be about to go.
    const auto isShown = [] {
        const auto windows = QGuiApplication::allWindows();
        return std::any_of(windows.begin(), windows.end(),
                           [](const QWindow* window) { return window->isExposed(); });
    };
    show(false);
    ASSERT_TRUE(waitUntil(isShown));
    EXPECT_TRUE(typingReachesEditor());
    EXPECT_EQ(QApplication::activeWindow(), nullptr);

    dialogs.bringToFront();
    // The toolkit believes it before the window manager has done it.
    ASSERT_TRUE(waitUntil([] { return QApplication::activeWindow() != nullptr; }));
    ASSERT_TRUE(waitUntil([&] { return !typingReachesEditor(); }));
    input.typeKeysyms({XK_Escape});
    EXPECT_TRUE(waitUntil([&] { return answers == 1; }));
    EXPECT_TRUE(waitUntil([&] { return !isShown(); }));
    show(true);
    EXPECT_TRUE(waitUntil([] { return QApplication::activeWindow() != nullptr; }));
}
