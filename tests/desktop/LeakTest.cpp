#include "desktop/LeakTest.h"

#include "support/desktop/Wait.h"

#include <QDBusMessage>
#include <QStandardPaths>
#include <algorithm>
#include <cstdio>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

const ManagedDesktop allDesktops[] = {
    {"none"},
    {"openbox", {u"openbox"_s}},
    {"xfwm4", {u"xfwm4"_s, u"--compositor=off"_s}},
    {"i3", {u"i3"_s, u"-c"_s, u"/dev/null"_s}},
    {"picom", {u"openbox"_s}, false, true},
    {"xfwm4-compositing", {u"xfwm4"_s, u"--compositor=on"_s}, true},
    {"mutter", {u"mutter"_s, u"--x11"_s}, true},
    {"kwin", {u"kwin_x11"_s}, true},
};

bool isInstalled(const ManagedDesktop& desktop) {
    return desktop.manager.isEmpty() ||
           !QStandardPaths::findExecutable(desktop.manager.first()).isEmpty();
}

DesktopSession::Options optionsOf(const ManagedDesktop& desktop, QSize screenSize) {
    // The test is skipped without it.
    if (!isInstalled(desktop)) return {};
    return {.server = {.screenSize = screenSize},
            .windowManager = desktop.manager,
            .hasCompositor = desktop.hasCompositor};
}

// Read before the tests' environment takes the place of the outer one. Even, because many scenarios
// go there in one round and back in the next.
const int rounds = [] {
    const int given = qEnvironmentVariableIntValue("VEYLA_LEAK_ROUNDS");
    return std::max(2, given + given % 2);
}();

}  // namespace

std::vector<ManagedDesktop> chosenDesktops() {
    const QString names =
        qEnvironmentVariable("VEYLA_LEAK_MANAGERS", u"openbox,picom,mutter,kwin"_s);
    std::vector<ManagedDesktop> chosen;
    for (const QString& name : names.split(u',')) {
        const auto found =
            std::find_if(std::begin(allDesktops), std::end(allDesktops),
                         [&](const auto& each) { return each.name == name.toStdString(); });
        if (found == std::end(allDesktops))
            std::fprintf(stderr, "no such desktop: %s\n", name.toUtf8().constData());
        else
            chosen.push_back(*found);
    }
    return chosen;
}

LeakTest::LeakTest(QSize screenSize)
    : VeylaSession(optionsOf(GetParam(), screenSize)), m_screenSize(screenSize) {}

void LeakTest::SetUp() {
    if (!isInstalled(GetParam()))
        GTEST_SKIP() << GetParam().manager.first().toStdString() << " is not installed";
    requireSoon("the manager composites", [&] {
        return !GetParam().isCompositing || probe.selectionOwner(u"_NET_WM_CM_S0"_s) != XCB_NONE;
    });
    // A whole screen would make compositors step aside.

    neighbour.open({.frame = QRect(QPoint(0, 0), m_screenSize).adjusted(10, 10, -10, -10),
                    .color = QColor(LeakMeter::secretColor),
                    .isOverrideRedirect = true,
                    .title = u"Secret"_s});
    addPreset(u"one"_s, {around({400, 300})});
    workspace.masks = workspace.presets.first().masks;
}

void LeakTest::TearDown() {
    m_meter.reset();
    if (!process) return;
    EXPECT_EQ(command({u"quit"_s}), 0);
    EXPECT_EQ(process->waitForExit(defaultWait), 0);
    EXPECT_TRUE(waitUntil([&] { return maskWindowCount() == 0; })) << "windows are left";
    const QByteArray log = process->standardError();
    EXPECT_LE(log.count('\n'), m_mostLogLines) << log.constData();
}

Rect LeakTest::around(Size size, double dx, double dy) const {
    return {center().x() + dx - size.width / 2, center().y() + dy - size.height / 2, size.width,
            size.height};
}

void LeakTest::addPreset(const QString& name, const QList<Rect>& frames) {
    const QList<ScreenMask> former = std::exchange(workspace.masks, {});
    for (const Rect& frame : frames)
        addMask(frame, Qt::black);
    MaskPreset preset;
    preset.id = QUuid::createUuid();
    preset.name = name;
    preset.trigger = u"Manual"_s;
    preset.masks = std::exchange(workspace.masks, former);
    workspace.presets.append(preset);
}

void LeakTest::startMeasuring() {
    start();
    awaitAnswers();
    m_meter = std::make_unique<LeakMeter>(
        desktop.displayName(), QList<QPoint>{center() - QPoint(40, 20), center() + QPoint(40, 40)});
}

