#include "desktop/VeylaTest.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QFileInfo>

using namespace Qt::Literals::StringLiterals;

namespace {

QString identifierOf(const QUuid& mask) {
    return u"overlay-mask-"_s + mask.toString(QUuid::WithoutBraces).toUpper();
}

class AccessibilityTest : public VeylaTest {
protected:
    explicit AccessibilityTest(bool hasBus = true) : VeylaTest({.hasAccessibilityBus = hasBus}) {}

    QStringList tree() const {
        const auto client = assistiveClient({u"tree"_s});
        if (client->waitForExit(defaultWait) != 0)
            return {QString::fromUtf8(client->standardError())};
        QStringList lines = linesOf(*client);
        lines.sort();
        return lines;
    }

    testing::AssertionResult treeBecomes(QStringList expected) const {
        expected.sort();
        return comesToBe([&] { return tree(); }, expected);
    }

    void watch() { m_watcher = assistiveWatcher(u"watch"_s); }
    QStringList events() const { return linesOf(*m_watcher); }

    /// Whether all of these are told sooner or later.
    testing::AssertionResult hears(const QStringList& expected) const {
        const auto missing = [&] {
            QStringList left = expected;
            left.removeIf([this](const QString& event) { return events().contains(event); });
            return left;
        };
        return comesToBe(missing, QStringList());
    }

    QStringList announcements() const { return events().filter(u"object:announcement"_s); }

