#include "DashboardFixture.h"
#include "Views/ContentView.h"

#include <QLineEdit>
#include <QMenuBar>

using namespace Qt::Literals::StringLiterals;

namespace {

/// The main window with its menus and a selected mask.
class EditMenuTest : public DashboardFixture {
protected:
    EditMenuTest() {
        addMask(u"Mask 1"_s, {100, 100, 320, 180});
        state().selectMask(mask().id);
        addGroup(u"Group"_s);
        state().presets.set({MaskPreset()});
        show(std::make_unique<ContentView>(state(), desktop().mainLoop, m_commands, [] {}));
        m_view->resize(1180, 1000);
        settle();
    }
    ~EditMenuTest() override { m_view.reset(); }

    QAction* undoAction() {
        return static_cast<QMainWindow*>(m_view.get())
            ->menuBar()
            ->actions()
            .at(1)
            ->menu()
            ->actions()
            .constFirst();
    }

    VeylaCommands m_commands{state(), nullptr};
};

}  // namespace

TEST_F(EditMenuTest, KeysThatEditATextAreTheFieldsOwn) {
    const QString preset = uuidText(QUuid());
    const struct {
        QString name;
        std::function<void()> open;
    } fields[] = {
        {u"mask-name-field"_s, [] {}},
        {u"preset-draft-name-"_s + preset, [&] { click(u"preset-edit-"_s + preset); }},
        {u"preset-draft-trigger-"_s + preset, [] {}},
        {u"Group name"_s,
         [&] {
             QWidget* const row = view(u"group-row-"_s + uuidText(group().id));
             choose(contextMenu(row), u"Rename"_s);
         }},
        {u"preset-name-field"_s, [&] { state().beginSavePresetFlow(); }},
    };
    for (const auto& [name, open] : fields) {
        SCOPED_TRACE(name.toStdString());
        open();
        auto* const field = static_cast<QLineEdit*>(view(name));
        field->setFocus();
        type(u"One two"_s);
        press(Qt::Key_Backspace, Qt::ControlModifier);
        EXPECT_EQ(field->text(), u"One ");
        press(Qt::Key_Z, Qt::ControlModifier);
        EXPECT_EQ(field->text(), u"One two");
        press(Qt::Key_Home);
        press(Qt::Key_Delete, Qt::ControlModifier);
        EXPECT_EQ(field->text(), u"two");
        EXPECT_EQ(masks().size(), 1);
    }
}

TEST_F(EditMenuTest, WhatIsDeletedComesBackByKeyAndMenu) {
    EXPECT_FALSE(undoAction()->isEnabled());
    EXPECT_EQ(undoAction()->text(), u"Undo");
    state().setMaskName(mask().id, u"Me & you"_s);
    press(Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_TRUE(masks().isEmpty());
    EXPECT_EQ(undoAction()->text(), u"Undo Delete Me && you");
    state().isWhatsNewPresented.set(true);
    settle();
    EXPECT_FALSE(undoAction()->isEnabled()) << "behind a sheet";
    state().dismissWhatsNew();
    settle();
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(masks().size(), 1);
    EXPECT_FALSE(undoAction()->isEnabled());
}

TEST_F(EditMenuTest, ABarOffersItForAWhile) {
    EXPECT_FALSE(has(u"undo-bar"_s));
    QWidget* const focused = QApplication::focusWidget();
    press(Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_EQ(nameOf(view(u"undo-bar"_s)), u"Deleted Mask 1");
    EXPECT_EQ(nameOf(view(u"undo-bar-button"_s)), u"Undo Delete Mask 1");
    EXPECT_EQ(QApplication::focusWidget(), focused);
    advance(9'999);
    EXPECT_TRUE(has(u"undo-bar"_s));
    advance(1);
    EXPECT_FALSE(has(u"undo-bar"_s));
    EXPECT_TRUE(undoAction()->isEnabled());

    // It does not go from under the keyboard.
    state().deletePreset(QUuid());
    view(u"undo-bar-button"_s)->setFocus();
    advance(10'000);
    EXPECT_TRUE(has(u"undo-bar"_s));
    press(Qt::Key_Tab);
    EXPECT_FALSE(has(u"undo-bar"_s));

    state().deleteGroup(group().id);
    view(u"undo-bar-button"_s)->setFocus();
    press(Qt::Key_Space);
    EXPECT_EQ(state().groups.value().size(), 1);
    EXPECT_FALSE(has(u"undo-bar"_s));
    EXPECT_TRUE(QApplication::focusWidget() && QApplication::focusWidget()->isVisible());
}
