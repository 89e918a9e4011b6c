#include "DashboardFixture.h"

using namespace Qt::Literals::StringLiterals;

namespace {

// As the display numbers keys by their places.
constexpr quint32 escapeKey = 9, tabKey = 23, keyQ = 24, returnKey = 36, controlKey = 37, keyH = 43,
                  shiftKey = 50, keyN = 57, f1Key = 67, superKey = 133, muteKey = 121;
constexpr auto everyModifier =
    Qt::ControlModifier | Qt::AltModifier | Qt::ShiftModifier | Qt::MetaModifier;
constexpr auto defaultModifiers = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;

class HotkeyRecorderTest : public DashboardFixture {
protected:
    void SetUp() override { openWithMask(); }

    static QString fieldOf(HotkeyAction action) {
        return u"hotkey-field-"_s + hotkeyBindingKey(action);
    }
    QString textOf(HotkeyAction action) {
        return static_cast<QAbstractButton*>(view(fieldOf(action)))->text();
    }
    QString descriptionOf(HotkeyAction action) {
        return QAccessible::queryAccessibleInterface(view(fieldOf(action)))
            ->text(QAccessible::Description);
    }
    HotkeyBinding bindingOf(HotkeyAction action) {
        return state().settings.value().binding(hotkeyBindingKey(action)).value();
    }
    QList<HotkeyAction> recording() {
        QList<HotkeyAction> found;
        for (const HotkeyAction action : allHotkeyActions)
            if (textOf(action) == u"Press shortcut…") found << action;
        return found;
    }

    /// Whether the event is used up where the keyboard is.
    static bool send(QEvent::Type type, quint32 scanCode, Qt::KeyboardModifiers modifiers,
                     bool isRepeat = false) {
        QKeyEvent event(type, Qt::Key_unknown, modifiers, scanCode, 0, 0, {}, isRepeat);
        QCoreApplication::sendEvent(QApplication::focusWidget(), &event);
        return event.isAccepted();
    }
    void type(quint32 scanCode, Qt::KeyboardModifiers modifiers = {}) {
        send(QEvent::KeyPress, scanCode, modifiers);
        send(QEvent::KeyRelease, scanCode, modifiers);
        settle();
    }
    void record(HotkeyAction action, quint32 scanCode, Qt::KeyboardModifiers modifiers) {
        click(fieldOf(action));
        type(scanCode, modifiers);
    }

    using enum HotkeyAction;
};

}  // namespace

TEST_F(HotkeyRecorderTest, TakesTheFirstKeyWithAModifier) {
    const struct {
        const char* name;
        quint32 scanCode;
        Qt::KeyboardModifiers modifiers;
        /// Empty for what is ignored.
        QString text;
        QString words;
    } cases[] = {
        {"a letter alone", keyQ, {}, {}, {}},
        {"Escape alone", escapeKey, {}, {}, {}},
        {"Tab alone", tabKey, {}, {}, {}},
        {"Shift alone", shiftKey, Qt::ShiftModifier, {}, {}},
        {"Super with all others", superKey, everyModifier, {}, {}},
        {"Control with Alt", controlKey, Qt::AltModifier, {}, {}},
        {"a lock", keyQ, Qt::KeypadModifier | Qt::GroupSwitchModifier, {}, {}},
        {"a key without a place of its own", muteKey, everyModifier, {}, {}},
        {"a key beyond those of the display", 300 + keyQ, everyModifier, {}, {}},
        {"Shift and a letter", keyQ, Qt::ShiftModifier, u"⇧Q"_s, u"Shift+Q"_s},
        {"Shift and Tab", tabKey, Qt::ShiftModifier, u"⇧Tab"_s, u"Shift+Tab"_s},
        {"Control and Escape", escapeKey, Qt::ControlModifier, u"⌃⎋"_s, u"Ctrl+Escape"_s},
        {"every modifier", f1Key, everyModifier, u"⌃⌥⇧⌘F1"_s, u"Ctrl+Alt+Shift+Super+F1"_s},
        {"its own", f1Key, everyModifier, u"⌃⌥⇧⌘F1"_s, u"Ctrl+Alt+Shift+Super+F1"_s},
        {"its default", keyN, defaultModifiers, u"⌃⌥⌘N"_s, u"Ctrl+Alt+Super+N"_s},
    };
    click(fieldOf(createMask));
    for (const auto& [name, scanCode, modifiers, text, words] : cases) {
        SCOPED_TRACE(name);
        ASSERT_EQ(recording(), QList{createMask});
        EXPECT_TRUE(send(QEvent::ShortcutOverride, scanCode, modifiers)) << "the menu takes it";
        const HotkeyBinding former = bindingOf(createMask);
        type(scanCode, modifiers);
        if (text.isEmpty()) {
            EXPECT_EQ(bindingOf(createMask), former);
            continue;
        }
        EXPECT_EQ(recording(), QList<HotkeyAction>());
        EXPECT_EQ(textOf(createMask), text);
        EXPECT_EQ(view(fieldOf(createMask))->toolTip(), words);
        EXPECT_EQ(descriptionOf(createMask), words);
        EXPECT_EQ(bindingOf(createMask).displayString(), text);
        EXPECT_TRUE(desktop().hotKeyCenter.registered().contains(
            {bindingOf(createMask).keyCode, bindingOf(createMask).modifiers}));
        EXPECT_TRUE(view(fieldOf(createMask))->hasFocus());
        click(fieldOf(createMask));
    }
}

