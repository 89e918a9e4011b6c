#include "support/AppStateFixture.h"

using namespace Qt::Literals::StringLiterals;

namespace {

using Kind = UndoableAct::Kind;

class UndoTest : public AppStateFixture {
protected:
    UndoTest() {
        for (const QString& name : {u"A"_s, u"B"_s, u"C"_s})
            addMask(name, {100, 100, 200, 100});
    }

    /// In list order, the selected one in brackets.
    QString maskNames() {
        QStringList names;
        for (const ScreenMask& mask : masks())
            names
                << (mask.id == state().selectedMaskID.value() ? u"[%1]"_s : u"%1"_s).arg(mask.name);
        return names.join(u' ');
    }
    QUuid addGroup(const QString& name, const QList<qsizetype>& members) {
        const QUuid id = QUuid::createUuid();
        state().groups.update([&](auto& all) { all.append({id, name, false, true, true}); });
        for (const qsizetype index : members)
            state().addMaskToGroup(masks().at(index).id, id);
        return id;
    }
    static MaskPreset preset(const QString& name, qint64 priority = 0,
                             const QString& application = {}) {
        ScreenMask mask;
        mask.name = name;
        mask.frame = {0, 0, 100, 100};
        const bool isBound = !application.isEmpty();
        return {QUuid::createUuid(), name, u"Manual"_s, {mask}, isBound, {}, application, priority};
    }
    void activate(const QString& identifier) {
        desktop().workspace.activate({identifier, identifier});
        advance(0);
    }
};

TEST_F(UndoTest, ADeletedMaskReturnsToItsPlaceAmongWhatHasChanged) {
    const QUuid group = addGroup(u"G"_s, {1});
    state().selectMask(masks()[1].id);
    const ScreenMask deleted = masks()[1];
    state().deleteSelectedMask();
    EXPECT_EQ(state().undoableAct.value(), (UndoableAct{Kind::deletedMask, u"B"_s}));
    state().setMaskName(masks()[1].id, u"C2"_s);
    state().createMask();
    state().updateMaskFrame(masks()[0].id, {0, 0, 60, 40});
    state().undo();
    EXPECT_EQ(maskNames(), u"A [B] C2 Mask 3"_s);
    EXPECT_EQ(masks()[1], deleted);
    EXPECT_EQ(masks()[0].frame, (MaskFrame{0, 0, 60, 40}));
    EXPECT_EQ(state().activeOverlayCount.value(), 4);
    EXPECT_EQ(lastAnnouncement(), u"Restored B"_s);
    EXPECT_EQ(state().undoableAct.value(), std::nullopt);
    state().undo();
    EXPECT_EQ(masks().size(), 4) << "undone twice";

    // Its group may be gone, and the last in the list stays behind what came later.
    state().selectMask(masks()[3].id);
    state().addMaskToGroup(masks()[3].id, group);
    state().deleteSelectedMask();
    state().groups.set({});
    state().createMask();
    state().undo();
    EXPECT_EQ(maskNames(), u"A B C2 [Mask 3] Mask 4"_s);
    EXPECT_EQ(masks()[3].groupID, std::nullopt);

    // What took nothing is no act.
    state().undoableAct.set(std::nullopt);
    state().selectedMaskID.set(QUuid::createUuid());
    state().deleteSelectedMask();
    state().deleteGroup(QUuid::createUuid());
    state().deletePreset(QUuid::createUuid());
    state().masks.set({});
    state().applyPreset(preset(u"P"_s));
    EXPECT_EQ(state().undoableAct.value(), std::nullopt);
}

TEST_F(UndoTest, ADeletedGroupTakesBackThoseThatAreInNoOther) {
    const QUuid group = addGroup(u"G"_s, {0, 1});
    const QUuid other = addGroup(u"Other"_s, {});
    const QList<MaskGroup> before = state().groups.value();
    state().deleteGroup(group);
    EXPECT_EQ(state().undoableAct.value(), (UndoableAct{Kind::deletedGroup, u"G"_s}));
    state().addMaskToGroup(masks()[1].id, other);
    state().undo();
    EXPECT_EQ(state().groups.value(), before);
    EXPECT_EQ(masks()[0].groupID, group);
    EXPECT_EQ(masks()[1].groupID, other);
    EXPECT_EQ(masks()[2].groupID, std::nullopt);
}

TEST_F(UndoTest, ADeletedPresetReturnsToItsPlaceWithItsPriority) {
    state().presets.set({preset(u"a"_s, 7), preset(u"b"_s, 3), preset(u"c"_s, 9)});
    QList<MaskPreset> expected = state().presets.value();
    state().deletePreset(expected[1].id);
    state().updatePreset(expected[2].id, u"renamed"_s, u"x"_s);
    state().beginSavePresetFlow();
    state().confirmSavePreset();
    state().undo();
    EXPECT_EQ(state().presets.value()[2], expected[1]);
    EXPECT_EQ(state().presets.value()[3].name, u"renamed"_s);
    EXPECT_EQ(state().presets.value().size(), 4);
}

TEST_F(UndoTest, TheMasksBeforeALoadReturnInPlaceOfThoseLoaded) {
    state().selectMask(masks()[1].id);
    const QList<ScreenMask> before = masks();
    state().areMasksVisible.set(false);
    state().applyPreset(preset(u"P"_s));
    EXPECT_EQ(state().undoableAct.value(), (UndoableAct{Kind::loadedPreset, u"P"_s}));
    state().setOpacity(masks()[0].id, 0.3);
    state().createMask();
    state().undo();
    EXPECT_EQ(maskNames(), u"A [B] C Mask 2"_s);
    EXPECT_EQ(masks().first(3), before);
    EXPECT_TRUE(state().areMasksVisible.value()) << "what is hidden on screen stays hidden";
    EXPECT_EQ(lastAnnouncement(), u"Restored the masks before P"_s);
}

// Applications come to the front by accident, and one after the other.
TEST_F(UndoTest, AutomaticLoadsKeepWhatWasThereBeforeAllOfThem) {
    state().presets.set({preset(u"P"_s, 0, u"p"_s), preset(u"Q"_s, 0, u"q"_s)});
    for (const bool isTouched : {false, true}) {
        activate(u"p"_s);
        EXPECT_EQ(maskNames(), u"[P]"_s);
        if (isTouched) state().setOpacity(masks()[0].id, 0.3);
        activate(u"q"_s);
        EXPECT_EQ(state().undoableAct.value(), (UndoableAct{Kind::loadedPreset, u"Q"_s}));
        state().undo();
        EXPECT_EQ(maskNames(), isTouched ? u"[P]"_s : u"A B C"_s);
    }
    // Who chooses a preset has seen the one before it.
    state().applyPreset(preset(u"R"_s));
    state().applyPreset(preset(u"S"_s));
    state().undo();
    EXPECT_EQ(maskNames(), u"[R]"_s);
}

}  // namespace