    void create() { EXPECT_EQ(run({u"create-mask"_s}).status, 0); }

private:
    std::unique_ptr<ChildProcess> m_watcher;
};

class LateAccessibilityTest : public AccessibilityTest {
protected:
    LateAccessibilityTest() : AccessibilityTest(false) {}
};

TEST_F(AccessibilityTest, MasksAreElementsThatFollowTheirMasks) {
    const QString first = identifierOf(addMask({100, 500, 300, 200}));
    const QUuid frosted = addMask({600, 100, 400, 300});
    workspace.masks[0].opacity = 0.85;
    workspace.masks[1].style = ScreenMask::Style::frosted;
    workspace.masks[1].opacity = 0.29;
    ScreenMask hidden = workspace.masks[0];
    hidden.id = QUuid::createUuid();
    hidden.name = u"Täbchen"_s;
    hidden.style = ScreenMask::Style::softTint;
    hidden.isVisible = false;
    workspace.masks.append(hidden);
    workspace.selectedMaskID = workspace.masks[0].id;
    start();

    const QString firstLine =
        first +
        u" | Overlay mask, Mask 1, Blackout style, 85% opacity, selected, editing enabled | "
        u"panel | selectable selected showing visible | 300x200+100+100"_s;
    const QString hiddenLine =
        identifierOf(hidden.id) +
        u" | Overlay mask, Täbchen, Soft Tint style, 85% opacity, editing enabled | panel | "
        u"selectable | 300x200+100+100"_s;
    const QString frostedStart =
        identifierOf(frosted) + u" | Overlay mask, Mask 2, Frosted style, 28% opacity, "_s;
    ASSERT_TRUE(treeBecomes({firstLine, hiddenLine,
                             frostedStart + u"editing enabled | panel | selectable showing visible "
                                            u"| 400x300+600+400"_s}));

    watch();
    const QPoint middle = middleOf(frosted);
    input.drag(middle, middle + QPoint(-90, -70));
    EXPECT_TRUE(hears({u"object:state-changed:selected 0 "_s + first,
                       u"object:state-changed:selected 1 "_s + identifierOf(frosted),
                       u"object:property-change:accessible-name 0 "_s + identifierOf(frosted)}));
    EXPECT_TRUE(
        treeBecomes({QString(firstLine).remove(u", selected"_s).remove(u" selected"_s), hiddenLine,
                     frostedStart + u"selected, editing enabled | panel | selectable "
                                    u"selected showing visible | 400x300+510+330"_s}));
}

TEST_F(AccessibilityTest, ChangesAreToldAndAnnouncedOnce) {
    const QString old = identifierOf(addMask({100, 500, 300, 200}));
    ScreenMask mask = workspace.masks[0];
    mask.name = u"Chat"_s;
    workspace.presets.append({.id = QUuid::createUuid(),
                              .name = u"Meeting"_s,
                              .trigger = {},
                              .masks = {mask},
                              .targetAppName = {},
                              .targetBundleIdentifier = {}});
    start();
    watch();
    create();
    run({u"toggle-editing"_s});
    EXPECT_TRUE(hears({u"object:property-change:accessible-name 0 "_s + old}));
    run({u"hide-masks"_s});
    EXPECT_TRUE(hears({u"object:state-changed:showing 0 "_s + old}));
    EXPECT_EQ(run({u"apply-preset"_s, u"Meeting"_s}).status, 0);
    EXPECT_TRUE(hears({u"object:children-changed:remove -1 veyla"_s}));

    const QStringList lines = tree();
    ASSERT_EQ(lines.size(), 1) << lines.join(u'\n').toStdString();
    EXPECT_FALSE(lines[0].startsWith(old));
    EXPECT_TRUE(lines[0].contains(
        u"Overlay mask, Chat, Blackout style, 100% opacity, selected, editing locked"_s));

    // Assertive, so that a screen reader speaks them at once. The last one comes after all others.
    run({u"toggle-editing"_s});
    EXPECT_TRUE(hears({u"object:announcement 2 Editing unlocked"_s}));
    EXPECT_EQ(announcements(), (QStringList{u"object:announcement 2 Created Mask 2"_s,
                                            u"object:announcement 2 Editing locked"_s,
                                            u"object:announcement 2 All masks hidden"_s,
                                            u"object:announcement 2 Editing unlocked"_s}));
}

TEST_F(AccessibilityTest, SurvivesCallsThatMakeNoSense) {
    const QString mask = identifierOf(addMask({100, 500, 300, 200}));
    start();
    ASSERT_EQ(tree().size(), 1);
    QDBusConnection bus = QDBusConnection::connectToBus(desktop.accessibilityBus()->address(),
                                                        u"accessibility-test"_s);
    QString veyla;
    for (const QString& name : bus.interface()->registeredServiceNames().value())
        if (bus.interface()->servicePid(name) == uint(process->pid())) veyla = name;
    ASSERT_FALSE(veyla.isEmpty());

    const auto properties = u"org.freedesktop.DBus.Properties"_s;
    const auto accessible = u"org.a11y.atspi.Accessible"_s;
    const struct {
        const char* path;
        QString interface;
        QString member;
        QVariantList arguments;
        bool isAnswered;
    } calls[] = {
        {"root", properties, u"Get"_s, {accessible, u"Name"_s}, true},
        {"root", properties, u"Get"_s, {accessible, u"AccessibleId"_s}, true},
        {"root", properties, u"GetAll"_s, {accessible}, false},
        {"root", properties, u"Get"_s, {accessible}, false},
        {"root", properties, u"Get"_s, {}, false},
        {"root", properties, u"Set"_s, {accessible, u"Name"_s}, false},
        {"77", properties, u"Get"_s, {accessible, u"AccessibleId"_s}, false},
        {"77", accessible, u"GetRole"_s, {}, false},
        {"root", u"org.freedesktop.DBus.Introspectable"_s, u"Introspect"_s, {}, true},
    };
    for (const auto& call : calls) {
        auto message = QDBusMessage::createMethodCall(
            veyla, u"/org/a11y/atspi/accessible/"_s + QLatin1StringView(call.path), call.interface,
            call.member);
        message.setArguments(call.arguments);
        const QDBusMessage answer = bus.call(message, QDBus::Block, defaultWait.count());
        EXPECT_EQ(answer.type() == QDBusMessage::ReplyMessage, call.isAnswered)
            << call.path << " " << call.member.toStdString() << ": "
            << answer.errorMessage().toStdString();
    }
    QDBusConnection::disconnectFromBus(bus.name());
    EXPECT_TRUE(process->isRunning());
}

TEST_F(LateAccessibilityTest, ABusThatComesLateIsJoined) {
    const QString early = identifierOf(addMask({100, 500, 300, 200}));
    start();
    create();
    const AccessibilityBus bus(desktop.environment());
    EXPECT_TRUE(waitUntil([&] { return tree().size() == 2; }));
    watch();
    EXPECT_FALSE(tree().filter(early).isEmpty());
    create();
    EXPECT_TRUE(hears({u"object:announcement 2 Created Mask 3"_s}));
    EXPECT_EQ(announcements().size(), 1);
}

TEST_F(LateAccessibilityTest, WithoutASessionBusNoneIsStarted) {
    addMask({100, 500, 300, 200});
    environment.remove(u"DBUS_SESSION_BUS_ADDRESS"_s);
    environment.insert(u"XDG_RUNTIME_DIR"_s, desktop.home().path());
    start();
    process->sendSignal(SIGTERM);
    EXPECT_EQ(process->waitForExit(defaultWait), 0);
    // Where a bus that libraries start for themselves leaves its address.
    EXPECT_FALSE(QFileInfo::exists(desktop.home().path() + u"/.dbus"_s));
    m_expectedLog =
        "Veyla found no session bus and takes no commands from other processes: "
        "Not connected to D-Bus server\n";
}

}  // namespace