TEST_F(HotkeyRecorderTest, OwnHotKeysRestUntilTheRecordedKeyIsLetGo) {
    const auto isSuspended = [&] { return desktop().hotKeyCenter.isSuspended(); };
    click(fieldOf(createMask));
    EXPECT_TRUE(isSuspended());
    send(QEvent::KeyPress, keyQ, defaultModifiers);
    EXPECT_EQ(textOf(createMask), u"⌃⌥⌘Q");
    send(QEvent::KeyRelease, controlKey, defaultModifiers);
    EXPECT_TRUE(send(QEvent::ShortcutOverride, keyQ, defaultModifiers, true));
    send(QEvent::KeyRelease, keyQ, defaultModifiers, true);
    send(QEvent::KeyPress, keyQ, Qt::AltModifier, true);
    send(QEvent::KeyPress, shiftKey, Qt::AltModifier);
    EXPECT_TRUE(isSuspended());
    send(QEvent::KeyRelease, keyQ, {});
    settle();
    EXPECT_FALSE(isSuspended());
    EXPECT_EQ(textOf(createMask), u"⌃⌥⌘Q") << "what is pressed later counts";
    EXPECT_TRUE(desktop().hotKeyCenter.press({12, bindingOf(createMask).modifiers}));
    settle();
    EXPECT_EQ(masks().size(), 2);

    // The release goes to another program; the next press is one like any other.
    for (const QEvent::Type type : {QEvent::ShortcutOverride, QEvent::KeyPress}) {
        click(fieldOf(createMask));
        send(QEvent::KeyPress, keyQ, defaultModifiers);
        EXPECT_TRUE(isSuspended());
        EXPECT_NE(send(type, keyH, Qt::AltModifier), type == QEvent::ShortcutOverride);
        EXPECT_FALSE(isSuspended());
        EXPECT_EQ(textOf(createMask), u"⌃⌥⌘Q");
        EXPECT_TRUE(view(fieldOf(createMask))->hasFocus());
    }
}

TEST_F(HotkeyRecorderTest, EndsWithoutChangeWhenTheKeyboardGoesElsewhere) {
    const std::pair<const char*, std::function<void()>> ways[] = {
        {"a second click", [&] { click(fieldOf(createMask)); }},
        {"a click beside it", [&] { click(u"Toggles"_s); }},
        {"another control", [&] { view(u"Duplicate"_s)->setFocus(); }},
        {"the mask goes", [&] { state().masks.set({}); }},
        {"the window goes", [&] { m_view->hide(); }},
    };
    click(fieldOf(createMask));
    click(fieldOf(toggleEditing));
    EXPECT_EQ(recording(), QList{toggleEditing}) << "one at a time";
    click(fieldOf(toggleEditing));
    const AppSettings former = state().settings.value();
    for (const auto& [name, leave] : ways) {
        SCOPED_TRACE(name);
        state().createMask();
        click(fieldOf(createMask));
        ASSERT_EQ(recording(), QList{createMask});
        leave();
        settle();
        EXPECT_FALSE(desktop().hotKeyCenter.isSuspended());
        m_view->show();
        state().createMask();
        EXPECT_EQ(recording(), QList<HotkeyAction>());
        EXPECT_EQ(state().settings.value(), former);
    }
    open();
    click(fieldOf(createMask));
    EXPECT_TRUE(desktop().hotKeyCenter.isSuspended());
    m_view.reset();
    EXPECT_FALSE(desktop().hotKeyCenter.isSuspended());
}

