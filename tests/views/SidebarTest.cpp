#include "DashboardFixture.h"
#include "Views/Dashboard/LayerList.h"
#include "Views/Dashboard/MaskGroupRowView.h"
#include "Views/Dashboard/MaskRowView.h"
#include "Views/Design/Typography.h"

#include <QDragEnterEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QScrollBar>

using namespace Qt::Literals::StringLiterals;

namespace {

class SidebarTest : public DashboardFixture {
protected:
    QWidget* row(const QUuid& mask) { return view(u"mask-row-"_s + uuidText(mask)); }
    QWidget* groupRow(qsizetype index = 0) {
        return view(u"group-row-"_s + uuidText(state().groups.value().at(index).id));
    }
    LayerList& list() { return *all<LayerList>().at(0); }
    QList<QWidget*> rows() {
        QList<QWidget*> all;
        for (auto* const each : list().findChildren<QWidget*>())
            if (each->isVisible() && !accessibleIdentifier(*each).isEmpty()) all << each;
        std::sort(all.begin(), all.end(), [](auto* a, auto* b) { return a->y() < b->y(); });
        return all;
    }
    QStringList lines() {
        QStringList names;
        for (QWidget* const each : rows())
            names << each->accessibleName();
        return names;
    }
    bool isInView(QWidget* row) const {
        return row->visibleRegion().boundingRect().height() == row->height();
    }
    QLineEdit* nameField() { return groupRow()->findChild<QLineEdit*>(); }

    /// Whether the drop is taken.
    bool drop(QWidget* target, const QMimeData& payload, QPoint position = {20, 10}) {
        constexpr auto actions = Qt::CopyAction | Qt::MoveAction;
        QDragEnterEvent enter(position, actions, &payload, Qt::LeftButton, {});
        QCoreApplication::sendEvent(target, &enter);
        QDropEvent event(position, actions, &payload, Qt::LeftButton, {});
        event.ignore();
        if (enter.isAccepted()) QCoreApplication::sendEvent(target, &event);
        settle();
        return event.isAccepted();
    }
};

}  // namespace

TEST_F(SidebarTest, CountersAndButtonsTellAndChangeTheState) {
    open();
    EXPECT_TRUE(has(u"Masks: 0"_s) && has(u"Presets: 0"_s) && has(u"Active: ON"_s));
    click(u"create-mask-button"_s);
    EXPECT_EQ(nameOf(view(u"create-mask-button"_s)), u"Create new mask");
    ASSERT_EQ(masks().size(), 1);
    EXPECT_EQ(state().selectedMaskID.value(), mask().id);
    state().beginSavePresetFlow();
    state().confirmSavePreset();
    EXPECT_TRUE(has(u"Masks: 1"_s) && has(u"Presets: 1"_s));

    EXPECT_EQ(nameOf(view(u"toggle-all-visibility-button"_s)), u"Hide All");
    click(u"Hide All"_s);
    EXPECT_FALSE(state().areMasksVisible.value());
    EXPECT_TRUE(has(u"Masks: 0"_s));
    EXPECT_EQ(lines().size(), 1) << "hidden masks stay in the list";
    click(u"Show All"_s);
    EXPECT_TRUE(state().areMasksVisible.value() && has(u"Masks: 1"_s));

    click(u"Lock Editing"_s);
    EXPECT_FALSE(state().isEditingEnabled.value());
    EXPECT_TRUE(has(u"Active: OFF"_s));
    click(u"Unlock Editing"_s);
    EXPECT_TRUE(state().isEditingEnabled.value() && has(u"Active: ON"_s));
}

