#include "desktop/LeakTest.h"
#include "support/desktop/Wait.h"

#include <QCoreApplication>
#include <csignal>

using namespace Qt::Literals::StringLiterals;

namespace {

/// The program itself.
class Leaks : public LeakTest {
protected:
    using LeakTest::LeakTest;

    void SetUp() override {
        LeakTest::SetUp();
        if (IsSkipped()) return;
        addPreset(u"other"_s, {around({700, 500}, -40, 30)});
        addPreset(u"three"_s, {around({600, 400}), around({500, 300}, 80), around({500, 500})});
        QList<Rect> twenty;
        for (int i = 0; i < 20; ++i)
            twenty.append(around({800, 600}, 6 * i - 60, 4 * i - 40));
        addPreset(u"twenty"_s, twenty);
        addPreset(u"whole"_s, {around({2.0 * center().x(), 2.0 * center().y()})});
    }

    /// Goes from the preset "one" to another and back.
    LeakScenario between(const char* name, const QString& other) {
        return {name, Kind::ownOperation,
                [this, other](int round) { apply(round % 2 == 0 ? other : u"one"_s); }};
    }
};

class LeaksOnALargeScreen : public Leaks {
protected:
    LeaksOnALargeScreen() : Leaks(QSize(3840, 2160)) {}
};

/// Whatever the application state can do.
class LeaksOfOperations : public LeakTest {
protected:
    void SetUp() override {
        LeakTest::SetUp();
        if (IsSkipped()) return;
        programPath = QCoreApplication::applicationFilePath();
        startArguments = QStringList{u"--operate-masks"_s};
        workspace.groups.append({QUuid::createUuid(), u"Others"_s, true, true, false});
        workspace.masks.clear();
        // A translucent one below, an opaque one, and one aside.
        addMask(around({600, 400}), Qt::black);
        workspace.masks.last().opacity = 0.5;
        workspace.masks.last().groupID = workspace.groups.first().id;
        addMask(around({400, 300}), Qt::black);
        addMask(around({400, 300}, 300, 60), Qt::black);
        workspace.masks.last().groupID = workspace.groups.first().id;
        startMeasuring();
    }

    void operate(const QString& text) { EXPECT_EQ(command(text.split(u' ')), 0); }
    /// Performs operations by turns.
    void measureTurns(const char* name, const QStringList& operations) {
        measure({name, Kind::ownOperation,
                 [&](int round) { operate(operations[round % operations.size()]); }, QString()});
    }
};

}  // namespace

TEST_P(Leaks, WhilePresetsAreLoaded) {
    startMeasuring();
    for (const LeakScenario& scenario :
         {between("preset, same layout", u"one"_s), between("preset, other layout", u"other"_s),
          between("preset, 3 masks", u"three"_s), between("preset, 20 masks", u"twenty"_s),
          between("preset, whole screen", u"whole"_s)})
        measure(scenario);
}

TEST_P(LeaksOnALargeScreen, WhilePresetsAreLoaded) {
    startMeasuring();
    for (const LeakScenario& scenario : {between("preset, 20 masks, 3840x2160", u"twenty"_s),
                                         between("preset, whole screen, 3840x2160", u"whole"_s)})
        measure(scenario);
}

TEST_P(Leaks, WhileMasksAreHandled) {
    startMeasuring();
    const auto dragBy = [this](QPoint from, QPoint by) {
        return [this, from, by](int) {
            input.drag(from, from + by, 40);
            input.drag(from + by, from, 40);
        };
    };
    // At this point of the preset "other", native pixels.
    const QRect other(center() - QPoint(40 + 350, 30 + 250), QSize(700, 500));
    for (const LeakScenario& scenario : {
             LeakScenario{"dragged", Kind::ownOperation,
                          dragBy(other.center() - QPoint(90, 60), {61, 37}), u"other"_s},
             LeakScenario{"resized", Kind::ownOperation,
                          dragBy(other.bottomRight() - QPoint(5, 5), {-60, -40}), u"other"_s},
             LeakScenario{"clicked", Kind::ownOperation,
                          [this](int) { input.click(center() + QPoint(3, 90)); }, u"three"_s},
             LeakScenario{"locked and unlocked", Kind::ownOperation,
                          [this](int) { EXPECT_EQ(command({u"toggle-editing"_s}), 0); }},
             LeakScenario{"another created", Kind::ownOperation,
                          [this](int) {
                              input.movePointer({60, 60});
                              EXPECT_EQ(command({u"create-mask"_s}), 0);
                          }},
         })
        measure(scenario);
}

TEST_P(LeaksOfOperations, NothingOfTheSecretShows) {
    measureTurns("lower translucent one selected", {u"select 0"_s, u"select 1"_s});
    measureTurns("another restyled",
                 {u"style 0 frosted"_s, u"style 0 softTint"_s, u"style 0 blackout"_s});
    measureTurns("another's opacity", {u"opacity 0 0.3"_s, u"opacity 0 0.7"_s});
    measureTurns("own colour", {u"color 1 #000500"_s, u"color 1 #000000"_s});
    measureTurns("another hidden and shown", {u"visible 0 0"_s, u"visible 0 1"_s});
    measureTurns("group hidden and shown", {u"group-visible 0"_s});
    operate(u"select 1"_s);
    measureTurns("moved by steps", {u"nudge 10"_s, u"nudge -10"_s});
    measureTurns("resized by steps", {u"resize 10"_s, u"resize -10"_s});
    measureTurns("duplicated and deleted", {u"duplicate"_s, u"delete"_s});
}

INSTANTIATE_TEST_SUITE_P(Desktops, Leaks, testing::ValuesIn(chosenDesktops()));
INSTANTIATE_TEST_SUITE_P(Desktops, LeaksOnALargeScreen, testing::ValuesIn(chosenDesktops()));
INSTANTIATE_TEST_SUITE_P(Desktops, LeaksOfOperations, testing::ValuesIn(chosenDesktops()));
