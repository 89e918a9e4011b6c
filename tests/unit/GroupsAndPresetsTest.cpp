#include "support/AppStateFixture.h"

using namespace Qt::Literals::StringLiterals;

namespace {

class GroupsTest : public AppStateFixture {
protected:
    const QList<MaskGroup>& groups() { return state().groups.value(); }
    ScreenMask maskNamed(const QString& name) {
        for (const ScreenMask& mask : masks())
            if (mask.name == name) return mask;
        ADD_FAILURE() << "no mask is named " << name.toStdString();
        return {};
    }
};

TEST_F(GroupsTest, ANewGroupTakesTheSelectedMaskFromItsOldOne) {
    const QUuid mask = addMask(u"A"_s, {0, 0, 100, 100});
    addMask(u"B"_s, {0, 0, 100, 100});
    state().createGroup(u"First"_s);
    EXPECT_EQ(state().ungroupedMasks().size(), 2) << "nothing was selected";
    state().selectedMaskID.set(mask);
    state().createGroup(u"  Second "_s);
    state().createGroup(u"  Second "_s);
    state().selectedMaskID.set(QUuid::createUuid());
    state().createGroup({});
    ASSERT_EQ(groups().size(), 4);
    EXPECT_EQ(groups()[1].name, u"  Second "_s) << "kept as given";
    EXPECT_TRUE(groups()[1].isExpanded && groups()[1].isVisible && !groups()[1].isLocked);
    EXPECT_TRUE(state().masksInGroup(groups()[1].id).isEmpty());
    EXPECT_EQ(state().masksInGroup(groups()[2].id), QList{maskNamed(u"A"_s)});
    EXPECT_EQ(state().ungroupedMasks(), QList{maskNamed(u"B"_s)});

    state().renameGroup(groups()[2].id, u" \n "_s);
    state().renameGroup(groups()[3].id, u"\tNew name\n"_s);
    state().toggleGroupExpanded(groups()[3].id);
    EXPECT_EQ(groups()[2].name, u"  Second "_s);
    EXPECT_EQ(groups()[3].name, u"New name"_s);
    EXPECT_FALSE(groups()[3].isExpanded);
    EXPECT_TRUE(announcements().isEmpty());
}

TEST_F(GroupsTest, SwitchingAGroupBringsAllItsMasksToOneState) {
    state().createGroup(u"G"_s);
    const QUuid group = groups().first().id;
    for (const QString& name : {u"A"_s, u"B"_s, u"C"_s})
        addMask(name, {0, 0, 100, 100});
    state().addMaskToGroup(masks()[0].id, group);
    state().addMaskToGroup(masks()[1].id, group);
    state().setVisibility(masks()[0].id, false);
    state().setClickThrough(masks()[1].id, true);

    const auto flags = [&] {
        QString text;
        for (const ScreenMask& mask : masks())
            text += u"%1%2 "_s.arg(mask.isVisible).arg(mask.isClickThrough);
        return text;
    };
    state().toggleGroupVisibility(group);
    EXPECT_EQ(flags(), u"00 01 10 "_s);
    EXPECT_EQ(state().activeOverlayCount.value(), 1);
    state().toggleGroupVisibility(group);
    EXPECT_EQ(flags(), u"10 11 10 "_s);
    state().toggleGroupLock(group);
    EXPECT_EQ(flags(), u"11 11 10 "_s);
    state().toggleGroupLock(group);
    EXPECT_EQ(flags(), u"10 10 10 "_s);
    const QUuid unknown = QUuid::createUuid();
    state().toggleGroupLock(unknown);
    state().toggleGroupVisibility(unknown);
    EXPECT_EQ(announcements(), (QStringList{u"Group hidden"_s, u"Group shown"_s, u"Group locked"_s,
                                            u"Group unlocked"_s}));

    state().toggleGroupLock(group);
    state().deleteGroup(group);
    EXPECT_TRUE(groups().isEmpty());
    EXPECT_EQ(flags(), u"11 11 10 "_s) << "the masks stay as they are";
    EXPECT_EQ(state().ungroupedMasks().size(), 3);
}

class PresetsTest : public AppStateFixture {
protected:
    const QList<MaskPreset>& presets() { return state().presets.value(); }

    QUuid save(const QString& name) {
        state().beginSavePresetFlow();
        state().presetDraftName.set(name);
        state().confirmSavePreset();
        return presets().first().id;
    }

    /// A preset of one mask, named like it, bound to an application.
    MaskPreset bound(const QString& name, const QString& identifier, qint64 priority) {
        ScreenMask mask;
        mask.name = name;
        mask.frame = {0, 0, 100, 100};
        return {QUuid::createUuid(), name, u"Manual"_s, {mask}, true, name, identifier, priority};
    }

