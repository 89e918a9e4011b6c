#include "Platform/Qt/QtApplicationHost.h"
#include "Platform/X11/X11WindowManagement.h"
#include "support/desktop/NeighbourClient.h"
#include "support/desktop/Wait.h"

#include <QDialog>
#include <QLabel>
#include <QVBoxLayout>
#include <QWindow>
#include <gtest/gtest.h>
#include <memory>

using namespace Qt::Literals::StringLiterals;

namespace {

class ApplicationHostTest : public testing::Test {
protected:
    static std::unique_ptr<QWidget> makeWindow(const QString& title) {
        auto window = std::make_unique<QWidget>();
        window->setWindowTitle(title);
        (new QVBoxLayout(window.get()))->addWidget(new QLabel(title));
        return window;
    }

    bool isListed(const QWidget& window) {
        return !m_neighbour.hasState(static_cast<xcb_window_t>(window.winId()),
                                     u"_NET_WM_STATE_SKIP_TASKBAR"_s);
    }

    bool comesToFront(const QWidget& window) {
        return waitUntil([&] { return m_neighbour.activeWindow() == window.winId(); });
    }

    NeighbourClient m_neighbour;
    QString m_error;
    std::unique_ptr<XcbConnection> m_connection = XcbConnection::open(&m_error);
    X11WindowManagement m_windowManagement{*m_connection};
    QtApplicationHost m_host{m_windowManagement};
};

TEST_F(ApplicationHostTest, AnAccessoryHasNoEntryInTheTaskBar) {
    const auto shown = makeWindow(u"Shown"_s);
    shown->show();
    ASSERT_TRUE(comesToFront(*shown));
    EXPECT_TRUE(isListed(*shown));
    m_host.setActivationPolicy(ActivationPolicy::accessory);
    EXPECT_TRUE(waitUntil([&] { return !isListed(*shown); })) << "a window on screen";

    const auto later = makeWindow(u"Later"_s);
    later->show();
    ASSERT_TRUE(waitUntil([&] { return later->windowHandle()->isExposed(); }));
    EXPECT_FALSE(isListed(*later)) << "a window that is shown later";
    later->hide();
    // Some managers leave a note on a window that they no longer manage.
    const auto id = static_cast<xcb_window_t>(later->winId());
    const auto state = [&] { return m_neighbour.numbersOf(id, u"WM_STATE"_s); };
    ASSERT_TRUE(waitUntil([&] { return state().empty(); }));
    m_neighbour.setNumbers(id, u"WM_STATE"_s, u"WM_STATE"_s, {0, XCB_NONE});
    later->show();
    ASSERT_TRUE(waitUntil([&] { return state() == std::vector<uint32_t>{1, XCB_NONE}; }));
    EXPECT_FALSE(isListed(*later)) << "a window that is shown again";
    later->hide();
    shown->hide();
    m_host.setActivationPolicy(ActivationPolicy::regular);
    later->show();
    shown->show();
    EXPECT_TRUE(waitUntil([&] { return isListed(*later) && isListed(*shown); }));
}

TEST_F(ApplicationHostTest, AWindowComesToTheFrontFromBehindABusyProgram) {
    const auto window = makeWindow(u"Ours"_s);
    window->show();
    ASSERT_TRUE(comesToFront(*window));
    const auto other = m_neighbour.open({.title = u"Busy"_s});
    const auto isBehind = [&] {
        m_neighbour.requestActivation(other);
        return waitUntil([&] { return m_neighbour.activeWindow() == other; });
    };
    ASSERT_TRUE(isBehind());

    const auto windows = m_host.windows();
    ASSERT_EQ(windows.size(), 1U);
    windows.front()->makeKeyAndOrderFront();
    EXPECT_TRUE(comesToFront(*window));
    windows.front()->orderOut();
    EXPECT_FALSE(windows.front()->isVisible());
    ASSERT_TRUE(isBehind());
    windows.front()->makeKeyAndOrderFront();
    EXPECT_TRUE(comesToFront(*window)) << "from being hidden";
    window->showMinimized();
    const auto isInFront = [&] { return m_neighbour.activeWindow() == window->winId(); };
    EXPECT_TRUE(waitUntil([&] { return !windows.front()->isVisible() && !isInFront(); }));
    windows.front()->makeKeyAndOrderFront();
    EXPECT_TRUE(waitUntil([&] { return windows.front()->isVisible() && isInFront(); }))
        << "from being minimised";
}

TEST_F(ApplicationHostTest, WindowsKeepTheOrderInWhichTheyAppeared) {
    std::vector<std::unique_ptr<QWidget>> windows;
    QStringList shown;
    for (int i = 0; i < 8; ++i) {
        shown << QString::number(i);
        windows.push_back(makeWindow(shown.last()));
    }
    for (const auto& window : windows)
        window->show();
    QStringList told;
    for (const auto& each : m_host.windows())
        told << each->title();
    EXPECT_EQ(told, shown) << told.join(u' ').toStdString();
}

TEST_F(ApplicationHostTest, WindowsAreToldApartAndLetGo) {
    auto window = makeWindow(u"Veyla"_s);
    const QWidget empty;
    const QDialog dialog;
    const auto isPanel = [&](const QString& title) {
        for (const auto& each : m_host.windows())
            if (each->title() == title && each->hasContentView()) return each->isPanel();
        ADD_FAILURE() << title.toStdString();
        return false;
    };
    auto panel = makeWindow(u"Panel"_s);
    panel->setWindowFlag(Qt::Tool);
    EXPECT_FALSE(isPanel(u"Veyla"_s));
    EXPECT_TRUE(isPanel(u"Panel"_s));
    EXPECT_EQ(m_host.windows().size(), 4U);
    window.reset();
    panel.reset();
    EXPECT_EQ(m_host.windows().size(), 2U);
}

}  // namespace
