#include "DashboardFixture.h"
#include "Platform/Headless/HeadlessLoginItem.h"
#include "Views/Components/AmountSlider.h"
#include "Views/Settings/SettingsView.h"
#include "Views/Settings/SettingsWindow.h"

#include <QFile>

using namespace Qt::Literals::StringLiterals;

namespace {

class SettingsWindowTest : public DashboardFixture {
protected:
    void SetUp() override {
        show(std::make_unique<SettingsWindow>(state(), desktop().mainLoop, m_loginItem));
    }
    ~SettingsWindowTest() override { m_view.reset(); }

    const AppSettings& settings() { return state().settings.value(); }
    AmountSlider& slider() { return *all<AmountSlider>().at(0); }
    HeadlessLoginItem m_loginItem;
};

}  // namespace

TEST_F(SettingsWindowTest, EveryControlWritesItsSettingAndFollowsIt) {
    using Style = ScreenMask::Style;
    EXPECT_EQ(m_view->size(), QSize(560, 620));
    EXPECT_TRUE(isOn(u"Blackout"_s) && isOn(u"Black"_s) && has(u"Opacity 86%"_s));
    const struct {
        QString control;
        std::function<bool()> holds;
    } cases[] = {
        {u"Frosted"_s, [&] { return settings().defaultStyle == Style::frosted; }},
        {u"Soft Tint"_s, [&] { return settings().defaultStyle == Style::softTint; }},
        {u"Blackout"_s, [&] { return settings().defaultStyle == Style::blackout; }},
        {u"Default click-through"_s, [&] { return settings().defaultClickThrough; }},
        {u"Slate"_s, [&] { return settings().defaultColorHex == u"#18222E"; }},
        {u"Teal"_s, [&] { return settings().defaultColorHex == u"#103847"; }},
        {u"Plum"_s, [&] { return settings().defaultColorHex == u"#40204A"; }},
        {u"Red"_s, [&] { return settings().defaultColorHex == u"#8A1B1B"; }},
        {u"Black"_s, [&] { return settings().defaultColorHex == u"#101114"; }},
        {u"Show help on launch"_s, [&] { return !settings().showHelpOnLaunch; }},
        {u"Show dashboard on launch"_s, [&] { return !settings().showDashboardOnLaunch; }},
        {u"Prefer menu bar utility mode"_s,
         [&] {
             return settings().menuBarOnlyMode &&
                    desktop().applicationHost.policy() == ActivationPolicy::accessory;
         }},
    };
    for (const auto& [control, holds] : cases) {
        const bool before = isOn(control);
        click(control);
        EXPECT_TRUE(holds()) << control.toStdString();
        EXPECT_NE(isOn(control), before) << control.toStdString();
    }
    state().settings.set(AppSettings::defaults());
    EXPECT_TRUE(isOn(u"Show help on launch"_s) && isOn(u"Show dashboard on launch"_s));
    EXPECT_FALSE(isOn(u"Prefer menu bar utility mode"_s) || isOn(u"Default click-through"_s));
}

TEST_F(SettingsWindowTest, ADragOfTheSliderIsSavedOnce) {
    advance(1000);
    ASSERT_TRUE(QFile::remove(workspacePath()));
    QWindow* const window = m_view->windowHandle();
    const auto place = [&](double part) {
        return slider().mapTo(m_view.get(),
                              QPoint(qRound(slider().width() * part), slider().height() / 2));
    };
    QTest::mousePress(window, Qt::LeftButton, {}, place(0.5));
    for (const double part : {0.6, 0.7, 0.8, 0.0}) {
        QTest::mouseMove(window, place(part));
        advance(249);
        EXPECT_FALSE(QFile::exists(workspacePath()));
    }
    EXPECT_EQ(settings().defaultOpacity, 0.15);
    EXPECT_TRUE(has(u"Opacity 15%"_s));
    advance(1);
    ASSERT_TRUE(QFile::remove(workspacePath())) << "not saved";
    QTest::mouseRelease(window, Qt::LeftButton, {}, place(0.0));
    advance(10000);
    EXPECT_FALSE(QFile::exists(workspacePath())) << "saved once more";

    slider().setFocus();
    press(Qt::Key_End);
    EXPECT_EQ(settings().defaultOpacity, 1);
    EXPECT_TRUE(has(u"Opacity 100%"_s));
    state().settings.update([](AppSettings& changed) { changed.defaultOpacity = 0.299; });
    EXPECT_TRUE(has(u"Opacity 29%"_s));
}

TEST_F(SettingsWindowTest, TheLoginSwitchIsWhatTheDesktopHas) {
    const auto name = u"Start at login"_s;
    EXPECT_FALSE(isOn(name));
    click(name);
    EXPECT_TRUE(m_loginItem.isOn && isOn(name));
    m_loginItem.failure = u"Veyla cannot write the file: Permission denied."_s;
    click(name);
    EXPECT_TRUE(m_loginItem.isOn && isOn(name));
    EXPECT_TRUE(has(*m_loginItem.failure));
    EXPECT_EQ(view(name)->accessibleDescription(), *m_loginItem.failure);

    m_loginItem.isOn = false;
    m_view->close();
    m_view->show();
    EXPECT_FALSE(isOn(name));
    EXPECT_FALSE(has(*m_loginItem.failure)) << "of another time";
    EXPECT_EQ(view(name)->accessibleDescription(), QString()) << "of another time";
}

TEST_F(SettingsWindowTest, KeysGoThroughTheControlsScrollAndClose) {
    for (const auto& name : {u"Opacity"_s, u"Blackout"_s, u"Default click-through"_s, u"Black"_s,
                             u"Show help on launch"_s, u"Prefer menu bar utility mode"_s,
                             u"Show dashboard on launch"_s, u"Start at login"_s}) {
        press(Qt::Key_Tab);
        ASSERT_NE(QApplication::focusWidget(), nullptr);
        EXPECT_EQ(nameOf(QApplication::focusWidget()), name);
    }
    press(Qt::Key_PageDown);
    QWidget* const last =
        view(u"In-app menu shortcuts use Option-Command instead of Control-Option-Command."_s);
    EXPECT_EQ(last->visibleRegion().boundingRect(), last->rect()) << "out of view";
    for (const QKeyCombination& keys :
         {QKeyCombination(Qt::Key_Escape), QKeyCombination(Qt::CTRL, Qt::Key_W)}) {
        m_view->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(m_view.get()));
        press(keys.key(), keys.keyboardModifiers());
        EXPECT_FALSE(m_view->isVisible());
    }
}
