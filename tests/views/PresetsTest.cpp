#include "DashboardFixture.h"
#include "Views/Components/SheetArea.h"
#include "Views/Dashboard/PresetRowView.h"

#include <QHelpEvent>
#include <QLineEdit>
#include <QScrollArea>
#include <QScrollBar>

using namespace Qt::Literals::StringLiterals;

namespace {

class PresetsTest : public DashboardFixture {
protected:
    QUuid addPreset(const QString& name, int maskCount = 1, const QString& trigger = u"Manual"_s) {
        MaskPreset preset;
        preset.id = QUuid::createUuid();
        preset.name = name;
        preset.trigger = trigger;
        preset.masks = QList<ScreenMask>(maskCount, masks().value(0));
        state().presets.update([&](QList<MaskPreset>& all) { all.append(preset); });
        return preset.id;
    }
    void openTall() { openWithMask({1180, 1000}); }
    void reopen() {
        m_view->hide();
        m_view->show();
        // The platform does not tell that a window is active again.
        QApplication::setActiveWindow(m_view.get());
        settle();
    }
    const MaskPreset& preset(qsizetype index = 0) { return state().presets.value().at(index); }
    static QString part(const char* name, const QUuid& id) {
        return QLatin1String(name) + u'-' + uuidText(id);
    }
    bool isShown(const char* name, const QUuid& id) { return has(part(name, id)); }
    QString cardLabel(const QUuid& id) { return nameOf(view(part("preset-card", id))); }
    QLineEdit& field(const char* name, const QUuid& id) {
        return *static_cast<QLineEdit*>(view(part(name, id)));
    }
    qsizetype cardCount() { return all<PresetRowView>().size(); }
    QScrollBar& scrollBar() {
        QWidget* each = all<PresetRowView>().at(0);
        while (!qobject_cast<QScrollArea*>(each))
            each = each->parentWidget();
        return *static_cast<QScrollArea*>(each)->verticalScrollBar();
    }
};

}  // namespace

TEST_F(PresetsTest, ACardTellsItsPresetAndCallsItsOperations) {
    openTall();
    const QUuid other = addPreset(u"Other"_s);
    const QUuid id = addPreset(u"Calls <b>"_s, 3, u"OBS"_s);
    EXPECT_EQ(cardLabel(id), u"Preset: Calls <b>, 3 masks, trigger: OBS");
    EXPECT_TRUE(has(u"Calls <b>"_s) && has(u"3 masks • Trigger: OBS"_s));
    EXPECT_TRUE(isShown("preset-bind", id) && !isShown("preset-manual", id));

    state().currentFrontmostAppName.set(u"Zoom"_s);
    view(part("preset-bind", id))->setFocus();
    press(Qt::Key_Space);
    EXPECT_TRUE(preset(1).autoApply && !preset(0).autoApply);
    EXPECT_TRUE(has(u"Auto for Zoom • P0"_s));
    EXPECT_FALSE(isShown("preset-bind", id));
    EXPECT_TRUE(view(part("preset-manual", id))->hasFocus()) << "in the same place";
    click(part("preset-manual", id));
    EXPECT_FALSE(preset(1).autoApply || isShown("preset-manual", id));
    EXPECT_FALSE(has(u"Auto for Zoom • P0"_s));
    EXPECT_TRUE(isShown("preset-bind", other));

    click(part("preset-load", id));
    EXPECT_EQ(masks().size(), 3);
    EXPECT_TRUE(state().areMasksVisible.value());
}

TEST_F(PresetsTest, ARunningApplicationIsChosenAlthoughVeylaIsInFront) {
    for (const auto& [name, identity] :
         {std::pair(u"Zoom & Co"_s, u"us.zoom.xos"_s), std::pair(u"Browser"_s, u"browser"_s),
          std::pair(u"Veyla"_s, u"app.veyla.Veyla"_s)})
        desktop().workspace.launch({name, identity});
    desktop().workspace.launch({std::nullopt, u"nameless"_s});
    openTall();
    const QUuid id = addPreset(u"Calls"_s);
    click(part("preset-choose", id));
    EXPECT_EQ(titles(openMenu()), (QStringList{u"Browser"_s, u"Zoom && Co"_s}));
    choose(openMenu(), u"Zoom && Co"_s);
    EXPECT_EQ(preset().targetAppName, u"Zoom & Co");
    EXPECT_EQ(preset().targetBundleIdentifier, u"us.zoom.xos");
    EXPECT_TRUE(preset().autoApply && isShown("preset-manual", id));
    click(part("preset-choose", id));
    EXPECT_TRUE(openMenu()->actions().at(1)->isChecked());
    QApplication::activePopupWidget()->close();

    click(part("preset-manual", id));
    desktop().workspace.activate({u"Veyla"_s, u"app.veyla.Veyla"_s});
    settle();
    click(part("preset-bind", id));
    EXPECT_FALSE(preset().autoApply);
    ASSERT_NE(openMenu(), nullptr);
    choose(openMenu(), u"Browser"_s);
    EXPECT_EQ(preset().targetBundleIdentifier, u"browser");
}

