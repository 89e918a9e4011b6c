#pragma once

#include "desktop/VeylaSession.h"
#include "support/desktop/LeakMeter.h"

#include <QDBusConnection>
#include <gtest/gtest.h>

/// Who manages the windows of a desktop, and who composites it.
struct ManagedDesktop {
    std::string name;
    QStringList manager{};
    /// Whether the manager composites, or a compositor beside it.
    bool isCompositing = false;
    bool hasCompositor = false;

    friend void PrintTo(const ManagedDesktop& each, std::ostream* out) { *out << each.name; }
};

/// Those that VEYLA_LEAK_MANAGERS names, separated by commas; a few without it.
std::vector<ManagedDesktop> chosenDesktops();

/// Something that happens to a desktop with a secret on it.
struct LeakScenario {
    enum class Kind {
        /// What Veyla does, and what is not to be seen by it.
        ownOperation,
        /// What another program does. It may show, but nothing below the masks.
        newcomer,
        /// What no client can prevent from showing. The mask must come back.
        unpreventable,
    };

    const char* name;
    Kind kind;
    /// Called for each round, with its number.
    std::function<void(int)> act;
    /// The preset that is loaded before.
    QString preset = QStringLiteral("one");
};

/// Measures what of a secret shows while things happen to the masks above it. The secret is a
/// window over nearly the whole screen; the points that are read are near the centre of the screen,
/// away from the edges, handles, badges and guides of every mask that the layouts put there.
///
/// A line for each scenario goes to the standard output: the desktop, the scenario, its kind, the
/// rounds, the readings, how often the secret showed, the longest time of it in milliseconds, its
/// strongest colour, how often something covered the masks, the longest time of that, and whether
/// the masks were "back" at the end or "never", or something else "failed".
class LeakTest : public testing::TestWithParam<ManagedDesktop>, protected VeylaSession {
protected:
    using Kind = LeakScenario::Kind;

    explicit LeakTest(QSize screenSize = {1280, 800});
    void SetUp() override;
    void TearDown() override;

    /// A frame of that size, its centre off that of the screen.
    Rect around(Size size, double dx = 0, double dy = 0) const;
    QPoint center() const { return {m_screenSize.width() / 2, m_screenSize.height() / 2}; }
    /// Opaque black masks.
    void addPreset(const QString& name, const QList<Rect>& frames);

    /// Starts the program, and the meter once it answers.
    void startMeasuring();
    void awaitAnswers();
    /// Lets the running program perform a command, without starting a process for it.
    int command(const QStringList& arguments);
    void perform(const QString& text) { EXPECT_EQ(command(text.split(u' ')), 0); }
    // Longer than the slowest compositor takes to show a new window.
    static constexpr LeakMeter::Duration quietTime{150};

    void apply(const QString& preset) {
        EXPECT_EQ(command({QStringLiteral("apply-preset"), preset}), 0);
    }

    /// Hides the masks, which the meter must see, and shows them again.
    testing::AssertionResult provesMeter();
    /// Whether every point is black within the bounded wait, and remains so for as long as any
    /// compositor takes to show what was asked.
    testing::AssertionResult settles();
    void measure(const LeakScenario& scenario);

    xcb_window_t topMask() const;
    /// Something green over the points.
    NeighbourClient::WindowOptions newcomer(bool isOverrideRedirect = true) const;

    std::unique_ptr<LeakMeter> m_meter;
    /// How many lines the program may write.
    int m_mostLogLines = 0;

private:
    QSize m_screenSize;
    bool m_isBroken = false;
    std::optional<QDBusConnection> m_bus;
};