TEST_F(HotkeyRecorderTest, AConflictIsToldUntilTheDefaultsAreBack) {
    const auto inRow = u"Conflicts with Create New Mask"_s;
    const auto message = u"Toggle All Masks conflicts with Create New Mask"_s;
    const auto registered = desktop().hotKeyCenter.registered();
    EXPECT_FALSE(has(inRow) || has(message));
    record(toggleAll, keyN, defaultModifiers);
    EXPECT_EQ(recording(), QList<HotkeyAction>());
    EXPECT_TRUE(has(inRow) && has(message));
    EXPECT_EQ(textOf(toggleAll), u"⌃⌥⌘H");
    EXPECT_EQ(descriptionOf(toggleAll), u"Ctrl+Alt+Super+H. "_s + inRow);
    EXPECT_EQ(desktop().hotKeyCenter.registered().size(), registered.size());

    record(toggleAll, keyQ, defaultModifiers);
    record(createMask, keyH, defaultModifiers);
    EXPECT_EQ(textOf(toggleAll), u"⌃⌥⌘Q");
    EXPECT_EQ(textOf(createMask), u"⌃⌥⌘H") << "the former combination is free";
    EXPECT_TRUE(has(inRow) && has(message));

    state().settings.update(
        [](AppSettings& settings) { settings.hotkeyBindings.insert(u"later"_s, HotkeyBinding{}); });
    click(u"Reset to Defaults"_s);
    EXPECT_EQ(state().settings.value().hotkeyBindings, HotkeyBinding::defaults());
    EXPECT_EQ(textOf(toggleAll), u"⌃⌥⌘H");
    EXPECT_EQ(textOf(createMask), u"⌃⌥⌘N");
    EXPECT_FALSE(has(inRow) || has(message));
    for (const auto& [combination, identifier] : registered)
        EXPECT_TRUE(desktop().hotKeyCenter.registered().contains(combination));
}

TEST_F(HotkeyRecorderTest, ACombinationThatTheDesktopRefusesIsToldInTheRow) {
    const auto refusal = u"Not working: another program may be using this shortcut."_s;
    desktop().hotKeyCenter.occupy({12, HotkeyBinding::controlModifier});
    EXPECT_FALSE(has(refusal));
    record(toggleAll, keyQ, Qt::ControlModifier);
    EXPECT_EQ(textOf(toggleAll), u"⌃Q") << "it is kept, and works when it is free at a start";
    EXPECT_TRUE(has(refusal));
    EXPECT_EQ(descriptionOf(toggleAll), u"Ctrl+Q. "_s + refusal);
    record(toggleAll, keyQ, Qt::AltModifier);
    EXPECT_FALSE(has(refusal));

    // While another row records, the combination may be taken.
    for (const bool isTaken : {true, false}) {
        click(fieldOf(createMask));
        if (isTaken)
            desktop().hotKeyCenter.occupy({12, HotkeyBinding::optionModifier});
        else
            desktop().hotKeyCenter.vacate({12, HotkeyBinding::optionModifier});
        click(fieldOf(createMask));
        EXPECT_EQ(has(refusal), isTaken);
        EXPECT_EQ(state().hotkeyManager().isRegistered(toggleAll), !isTaken);
    }
}

TEST_F(HotkeyRecorderTest, TheKeyboardStartsAndKeepsToTheOrderOfTheCard) {
    view(u"Auto-show masks when screen sharing"_s)->setFocus();
    for (const HotkeyAction action : allHotkeyActions) {
        press(Qt::Key_Tab);
        EXPECT_TRUE(view(fieldOf(action))->hasFocus()) << hotkeyActionTitle(action).toStdString();
    }
    press(Qt::Key_Space);
    EXPECT_EQ(recording(), QList{toggleDashboard});
    type(returnKey, Qt::ControlModifier);
    EXPECT_EQ(textOf(toggleDashboard), u"⌃↩");
    press(Qt::Key_Tab);
    EXPECT_TRUE(view(u"Reset to Defaults"_s)->hasFocus());
}

TEST_F(HotkeyRecorderTest, TheBehaviorBoxesAreTheSettings) {
    const struct {
        QString title;
        std::function<bool(const AppSettings&)> holds;
    } boxes[] = {
        {u"Show help on launch"_s, [](const auto& each) { return each.showHelpOnLaunch; }},
        {u"Menu bar utility mode"_s, [](const auto& each) { return each.menuBarOnlyMode; }},
        {u"Show dashboard on launch"_s,
         [](const auto& each) { return each.showDashboardOnLaunch; }},
        {u"Auto-show masks when screen sharing"_s,
         [](const auto& each) { return each.autoShowMasksOnScreenShare == true; }},
    };
    state().settings.update(
        [](AppSettings& settings) { settings.autoShowMasksOnScreenShare.reset(); });
    for (const auto& [title, holds] : boxes) {
        SCOPED_TRACE(title.toStdString());
        const bool before = holds(state().settings.value());
        EXPECT_EQ(isOn(title), before);
        click(title);
        EXPECT_EQ(holds(state().settings.value()), !before);
        EXPECT_EQ(isOn(title), !before);
        click(title);
        EXPECT_EQ(holds(state().settings.value()), before);
    }
    EXPECT_EQ(state().settings.value().autoShowMasksOnScreenShare, false) << "written explicitly";
    state().settings.update([](AppSettings& settings) { settings.menuBarOnlyMode = true; });
    EXPECT_TRUE(isOn(u"Menu bar utility mode"_s));
}
