#include "desktop/VeylaTest.h"
#include "support/desktop/StatusNotifierHost.h"
#include "support/desktop/TrayPanel.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QJsonArray>

using namespace Qt::Literals::StringLiterals;

namespace {

// Keysyms.
constexpr std::uint32_t control = 0xffe3, alt = 0xffe9, super = 0xffeb, enter = 0xff0d,
                        escape = 0xff1b, down = 0xff54, end = 0xff57, space = 0x20;

constexpr QRect screenRect(0, 0, 1280, 800);

class TrayTest : public VeylaTest {
protected:
    TrayTest() {
        workspace.hasCompletedOnboarding = true;
        workspace.settings.showHelpOnLaunch = false;
    }

    void TearDown() override {
        VeylaTest::TearDown();
        if (process) {
            EXPECT_EQ(process->standardError().constData(), QByteArray());
        }
    }

    std::unique_ptr<TrayPanel> startTray(const QString& position = u"bottom center horizontal"_s,
                                         const QString& color = u"#202020"_s) {
        return std::make_unique<TrayPanel>(desktop, position, color);
    }

    QRect onRoot(xcb_window_t window) const {
        const auto size = probe.geometry(window);
        const XcbPtr<xcb_translate_coordinates_reply_t> place(xcb_translate_coordinates_reply(
            probe.connection(),
            xcb_translate_coordinates(probe.connection(), window, probe.root(), 0, 0), nullptr));
        return size && place ? QRect({place->dst_x, place->dst_y}, size->size()) : QRect();
    }
    /// Null while it is in no tray.
    QRect icon() const {
        constexpr int largest = 32;
        // The toolkit gives the property to every window.
        for (const XWindow& window : probe.windowsWith(u"_XEMBED_INFO"_s))
            if (neighbour.isViewable(window.id) && window.frame.width() <= largest)
                return onRoot(window.id);
        return {};
    }
    /// Where the panel is; null while it is closed.
    QRect panel() const {
        for (const XWindow& window : probe.rootChildren())
            if (window.isMapped && probe.textOf(window.id, u"_NET_WM_NAME"_s)
                                       .value_or(QString())
                                       .startsWith(u"Veyla Panel"))
                return window.frame;
        return {};
    }
    bool isMenuOpen() const {
        const auto windows = probe.rootChildren();
        return std::any_of(windows.begin(), windows.end(), [&](const XWindow& window) {
            return window.isMapped && window.isOverrideRedirect && window.frame.width() > 100 &&
                   window.frame != panel() && !probe.textOf(window.id, u"_VEYLA_MASK_ID"_s);
        });
    }
    /// A menu takes the keyboard a moment after it is there.
    bool isKeyboardGrabbed() const {
        const XcbPtr<xcb_grab_keyboard_reply_t> reply(xcb_grab_keyboard_reply(
            probe.connection(),
            xcb_grab_keyboard(probe.connection(), 0, probe.root(), XCB_CURRENT_TIME,
                              XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
            nullptr));
        xcb_ungrab_keyboard(probe.connection(), XCB_CURRENT_TIME);
        xcb_flush(probe.connection());
        return reply && reply->status == XCB_GRAB_STATUS_ALREADY_GRABBED;
    }
    testing::AssertionResult isPanelOpen(bool isOpen = true) {
        if (waitUntil([&] { return panel().isNull() != isOpen; }))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << "the panel is " << (isOpen ? "closed" : "open");
    }
    void clickIcon() {
        requireSoon("the icon is in the tray", [&] { return !icon().isNull(); });
        input.click(icon().center());
    }
    bool hasKeyboard(const QString& title) const {
        const XcbPtr<xcb_get_input_focus_reply_t> focus(xcb_get_input_focus_reply(
            probe.connection(), xcb_get_input_focus(probe.connection()), nullptr));
        return focus &&
               probe.textOf(focus->focus, u"_NET_WM_NAME"_s).value_or(QString()).startsWith(title);
    }
    void openPanel(const std::function<void()>& ask) {
        ask();
        requireSoon("the panel is open and has the keyboard",
                    [&] { return !panel().isNull() && hasKeyboard(u"Veyla Panel"_s); });
    }
    void openPanel() {
        openPanel([this] { clickIcon(); });
    }
    void key(std::uint32_t keysym) { input.typeKeysyms({keysym}); }
    /// The panel's rows down to that one, then Enter.
    void chooseRow(int number) {
        for (int step = 0; step < number; ++step)
            key(down);
        key(enter);
    }
    bool isDashboardShown() { return status()[u"dashboardVisible"].toBool(); }
};

}  // namespace

TEST_F(TrayTest, AClickOpensThePanelBesideTheIconInsideTheScreen) {
    start();
    EXPECT_TRUE(icon().isNull());
    struct Case {
        QString position;
        QString color;
        /// Of the screen, without the tray's panel.
        QRect available;
    };
    // Each ends the tray before it, too.
    const Case cases[] = {
        {u"bottom right horizontal"_s, u"#202020"_s, {0, 0, 1280, 768}},
        {u"top left horizontal"_s, u"#e8e8e8"_s, {0, 32, 1280, 768}},
        {u"center left vertical"_s, u"#e8e8e8"_s, {32, 0, 1248, 800}},
        {u"center right vertical"_s, u"#202020"_s, {0, 0, 1248, 800}},
    };
    for (const Case& each : cases) {
        const auto tray = startTray(each.position, each.color);
        openPanel();
        EXPECT_TRUE(each.available.contains(panel())) << testing::PrintToString(panel());
        EXPECT_TRUE(panel().adjusted(-12, -12, 12, 12).intersects(icon()))
            << testing::PrintToString(panel()) << " beside " << testing::PrintToString(icon());
        const bool isOnLight = QColor(each.color).lightness() > 128;
        EXPECT_TRUE(waitUntil([&] {
            // Above its middle the mask has no hole.
            const QColor color = pixel(icon().center() - QPoint(3, 4));
            return (color.lightness() < 128) == isOnLight;
        })) << "the icon is not told from the panel "
            << each.color.toStdString();
        key(escape);
        EXPECT_TRUE(isPanelOpen(false));
    }
    EXPECT_TRUE(process->isRunning());
}

TEST_F(TrayTest, ThePanelClosesWhenSomethingElseIsWanted) {
    const QUuid mask = addMask({40, 600, 160, 90});
    const auto tray = startTray();
    start();
    const xcb_window_t other = neighbour.open({.frame = {300, 100, 300, 200}, .title = u"Other"_s});
    const std::pair<const char*, std::function<void()>> ways[] = {
        {"Escape", [&] { key(escape); }},
        {"the icon", [&] { input.click(icon().center()); }},
        {"its other button",
         [&] {
             input.click(icon().center(), 3);
             ASSERT_TRUE(waitUntil([&] { return isMenuOpen(); }));
             key(escape);
             ASSERT_TRUE(waitUntil([&] { return !isMenuOpen(); }));
         }},
        {"the desktop",
         [&] {
             input.click({700, 600});
         }},
        {"a mask", [&] { input.click(middleOf(mask)); }},
        {"a click on another window",
         [&] {
             input.click({400, 200});
         }},
        {"another window", [&] { neighbour.requestActivation(other); }},
    };
    for (const auto& [what, happens] : ways) {
        neighbour.requestActivation(other);
        ASSERT_TRUE(waitUntil([&] { return hasKeyboard(u"Other"_s); })) << what;
        openPanel();
        happens();
        EXPECT_TRUE(isPanelOpen(false)) << what;
        if (what == ways[0].first) {
            EXPECT_TRUE(waitUntil([&] { return hasKeyboard(u"Other"_s); }))
                << "the keyboard does not go back";
        }
    }
    // Nothing is taken away from others meanwhile.
    openPanel();
    input.typeKeysyms({control, alt, super, 'h'});
    EXPECT_TRUE(waitUntil([&] { return !status()[u"areMasksVisible"].toBool(true); }))
        << "a hot key does not work";
    neighbour.takeInput();
    input.click({400, 200});
    EXPECT_TRUE(waitUntil([&] { return !neighbour.takeInput().isEmpty(); }))
        << "the click that closes the panel is swallowed";
}

TEST_F(TrayTest, ItsRowsWorkAndStayAboveTheMasks) {
    // Where the panel is going to be.
    addMask({40, 40, 160, 90});
    const QUuid below = addMask({900, 40, 360, 700}, Qt::red);
    const auto tray = startTray(u"bottom right horizontal"_s);
    start();
    openPanel();
    const QPoint corner = panel().topLeft() + QPoint(4, 4);
    const auto isPanelOnTop = [&] { return pixel(corner) == QColor(0x11, 0x13, 0x1e); };
    EXPECT_TRUE(waitUntil(isPanelOnTop));
    // Nothing is selected, so the last row is that of the last mask.
    key(end);
    key(space);
    EXPECT_TRUE(waitUntil([&] {
        return status()[u"selectedMaskID"].toString() == uuidText(below);
    })) << "the row is not that of the mask";
    EXPECT_TRUE(waitUntil(isPanelOnTop)) << "the mask that came to the front covers the panel";
    EXPECT_FALSE(panel().isNull());
    key(escape);
    ASSERT_TRUE(isPanelOpen(false));
    openPanel();
    chooseRow(4);
    EXPECT_TRUE(isPanelOpen(false));
    EXPECT_TRUE(waitUntil([&] { return isDashboardShown(); }));
}

TEST_F(TrayTest, AHostOfItemsGetsOne) {
    start();
    {
        const StatusNotifierHost host(desktop.bus().address());
        ASSERT_TRUE(waitUntil([&] { return host.items().size() == 1; }));
        const std::pair<QString, QVariant> properties[] = {
            {u"Id"_s, u"app.veyla.Veyla"_s}, {u"Title"_s, u"Veyla"_s},
            {u"Status"_s, u"Active"_s},      {u"Category"_s, u"ApplicationStatus"_s},
            {u"ItemIsMenu"_s, false},
        };
        for (const auto& [name, value] : properties)
            EXPECT_EQ(host.itemProperty(name), value) << name.toStdString();
        const auto pixmaps = host.itemProperty(u"IconPixmap"_s).value<QDBusArgument>();
        EXPECT_EQ(pixmaps.currentSignature(), u"a(iiay)");

        host.callItem(u"Activate"_s, 900, 20);
        ASSERT_TRUE(isPanelOpen());
        EXPECT_TRUE(screenRect.contains(panel()) &&
                    panel().adjusted(-2, -2, 2, 2).contains(900, 20))
            << testing::PrintToString(panel());
        // The click on the host's icon reaches Veyla first as a press somewhere on the screen.
        input.click({902, 18});
        host.callItem(u"Activate"_s, 902, 18);
        EXPECT_TRUE(isPanelOpen(false));
        input.movePointer({300, 300});
        host.callItem(u"Activate"_s, 0, 0);
        ASSERT_TRUE(isPanelOpen());
        EXPECT_TRUE(panel().adjusted(-2, -2, 2, 2).contains(300, 300)) << "the pointer is there";
        ASSERT_TRUE(waitUntil([&] { return hasKeyboard(u"Veyla Panel"_s); }));
        key(escape);
        EXPECT_TRUE(isPanelOpen(false));
    }
    const StatusNotifierHost next(desktop.bus().address());
    ASSERT_TRUE(waitUntil([&] { return next.items().size() == 1; })) << "after a restart";
    const auto layout = next.callMenu(u"GetLayout"_s, {0, -1, QStringList()});
    EXPECT_EQ(layout.value(1).value<QDBusArgument>().currentSignature(), u"(ia{sv}av)");
    const auto label = [&](int id) {
        return next.callMenu(u"GetProperty"_s, {id, u"label"_s})
            .value(0)
            .value<QDBusVariant>()
            .variant()
            .toString();
    };
    const auto choose = [&](int id) {
        next.callMenu(u"Event"_s,
                      {id, u"clicked"_s, QVariant::fromValue(QDBusVariant(QString())), 0U});
    };
    EXPECT_EQ(label(1), u"Show Dashboard");
    choose(1);
    EXPECT_TRUE(waitUntil([&] { return isDashboardShown(); }));
    EXPECT_EQ(label(2), u"Quit Veyla");
    choose(2);
    EXPECT_EQ(process->waitForExit(defaultWait), 0);
}

TEST_F(TrayTest, TheIconIsInOneTrayWhicheverComesOrGoes) {
    const auto tray = startTray();
    auto host = std::make_unique<StatusNotifierHost>(desktop.bus().address(), false);
    start();
    const auto isEmbedded = [&] { return !icon().isNull(); };
    EXPECT_TRUE(waitUntil(isEmbedded)) << "nobody shows the items of the watcher";
    EXPECT_TRUE(host->items().isEmpty());
    host->setHasHost(true);
    EXPECT_TRUE(waitUntil([&] { return !isEmbedded() && host->items().size() == 1; }));
    host->setHasHost(false);
    EXPECT_TRUE(waitUntil([&] { return isEmbedded() && host->items().isEmpty(); }));
    host->setHasHost(true);
    EXPECT_TRUE(waitUntil([&] { return !isEmbedded() && host->items().size() == 1; }));
    host.reset();
    EXPECT_TRUE(waitUntil(isEmbedded));
    openPanel();
}

TEST_F(TrayTest, WithoutABusTheOlderTrayIsUsed) {
    environment.remove(u"DBUS_SESSION_BUS_ADDRESS"_s);
    environment.insert(u"XDG_RUNTIME_DIR"_s, desktop.home().path());
    const auto tray = startTray();
    start();
    openPanel();
    process->sendSignal(SIGTERM);
    EXPECT_EQ(process->waitForExit(defaultWait), 0);
    EXPECT_TRUE(process->standardError().startsWith("Veyla found no session bus"))
        << process->standardError().constData();
    process.reset();
}

TEST_F(TrayTest, WithoutATrayThereAreOtherWays) {
    workspace.settings.menuBarOnlyMode = true;
    workspace.settings.showDashboardOnLaunch = false;
    startArguments.clear();
    start();
    ASSERT_TRUE(waitUntil([&] { return isDashboardShown() && hasKeyboard(u"Veyla"_s); }))
        << "nothing of the program is to be seen";
    const auto chooseFirstOfFile = [&] {
        input.typeKeysyms({alt, 'f'});
        ASSERT_TRUE(waitUntil([&] { return isMenuOpen() && isKeyboardGrabbed(); }));
        key(enter);
    };
    openPanel(chooseFirstOfFile);
    EXPECT_TRUE(screenRect.contains(panel()));
    // The menu's own window may have the keyboard for a moment in between.
    EXPECT_TRUE(waitUntil([&] {
        key(escape);
        return panel().isNull();
    }));
    EXPECT_TRUE(waitUntil([&] { return hasKeyboard(u"Veyla"_s) && !hasKeyboard(u"Veyla P"_s); }));

    const auto tray = startTray();
    ASSERT_TRUE(waitUntil([&] { return !icon().isNull(); }));
    chooseFirstOfFile();
    EXPECT_TRUE(waitUntil([&] { return !isDashboardShown(); }))
        << "what comes first is not closing the window";
}