TEST_F(SidebarTest, ListsGroupsWithTheirMasksThenTheOthers) {
    const QUuid first = addMask(u"First"_s, {0, 0, 320.9, 180.9});
    addGroup(u"Open"_s);
    const QUuid inside = addMaskTo(group().id, u"Inside"_s);
    addGroup(u"Folded"_s, false);
    const QUuid folded = addMaskTo(group(1).id, u"Folded away"_s);
    state().setOpacity(first, 0.29);
    state().setStyle(first, ScreenMask::Style::softTint);
    state().setVisibility(inside, false);
    state().selectMask(folded);
    open();
    const QString firstLine = u"First, Soft Tint, 28% opacity, visible"_s;
    const QString insideLine = u"Inside, Blackout, 100% opacity, hidden"_s;
    EXPECT_EQ(lines(), (QStringList{u"Open, 1 mask"_s, insideLine, u"Folded, 1 mask"_s, firstLine}))
        << "a selected mask of a folded group is not listed";
    EXPECT_EQ(MaskRowView::summaryText(mask()), u"320 × 180 px • 28%");
    EXPECT_TRUE(has(u"Open"_s) && has(u"1"_s)) << "name and count are on screen";

    for (const QUuid& each : {first, inside}) {
        click(row(each));
        EXPECT_EQ(state().selectedMaskID.value(), each);
        const auto isSelected = [&](const QUuid& id) {
            return QAccessible::queryAccessibleInterface(row(id))->state().selected;
        };
        EXPECT_EQ(isSelected(first), each == first);
        EXPECT_EQ(isSelected(inside), each == inside);
    }
    state().deleteGroup(group().id);
    EXPECT_EQ(lines(), (QStringList{u"Folded, 1 mask"_s, firstLine, insideLine}));
}

TEST_F(SidebarTest, GroupHeadersAndTheirMenusChangeTheGroup) {
    addMaskTo(addGroup(u"Group 4"_s), u"Inside"_s);
    open();
    for (const bool isOn : {false, true}) {
        click(groupRow()->findChildren<QPushButton*>().at(0));
        EXPECT_EQ(group().isExpanded, isOn);
        EXPECT_EQ(lines().size(), isOn ? 2 : 1);
    }
    for (const bool isHeader : {true, false}) {
        const auto use = [&](const QString& title) {
            isHeader ? click(title) : choose(contextMenu(groupRow()), title);
        };
        EXPECT_EQ(titles(contextMenu(groupRow())),
                  (QStringList{u"Rename"_s, u"Hide Group"_s, u"Lock Group"_s, u"Delete Group"_s}));
        openMenu()->close();
        use(u"Hide Group"_s);
        EXPECT_FALSE(group().isVisible || mask().isVisible);
        use(u"Lock Group"_s);
        EXPECT_TRUE(group().isLocked && mask().isClickThrough);
        use(u"Show Group"_s);
        use(u"Unlock Group"_s);
        EXPECT_TRUE(group().isVisible && !group().isLocked);
    }
    addGroup(u"B"_s);
    addGroup(u"C"_s);
    click(u"Layer options"_s);
    ASSERT_NE(openMenu(), nullptr);
    EXPECT_EQ(titles(openMenu()), QStringList(u"New Group…"_s));
    choose(openMenu(), u"New Group…"_s);
    EXPECT_EQ(group(3).name, u"Group 4");
    choose(contextMenu(groupRow(1)), u"Delete Group"_s);
    ASSERT_EQ(state().groups.value().size(), 3);
    EXPECT_EQ(group(1).name, u"C");
}

TEST_F(SidebarTest, RenamingCommitsOnlyANameThatIsNotBlank) {
    const QUuid id = addGroup(u"Old"_s);
    addMaskTo(id, u"Inside"_s);
    open();
    const struct {
        QString typed;
        Qt::Key key;
        QString name;
    } cases[] = {{u"  New "_s, Qt::Key_Return, u"New"_s},
                 {u"   "_s, Qt::Key_Return, u"New"_s},
                 {u"Other"_s, Qt::Key_Escape, u"New"_s},
                 {u"<b>&"_s, Qt::Key_Enter, u"<b>&"_s}};
    int way = 0;
    for (const auto& [typed, key, name] : cases) {
        SCOPED_TRACE(typed.toStdString());
        const QString former = group().name;
        if (way == 0) {
            choose(contextMenu(groupRow()), u"Rename"_s);
        } else if (way == 1) {
            QTest::mouseDClick(m_view->windowHandle(), Qt::LeftButton, {},
                               view(former)->mapTo(m_view.get(), QPoint(2, 2)));
        } else {
            groupRow()->setFocus();
            press(Qt::Key_F2);
        }
        ++way;
        ASSERT_TRUE(nameField()->isVisible() && nameField()->hasFocus());
        EXPECT_EQ(nameField()->text(), former);
        EXPECT_EQ(nameField()->placeholderText(), u"Group name");
        type(typed);
        state().setOpacity(mask().id, 0.1 * way);
        EXPECT_EQ(nameField()->text(), typed) << "a change elsewhere does not disturb the typing";
        EXPECT_EQ(group().name, former);
        press(key);
        EXPECT_EQ(group().name, name);
        EXPECT_FALSE(nameField()->isVisible());
        EXPECT_TRUE(has(name));
        EXPECT_TRUE(group().isExpanded) << "the key did something to the group as well";
    }
}

