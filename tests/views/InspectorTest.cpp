#include "DashboardFixture.h"
#include "Rendering.h"
#include "Views/Components/AmountSlider.h"
#include "Views/Dashboard/InspectorView.h"

#include <QLineEdit>

using namespace Qt::Literals::StringLiterals;

namespace {

class InspectorTest : public DashboardFixture {
protected:
    QLineEdit& nameField() { return *static_cast<QLineEdit*>(view(u"mask-name-field"_s)); }
    AmountSlider& slider() { return *all<AmountSlider>().at(0); }
    double sliderValue() {
        return QAccessible::queryAccessibleInterface(&slider())
            ->valueInterface()
            ->currentValue()
            .toDouble();
    }
    /// The colour of the widest ring of a swatch, left of its middle.
    QColor ringOf(const QString& name) {
        const QImage image = view(name)->grab().toImage();
        return image.pixelColor(image.width() / 2 - 12, image.height() / 2);
    }

    const QStringList m_swatches{u"Graphite"_s, u"Blue"_s,   u"Violet"_s,
                                 u"Green"_s,    u"Orange"_s, u"Red"_s};
};

}  // namespace

TEST_F(InspectorTest, EveryControlWritesThroughItsOperation) {
    openWithMask({1180, 740}, {100.9, 200.9, 320.9, 180.9});
    EXPECT_TRUE(has(u"320 × 180 px · Blackout"_s));
    EXPECT_TRUE(has(u"X: 100,  Y: 200 px"_s));
    EXPECT_TRUE(has(u"Mask ID: "_s + uuidText(mask().id)));

    const Rect frame = mask().frame;
    const auto movedBy = [&](double x, double y, double width, double height) {
        return [=, this] {
            return mask().frame ==
                   MaskFrame{frame.x + x, frame.y + y, frame.width + width, frame.height + height};
        };
    };
    const struct {
        QString control;
        std::function<bool()> holds;
    } cases[] = {
        {u"Frosted"_s, [&] { return mask().style == ScreenMask::Style::frosted; }},
        {u"Soft Tint"_s, [&] { return mask().style == ScreenMask::Style::softTint; }},
        {u"Blackout"_s, [&] { return mask().style == ScreenMask::Style::blackout; }},
        {u"Click-through"_s, [&] { return mask().isClickThrough; }},
        {u"Visible"_s, [&] { return !mask().isVisible && has(u"Show"_s) && !has(u"Hide"_s); }},
        {u"Show"_s, [&] { return mask().isVisible && isOn(u"Visible"_s); }},
        {u"Hide"_s, [&] { return !mask().isVisible && !isOn(u"Visible"_s); }},
        {u"Nudge up"_s, movedBy(0, 10, 0, 0)},
        {u"Nudge left"_s, movedBy(-10, 10, 0, 0)},
        {u"Nudge down"_s, movedBy(-10, 0, 0, 0)},
        {u"Nudge right"_s, movedBy(0, 0, 0, 0)},
        {u"Wider (+20)"_s, movedBy(0, 0, 20, 0)},
        {u"Taller (+10)"_s, movedBy(0, 0, 20, 10)},
        {u"Narrower (-20)"_s, movedBy(0, 0, 0, 10)},
        {u"Shorter (-10)"_s, movedBy(0, 0, 0, 0)},
        {u"Duplicate"_s, [&] { return masks().size() == 2; }},
        {u"Delete mask permanently"_s, [&] { return masks().size() == 1; }},
        {u"delete-mask-button"_s, [&] { return masks().isEmpty() && has(u"No Mask Selected"_s); }},
    };
    for (const auto& [control, holds] : cases) {
        click(control);
        EXPECT_TRUE(holds()) << control.toStdString();
    }
}

TEST_F(InspectorTest, ChoosesOnceWithPointerAndArrowKeys) {
    openWithMask();
    int changes = 0;
    const Subscription counting = state().masks.subscribe([&](const auto&) { ++changes; });
    changes = 0;
    click(u"Frosted"_s);
    EXPECT_EQ(changes, 1);
    press(Qt::Key_Right);
    EXPECT_EQ(mask().style, ScreenMask::Style::softTint);
    EXPECT_EQ(changes, 2);
    state().setStyle(mask().id, ScreenMask::Style::blackout);
    EXPECT_TRUE(isOn(u"Blackout"_s) && !isOn(u"Soft Tint"_s));
}

TEST_F(InspectorTest, OnlyTheSwatchOfExactlyThatColorHasARing) {
    openWithMask();
    for (qsizetype index = 0; index < m_swatches.size(); ++index) {
        click(m_swatches[index]);
        EXPECT_EQ(mask().colorHex, InspectorView::palette().at(static_cast<std::size_t>(index)));
    }
    const struct {
        QString stored;
        QString ringed;
    } cases[] = {{u"#007AFF"_s, u"Blue"_s},
                 {u"#007aff"_s, {}},
                 {u"#123456"_s, {}},
                 {u"not a color"_s, {}},
                 {u"#FF3B30"_s, u"Red"_s}};
    view(u"Duplicate"_s)->setFocus();
    for (const auto& [stored, ringed] : cases) {
        state().setColorHex(mask().id, stored);
        for (const QString& name : m_swatches) {
            EXPECT_EQ(ringOf(name) == QColor(Qt::white), name == ringed)
                << name.toStdString() << " for " << stored.toStdString();
            EXPECT_EQ(isOn(name), name == ringed);
        }
    }
}