TEST_F(PresetsTest, EditingSavesOrLeavesThePresetAsItIs) {
    openTall();
    const QUuid id = addPreset(u"Calls"_s, 3, u"OBS"_s);
    const auto edit = [&](const QString& name, const QString& trigger) {
        click(part("preset-edit", id));
        EXPECT_TRUE(field("preset-draft-name", id).hasFocus());
        EXPECT_EQ(field("preset-draft-name", id).text(), preset().name);
        EXPECT_EQ(field("preset-draft-trigger", id).text(), preset().trigger);
        EXPECT_TRUE(has(u"3 masks"_s));
        EXPECT_FALSE(isShown("preset-load", id));
        type(name);
        press(Qt::Key_Tab);
        type(trigger);
    };
    const struct {
        const char* ending;
        QString name, trigger;
        std::function<void()> end;
        QString newName, newTrigger;
    } cases[] = {
        {"Save", u" Talks "_s, u" Zoom "_s, [&] { click(part("preset-save", id)); }, u"Talks"_s,
         u"Zoom"_s},
        {"Return", u"Shows"_s, u""_s, [&] { press(Qt::Key_Return); }, u"Shows"_s, u"Manual"_s},
        {"Cancel", u"Not"_s, u"Not"_s, [&] { click(part("preset-cancel", id)); }, u"Shows"_s,
         u"Manual"_s},
        {"Escape", u"Not"_s, u"Not"_s, [&] { press(Qt::Key_Escape); }, u"Shows"_s, u"Manual"_s},
    };
    for (const auto& [ending, name, trigger, end, newName, newTrigger] : cases) {
        SCOPED_TRACE(ending);
        edit(name, trigger);
        end();
        EXPECT_EQ(preset().name, newName);
        EXPECT_EQ(preset().trigger, newTrigger);
        EXPECT_TRUE(isShown("preset-load", id) && !isShown("preset-save", id));
        EXPECT_TRUE(view(part("preset-edit", id))->hasFocus());
    }
    edit(u"  "_s, u"x"_s);
    EXPECT_FALSE(view(part("preset-save", id))->isEnabled());
    press(Qt::Key_Return);
    EXPECT_TRUE(isShown("preset-save", id)) << "a blank name is not saved";
    state().currentFrontmostAppName.set(u"Zoom"_s);
    state().bindPresetToCurrentApp(id);
    EXPECT_EQ(field("preset-draft-trigger", id).text(), u"x") << "typing is not disturbed";
    reopen();
    EXPECT_TRUE(isShown("preset-load", id)) << "what was begun ends with the view";
}

TEST_F(PresetsTest, APresetIsDeletedOnceConfirmed) {
    openTall();
    const QUuid other = addPreset(u"Other"_s);
    const QUuid id = addPreset(u"Calls"_s, 3);
    const struct {
        const char* ending;
        std::function<void()> end;
        bool isDeleted;
    } cases[] = {{"Escape", [&] { press(Qt::Key_Escape); }, false},
                 {"Return, on what has the keyboard", [&] { press(Qt::Key_Return); }, false},
                 {"Cancel", [&] { click(u"Cancel"_s); }, false},
                 {"the window goes", [&] { reopen(); }, false},
                 {"Delete Preset", [&] { click(u"Delete Preset"_s); }, true}};
    for (const auto& [ending, end, isDeleted] : cases) {
        SCOPED_TRACE(ending);
        click(part("preset-delete", id));
        EXPECT_TRUE(has(u"Delete \"Calls\"?"_s));
        EXPECT_TRUE(has(u"This preset and its 3 saved masks will be permanently removed."_s));
        EXPECT_EQ(nameOf(QApplication::focusWidget()), u"Cancel");
        end();
        EXPECT_FALSE(all<SheetArea>().at(0)->isPresenting.value());
        EXPECT_EQ(state().presets.value().size(), isDeleted ? 1 : 2);
    }
    EXPECT_TRUE(view(part("preset-load", other))->hasFocus()) << "the nearest has the keyboard";

    click(part("preset-delete", other));
    state().deletePreset(other);
    EXPECT_FALSE(all<SheetArea>().at(0)->isPresenting.value()) << "nothing is left to ask about";
    EXPECT_TRUE(has(u"No presets yet. Save your current layout."_s));

    const QUuid last = addPreset(u"Last"_s);
    EXPECT_FALSE(has(u"No presets yet. Save your current layout."_s));
    click(part("preset-delete", last));
    m_view.reset();
}