TEST_F(SidebarTest, MasksMoveIntoGroupsByMenuAndDrop) {
    const QUuid mask = addMask(u"Mask"_s, {0, 0, 320, 180});
    open();
    EXPECT_EQ(contextMenu(row(mask)), nullptr) << "a menu without groups";
    addGroup(u"R&D"_s);
    addMaskTo(addGroup(u"Second\nline"_s), u"Inside"_s);
    QMenu* const menu = contextMenu(row(mask));
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(titles(menu), QStringList(u"Move to Group"_s));
    QMenu* const targets = menu->actions().at(0)->menu();
    EXPECT_EQ(titles(targets), (QStringList{u"R&&D"_s, u"Second line"_s}));
    choose(targets, u"R&&D"_s);
    EXPECT_EQ(masks().at(0).groupID, group().id);
    EXPECT_EQ(contextMenu(row(mask)), nullptr) << "of a mask in a group";

    const QString id = uuidText(mask);
    const QString unknown = uuidText(QUuid::createUuid());
    const struct {
        QString text;
        bool isTaken;
        bool moves;
    } cases[] = {{id, true, true},
                 {id.toLower(), true, true},
                 {unknown, true, false},
                 {u"Some text"_s, false, false},
                 {id + u" and more"_s, false, false},
                 {u"{%1}"_s.arg(id), false, false},
                 {QString(), false, false}};
    for (const auto& [text, isTaken, moves] : cases) {
        SCOPED_TRACE(text.toStdString());
        const auto before = masks();
        QMimeData payload;
        if (!text.isNull()) payload.setText(text);
        EXPECT_EQ(drop(groupRow(1), payload), isTaken);
        EXPECT_EQ(masks().at(0).groupID, group(moves ? 1 : 0).id);
        EXPECT_TRUE(moves || masks() == before);
        state().addMaskToGroup(mask, group().id);
    }
    QMimeData payload;
    payload.setText(id);
    // The masks of a group are part of it.
    QWidget* const inside = row(masks().at(1).id);
    EXPECT_TRUE(drop(inside->parentWidget(), payload, inside->geometry().center()));
    EXPECT_EQ(masks().at(0).groupID, group(1).id);
    EXPECT_FALSE(drop(inside->parentWidget(), payload, {20, 5000}));
}