    void activate(const std::optional<QString>& identifier) {
        desktop().workspace.activate({identifier, identifier});
        advance(0);
    }

    QString shown() { return masks().isEmpty() ? u"none"_s : masks().first().name; }

    QString order() {
        QString text;
        for (const MaskPreset& preset : presets())
            text += u"%1:%2 "_s.arg(preset.name).arg(preset.priority);
        return text;
    }
};

TEST_F(PresetsTest, MovingMakesPrioritiesAgreeWithTheOrderAndBindingMeansOne) {
    const QUuid a = save(u"a"_s);
    save(u"b"_s);
    const QUuid c = save(u"c"_s);
    state().deletePreset(presets()[1].id);
    const QUuid d = save(u"d"_s);
    EXPECT_EQ(order(), u"d:3 c:2 a:0 "_s);
    state().movePresetUp(d);
    state().movePresetDown(a);
    state().movePresetUp(QUuid::createUuid());
    EXPECT_EQ(order(), u"d:3 c:2 a:0 "_s) << "nothing moved";
    state().movePresetUp(a);
    EXPECT_EQ(order(), u"d:2 a:1 c:0 "_s);
    state().movePresetDown(d);
    state().movePresetDown(c);
    EXPECT_EQ(order(), u"a:2 d:1 c:0 "_s);

    activate(u"org.example.Editor"_s);
    state().bindPresetToCurrentApp(d);
    EXPECT_TRUE(presets()[1].autoApply && !presets()[0].autoApply);
    EXPECT_EQ(presets()[1].targetBundleIdentifier, u"org.example.Editor"_s);
    state().clearPresetAppBinding(d);
    EXPECT_FALSE(presets()[1].autoApply || presets()[1].targetAppName ||
                 presets()[1].targetBundleIdentifier);
}

TEST_F(PresetsTest, NoneIsBoundToVeylaByAccident) {
    const QUuid id = save(u"a"_s);
    activate(u"app.veyla.Veyla"_s);
    state().bindPresetToCurrentApp(id);
    EXPECT_FALSE(presets()[0].autoApply);

    state().beginSavePresetFlow();
    state().presetDraftAutoApply.set(true);
    state().confirmSavePreset();
    EXPECT_TRUE(state().isSavePresetPresented.value() && presets().size() == 1);
    state().presetDraftTarget.set(RunningApplication{u"Zoom"_s, u"us.zoom.xos"_s});
    state().confirmSavePreset();
    ASSERT_EQ(presets().size(), 2);
    EXPECT_EQ(presets()[0].targetAppName, u"Zoom"_s);
    EXPECT_EQ(presets()[0].targetBundleIdentifier, u"us.zoom.xos"_s);
    state().beginSavePresetFlow();
    EXPECT_EQ(state().presetDraftApplication(), std::nullopt) << "fresh drafts";
}

TEST_F(PresetsTest, TheBestBoundPresetIsAppliedOnArrivalOnly) {
    const QString editor = u"org.example.Editor"_s;
    MaskPreset manual = bound(u"manual"_s, editor, 99);
    manual.autoApply = false;
    state().presets.set({bound(u"Beta"_s, editor, 5), bound(u"low"_s, editor, 4),
                         bound(u"alpha"_s, editor, 5), bound(u"ALPHA"_s, editor, 5), manual,
                         bound(u"case"_s, u"org.example.editor"_s, 50),
                         bound(u"other"_s, u"org.example.Other"_s, 1)});
    state().areMasksVisible.set(false);
    activate(editor);
    EXPECT_EQ(shown(), u"alpha"_s) << "by name without case, then by list order";
    EXPECT_TRUE(state().areMasksVisible.value());
    EXPECT_EQ(state().currentFrontmostAppName.value(), editor);

    const auto arrive = [&](const std::optional<QString>& identifier) {
        state().masks.set({});
        activate(identifier);
        return shown();
    };
    EXPECT_EQ(arrive(editor), u"none"_s) << "another window of the same application";
    EXPECT_EQ(arrive(u"org.example.Other"_s), u"other"_s);
    EXPECT_EQ(arrive(editor), u"alpha"_s);
    EXPECT_EQ(arrive(u"org.example.Unbound"_s), u"none"_s);
    EXPECT_EQ(arrive(editor), u"alpha"_s);
    EXPECT_EQ(arrive(std::nullopt), u"none"_s);
    EXPECT_EQ(state().currentFrontmostAppName.value(), u"Unknown App"_s);
    EXPECT_EQ(arrive(editor), u"alpha"_s);
    EXPECT_TRUE(announcements().isEmpty());

    // What was applied is not remembered over a restart.
    advance(250);
    restart();
    state().masks.set({});
    advance(0);
    EXPECT_EQ(shown(), u"alpha"_s);
}

}  // namespace