TEST_F(InspectorTest, TheSliderStaysInItsRangeAndTheTextTellsTheMask) {
    openWithMask();
    const struct {
        double stored;
        QString text;
        double slider;
    } cases[] = {{0.86, u"86%"_s, 0.86},
                 {0.299, u"29%"_s, 0.299},
                 {0.05, u"5%"_s, 0.15},
                 {1.5, u"150%"_s, 1}};
    for (const auto& [stored, text, shown] : cases) {
        state().setOpacity(mask().id, stored);
        EXPECT_TRUE(has(text)) << stored;
        EXPECT_EQ(sliderValue(), shown);
        EXPECT_EQ(mask().opacity, stored) << "showing a value must not change it";
    }
    slider().setFocus();
    const std::pair<Qt::Key, double> keys[] = {{Qt::Key_End, 1},     {Qt::Key_Right, 1},
                                               {Qt::Key_Left, 0.99}, {Qt::Key_PageDown, 0.89},
                                               {Qt::Key_Home, 0.15}, {Qt::Key_Down, 0.15}};
    for (const auto& [key, opacity] : keys) {
        press(key);
        EXPECT_NEAR(mask().opacity, opacity, 1e-9) << key;
    }
    QWindow* const window = m_view->windowHandle();
    const QPoint middle = slider().mapTo(m_view.get(), slider().rect().center());
    QTest::mousePress(window, Qt::LeftButton, {}, middle);
    EXPECT_NEAR(mask().opacity, 0.575, 0.01);
    QTest::mouseMove(window, QPoint(m_view->width() - 2, middle.y()));
    EXPECT_EQ(mask().opacity, 1);
    QTest::mouseRelease(window, Qt::LeftButton, {}, middle);
    QAccessible::queryAccessibleInterface(&slider())->valueInterface()->setCurrentValue(0.01);
    EXPECT_EQ(mask().opacity, 0.15);
}

TEST_F(InspectorTest, ANameIsTakenWhenItIsSubmitted) {
    openWithMask();
    const QUuid other = addMask(u"Mask 2"_s, {0, 0, 320, 180});
    EXPECT_EQ(nameField().placeholderText(), u"Mask name");
    EXPECT_EQ(nameOf(&nameField()), u"Mask name");
    const auto typeName = [&](const QString& text) {
        nameField().setFocus();
        type(text);
    };
    typeName(u"Typed"_s);
    state().nudgeSelectedMask(10, 0);
    settle();
    EXPECT_EQ(mask().name, u"Mask 1");
    EXPECT_EQ(nameField().text(), u"Typed") << "a change elsewhere does not disturb the typing";
    state().selectMask(other);
    EXPECT_EQ(nameField().text(), u"Mask 2");
    state().selectMask(mask().id);
    EXPECT_EQ(nameField().text(), u"Mask 1");

    typeName(u"   "_s);
    press(Qt::Key_Return);
    EXPECT_EQ(mask().name, u"Mask 1");
    EXPECT_EQ(nameField().text(), u"   ");
    typeName(u"  Chat 🙂 <b> "_s);
    press(Qt::Key_Enter);
    EXPECT_EQ(mask().name, u"Chat 🙂 <b>"_s);
    typeName(u"   "_s);
    m_view->hide();
    m_view->show();
    EXPECT_EQ(nameField().text(), mask().name);
}

TEST_F(InspectorTest, TheEmptyStateCreatesAndReplays) {
    state().hasCompletedOnboarding.set(true);
    open();
    EXPECT_TRUE(has(u"No Mask Selected"_s) &&
                has(u"Select a mask from the sidebar or create a new one."_s));
    EXPECT_FALSE(has(u"mask-name-field"_s));
    click(u"empty-state-create-button"_s);
    EXPECT_TRUE(has(u"Mask name"_s));
    click(u"delete-mask-button"_s);
    click(u"empty-state-replay-walkthrough"_s);
    EXPECT_TRUE(state().isOnboardingPresented.value());
    EXPECT_FALSE(state().hasCompletedOnboarding.value());
    EXPECT_EQ(masks().size(), 1) << "a mask to show things on";
}

TEST_F(InspectorTest, WhatGetsTheKeyboardIsScrolledIntoViewAndTheFooterIsLast) {
    openWithMask();
    const auto isSeen = [&](const QString& name) { return !view(name)->visibleRegion().isEmpty(); };
    EXPECT_FALSE(isSeen(u"delete-mask-button"_s));
    view(u"Reset to Defaults"_s)->setFocus();
    press(Qt::Key_Tab);
    EXPECT_TRUE(view(u"delete-mask-button"_s)->hasFocus() && isSeen(u"delete-mask-button"_s));
    EXPECT_FALSE(isSeen(u"mask-name-field"_s));
    nameField().setFocus();
    EXPECT_TRUE(isSeen(u"mask-name-field"_s));
}