TEST_F(SidebarTest, ALongListHasAScreenfulOfRowsAndTheKeyboardWalksThroughIt) {
    addGroup(u"Group"_s);
    for (int i = 0; i < 1000; ++i)
        addMaskTo(group().id, u"Mask %1"_s.arg(i));
    state().selectedMaskID.set(mask(700).id);
    open();
    EXPECT_TRUE(isInView(row(mask(700).id))) << "what is selected is in view at the start";
    const auto isFocused = [&](const QUuid& id) {
        return row(id)->hasFocus() && isInView(row(id));
    };
    const auto rowCount = [&] { return all<MaskRowView>().size(); };
    EXPECT_LT(rowCount(), 30);

    list().verticalScrollBar()->setValue(0);
    groupRow()->setFocus();
    press(Qt::Key_Down);
    EXPECT_TRUE(isFocused(mask(0).id));
    press(Qt::Key_Up);
    EXPECT_TRUE(groupRow()->hasFocus());
    for (int i = 0; i < 40; ++i)
        press(Qt::Key_Down);
    EXPECT_TRUE(isFocused(mask(39).id));
    press(Qt::Key_Return);
    EXPECT_EQ(state().selectedMaskID.value(), mask(39).id);
    press(Qt::Key_End);
    EXPECT_TRUE(isFocused(mask(999).id));
    press(Qt::Key_Down);
    EXPECT_TRUE(isFocused(mask(999).id));
    press(Qt::Key_Home);
    EXPECT_TRUE(groupRow()->hasFocus() && isInView(groupRow()));
    EXPECT_LT(rowCount(), 30);

    // The keyboard stays where it is when the list is scrolled away below it.
    press(Qt::Key_Down);
    list().verticalScrollBar()->setValue(list().verticalScrollBar()->maximum());
    EXPECT_EQ(list().verticalScrollBar()->value(), list().verticalScrollBar()->maximum());
    press(Qt::Key_Down);
    EXPECT_TRUE(isFocused(mask(1).id));
    EXPECT_LT(rowCount(), 30);
    // And close by when its row goes.
    const QUuid next = mask(2).id;
    state().selectMask(mask(1).id);
    state().deleteSelectedMask();
    EXPECT_TRUE(isFocused(next));
}

TEST_F(SidebarTest, TabGoesFromTopToBottom) {
    open();
    addGroup(u"One"_s);
    addMaskTo(group().id, u"Inside"_s);
    addGroup(u"Two"_s);
    addMask(u"Outside"_s, {0, 0, 320, 180});
    view(u"Layer options"_s)->setFocus();
    QStringList names;
    for (int i = 0; i < 10; ++i) {
        press(Qt::Key_Tab);
        names << nameOf(QApplication::focusWidget()).section(u',', 0, 0);
    }
    EXPECT_EQ(names, (QStringList{u"One"_s, u"Collapse Group"_s, u"Hide Group"_s, u"Lock Group"_s,
                                  u"Inside"_s, u"Two"_s, u"Collapse Group"_s, u"Hide Group"_s,
                                  u"Lock Group"_s, u"Outside"_s}));
    view(u"Lock Group"_s)->setFocus();
    press(Qt::Key_Return);
    EXPECT_TRUE(group().isExpanded) << "Return on a button folds the group";
    EXPECT_TRUE(group().isLocked);
    press(Qt::Key_Space);
    EXPECT_FALSE(group().isLocked);
}

TEST_F(SidebarTest, TakesAnyNameAndTwiceTheSameIdentity) {
    const QString names[] = {u"<h1>Big</h1><img src=x>"_s,
                             u"a\nb\r\nc"_s,
                             u"🙂👩‍👩‍👧"_s,
                             u"שלום \u202eabc"_s,
                             QString(10000, u'W'),
                             u"&File"_s,
                             u""_s};
    addGroup(names[0]);
    for (const QString& name : names)
        addMask(name, {0, 0, 320, 180});
    open();
    const int height = row(mask().id)->height();
    for (qsizetype index = 0; index < masks().size(); ++index) {
        SCOPED_TRACE(index);
        QWidget* const each = row(mask(index).id);
        EXPECT_EQ(each->height(), height);
        EXPECT_FALSE(each->accessibleName().contains(u'\n'));
        EXPECT_TRUE(each->accessibleName().startsWith(onOneLine(mask(index).name) + u", "_s));
        click(each);
        EXPECT_EQ(m_view->size(), QSize(1180, 740)) << "the name makes the window larger";
        EXPECT_FALSE(m_view->grab().isNull());
        state().renameGroup(group().id, names[index]);
        EXPECT_EQ(groupRow()->width(), rows().at(1)->width());
    }
    state().masks.update([](QList<ScreenMask>& all) { all.append(all.first()); });
    const auto count = all<MaskRowView>().size();
    for (int i = 0; i < 3; ++i) {
        state().setOpacity(mask().id, 0.2 * i);
        settle();
    }
    EXPECT_EQ(all<MaskRowView>().size(), count);
}