void LeakTest::awaitAnswers() {
    if (!m_bus)
        m_bus = QDBusConnection::connectToBus(desktop.bus().address(), desktop.home().path());
    requireSoon("the program answers", [&] { return command({u"status"_s}) == 0; });
}

int LeakTest::command(const QStringList& arguments) {
    QDBusMessage call = QDBusMessage::createMethodCall(u"app.veyla.Veyla"_s, u"/app/veyla/Veyla"_s,
                                                       u"app.veyla.Veyla"_s, u"perform"_s);
    call << arguments;
    const QDBusMessage answer = m_bus->call(call, QDBus::Block, int(defaultWait.count()));
    return answer.type() == QDBusMessage::ReplyMessage ? answer.arguments().value(0).toInt() : -1;
}

testing::AssertionResult LeakTest::provesMeter() {
    if (command({u"hide-masks"_s}) != 0) return testing::AssertionFailure() << "no answer";
    if (!waitUntil([&] { return m_meter->seesSecretEverywhere(); }))
        return testing::AssertionFailure()
               << "the meter sees no secret, or a mask cannot be hidden";
    return command({u"show-masks"_s}) == 0 ? settles() : testing::AssertionFailure();
}

testing::AssertionResult LeakTest::settles() {
    const auto begin = std::chrono::steady_clock::now();
    if (waitUntil([&] {
            return std::chrono::steady_clock::now() - begin >= quietTime &&
                   m_meter->cleanTime() >= quietTime;
        }))
        return testing::AssertionSuccess();
    const LeakMeter::Tally tally = m_meter->tally();
    return testing::AssertionFailure()
           << "the masks do not come back: leaking "
           << QColor(tally.leaks.strongest).name().toStdString() << ", covered by "
           << QColor(tally.covers.strongest).name().toStdString();
}

void LeakTest::measure(const LeakScenario& scenario) {
    SCOPED_TRACE(scenario.name);
    // What one scenario breaks must not be held against the next.
    if (std::exchange(m_isBroken, false)) {
        start();
        awaitAnswers();
    }
    if (!scenario.preset.isEmpty()) apply(scenario.preset);
    const bool hadFailure = HasFailure();
    auto isWell = settles();
    if (isWell) isWell = provesMeter();
    m_meter->reset();
    for (int round = 0; isWell && round < rounds; ++round) {
        scenario.act(round);
        isWell = settles();
    }
    const LeakMeter::Tally tally = m_meter->tally();
    // Nothing is left that no command hides.
    if (isWell && scenario.kind == Kind::unpreventable) isWell = provesMeter();
    EXPECT_TRUE(isWell) << process->standardError().constData();
    m_isBroken = !isWell;
    static const char* const kinds[] = {"own", "newcomer", "unpreventable"};
    std::printf("leak|%s|%s|%s|%d|%d|%d|%.2f|%s|%d|%.2f|%s\n", GetParam().name.c_str(),
                scenario.name, kinds[static_cast<int>(scenario.kind)], rounds, tally.readings,
                tally.leaks.stretches, tally.leaks.longest.count(),
                QColor(tally.leaks.strongest).name().toLatin1().constData(), tally.covers.stretches,
                tally.covers.longest.count(),
                !isWell                       ? "never"
                : !hadFailure && HasFailure() ? "failed"
                                              : "back");
    std::fflush(stdout);
    if (scenario.kind != Kind::unpreventable) {
        EXPECT_EQ(tally.leaks.stretches, 0) << QColor(tally.leaks.strongest).name().toStdString()
                                            << " for " << tally.leaks.longest.count() << " ms";
    }
    if (scenario.kind == Kind::ownOperation) {
        EXPECT_EQ(tally.covers.stretches, 0);
    }
}

xcb_window_t LeakTest::topMask() const {
    const auto masks = probe.windowsWith(u"_VEYLA_MASK_ID"_s, probe.root());
    const auto top = std::find_if(masks.rbegin(), masks.rend(),
                                  [](const XWindow& window) { return window.isMapped; });
    return top == masks.rend() ? xcb_window_t{XCB_NONE} : top->id;
}

NeighbourClient::WindowOptions LeakTest::newcomer(bool isOverrideRedirect) const {
    return {.frame = QRect(center() - QPoint(150, 120), QSize(300, 240)),
            .color = QColor(LeakMeter::newcomerColor),
            .isOverrideRedirect = isOverrideRedirect,
            .title = u"Newcomer"_s};
}