TEST_F(PresetsTest, OnlyTheCardsInViewExistAndTheKeyboardFindsTheRest) {
    addMask(u"Mask 1"_s, {100, 100, 320, 180});
    state().selectMask(mask().id);
    for (int number = 1; number <= 500; ++number)
        addPreset(u"Preset %1"_s.arg(number));
    m_view = std::make_unique<DashboardView>(state(), desktop().mainLoop);
    EXPECT_EQ(cardCount(), 0);
    open({1180, 700});
    EXPECT_GT(cardCount(), 2);
    EXPECT_LT(cardCount(), 24);
    scrollBar().setValue(scrollBar().maximum());
    EXPECT_TRUE(isShown("preset-card", preset(499).id));
    EXPECT_LT(cardCount(), 40);

    const QUuid edited = preset(499).id;
    click(part("preset-edit", edited));
    type(u"Typed"_s);
    scrollBar().setValue(0);
    EXPECT_EQ(field("preset-draft-name", edited).text(), u"Typed") << "lost by scrolling";
    press(Qt::Key_Escape);

    scrollBar().setValue(0);
    view(part("preset-load", preset(0).id))->setFocus();
    for (int number = 0; number < 40; ++number) {
        EXPECT_EQ(QApplication::focusWidget(), view(part("preset-load", preset(number).id)));
        EXPECT_FALSE(QApplication::focusWidget()->visibleRegion().isEmpty()) << number;
        for (int control = 0; control < 5; ++control)
            press(Qt::Key_Tab);
    }
}

TEST_F(PresetsTest, ColumnsFollowTheWidthAndNothingIsCutOff) {
    openTall();
    for (int number = 0; number < 6; ++number)
        addPreset(u"A name that is too long for any card of this grid, however wide it is "_s +
                      QString::number(number),
                  1,
                  u"A trigger that is too long as well, to make sure it is cut off <i>too</i>"_s);
    int formerColumns = 0;
    for (const int width : {560, 1180}) {
        m_view->resize(width, 1400);
        std::set<int> columns;
        for (PresetRowView* const card : all<PresetRowView>()) {
            columns.insert(card->x());
            EXPECT_LE(card->geometry().right(), card->parentWidget()->width());
            EXPECT_GE(card->height(), card->minimumSizeHint().height());
            EXPECT_GE(card->width(), card->minimumSizeHint().width());
        }
        EXPECT_GT(static_cast<int>(columns.size()), formerColumns) << width;
        formerColumns = static_cast<int>(columns.size());
    }
    const auto toolTip = [](QWidget* view) {
        QHelpEvent hover(QEvent::ToolTip, QPoint(1, 1), view->mapToGlobal(QPoint(1, 1)));
        QCoreApplication::sendEvent(view, &hover);
        return view->toolTip();
    };
    EXPECT_TRUE(find(
        [&](QWidget* each) { return toolTip(each).startsWith(u"<qt>A name that is too long"_s); }));
    EXPECT_TRUE(find([&](QWidget* each) { return toolTip(each).contains(u"&lt;i&gt;"_s); }));

    const auto tallestIn = [&](int y) {
        int tallest = 0;
        for (PresetRowView* const card : all<PresetRowView>())
            if (card->y() == y) tallest = std::max(tallest, card->height());
        return tallest;
    };
    const int before = tallestIn(0);
    click(part("preset-edit", preset(0).id));
    EXPECT_GT(tallestIn(0), before) << "room for the fields";
    press(Qt::Key_Escape);
    EXPECT_EQ(tallestIn(0), before);
}
