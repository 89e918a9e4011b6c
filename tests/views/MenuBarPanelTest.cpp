#include "MenuBarFixture.h"
#include "Views/Design/VeylaTheme.h"

#include <QScrollBar>

using namespace Qt::Literals::StringLiterals;
using MenuBarPanelTest = MenuBarFixture;

TEST_F(MenuBarPanelTest, ATooHighContentScrolls) {
    for (int index = 0; index < 9; ++index) {
        addNamedMask(u"Mask"_s);
        addPreset(u"Preset"_s, 1);
    }
    state().selectedMaskID.set(masks()[0].id);
    const QFont former = QApplication::font();
    QFont large = former;
    large.setPixelSize(26);
    QApplication::setFont(large);
    openPanel();
    QApplication::setFont(former);
    const QRect available = m_panel->screen()->availableGeometry();
    ASSERT_GT(m_panel->height(), 600) << "the content of the offscreen desktop fits";
    EXPECT_TRUE(available.contains(m_panel->frameGeometry()));
    const auto grooveColor = [this] {
        const QImage picture = m_panel->screen()->grabWindow(m_panel->winId()).toImage();
        return picture.pixelColor(m_panel->width() - 6, 40);
    };
    const auto* const bar = m_panel->findChildren<QScrollBar*>().constFirst();
    EXPECT_NE(grooveColor(), VeylaTheme::panel()) << "the handle is at the top";
    key(Qt::Key_End);
    EXPECT_EQ(bar->value(), bar->maximum());
    EXPECT_EQ(grooveColor(), VeylaTheme::panel()) << "the handle leaves a trail";
    QWidget* const last = part(u"Delete Selected"_s);
    EXPECT_EQ(last->visibleRegion().boundingRect().height(), last->height());
    EXPECT_EQ(QApplication::focusWidget(), last);
}

TEST_F(MenuBarPanelTest, PlacesItselfInsideTheScreen) {
    const QRect screen(0, 30, 1280, 700);
    const QSize size(250, 400);
    const std::tuple<QRect, QRect, const char*> cases[] = {
        {{600, 4, 24, 24}, {486, 30, 250, 400}, "below a bar on top"},
        {{600, 734, 24, 24}, {486, 330, 250, 400}, "above a bar at the bottom"},
        {{1270, 100, 24, 24}, {1030, 124, 250, 400}, "at the right edge"},
        {{-20, 100, 24, 24}, {0, 124, 250, 400}, "at the left edge"},
        {{-20, 690, 24, 24}, {0, 290, 250, 400}, "in a corner"},
        {{640, 380, 1, 1}, {515, 30, 250, 400}, "where there is room on neither side"},
    };
    for (const auto& [anchor, expected, what] : cases) {
        EXPECT_EQ(MenuBarPanel::placeBeside(anchor, size, screen), expected) << what;
    }
}

TEST_F(MenuBarPanelTest, ClosesWhenSomethingElseIsWanted) {
    QWidget other;
    const QRect anchor(300, 0, 24, 24);
    using Button = PointerPresses::Button;
    struct Case {
        const char* what;
        std::function<void()> happens;
        bool stays;
    };
    const auto pressAt = [&](QPoint place, Button button) {
        QCursor::setPos(place);
        desktop().pointerPresses.press(button);
    };
    const Case cases[] = {
        {"a press inside", [&] { pressAt(m_panel->geometry().center(), Button::primary); }, true},
        {"a press on the icon, which toggles",
         [&] {
             pressAt({310, 10}, Button::primary);
         },
         true},
        {"its other button",
         [&] {
             pressAt({310, 10}, Button::other);
         },
         false},
        {"a press elsewhere",
         [&] {
             pressAt({790, 590}, Button::primary);
         },
         false},
        {"another window",
         [&] {
             other.show();
             other.activateWindow();
         },
         false},
        {"the icon", [&] { extra().togglePanel(anchor); }, false},
    };
    for (const Case& each : cases) {
        if (!isOpen()) openPanel(anchor);
        each.happens();
        EXPECT_TRUE(QTest::qWaitFor([&] { return isOpen() == each.stays; })) << each.what;
    }
}

TEST_F(MenuBarPanelTest, AsksForTheKeyboardOnceMore) {
    QWidget window;
    window.show();
    extra().togglePanel({300, 0, 24, 24});
    findPanel();
    ASSERT_TRUE(QTest::qWaitForWindowActive(m_panel));
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    EXPECT_TRUE(isOpen()) << "closed by the late answer to what was asked before";
    advance(static_cast<int>(MenuBarPanel::keyboardDelay.count()));
    EXPECT_TRUE(QTest::qWaitForWindowActive(m_panel));
    window.activateWindow();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !isOpen(); }));
}

TEST_F(MenuBarPanelTest, TheIconComesInALaterTurnAndOffersItsMenu) {
    desktop().trayIcon.setHasTray(true);
    extra();
    EXPECT_FALSE(desktop().trayIcon.isInTray().value());
    settle();
    EXPECT_TRUE(extra().isInTray().value());
    int opened = 0;
    state().setOpenWindowAction([&](QLatin1StringView) { ++opened; });
    QStringList offered;
    for (const TrayIcon::MenuItem& item : desktop().trayIcon.actions().menu) {
        offered << item.title;
        item.perform();
    }
    EXPECT_EQ(offered, (QStringList{u"Show Dashboard"_s, u"Quit Veyla"_s}));
    EXPECT_EQ(opened, 1);
    EXPECT_EQ(m_calls, QStringList{u"quit"_s});
    desktop().trayIcon.actions().onActivate({});
    findPanel();
    EXPECT_TRUE(isOpen());
}
