#include "DashboardFixture.h"
#include "Rendering.h"
#include "Views/Design/VeylaTheme.h"
#include "Views/Onboarding/OnboardingOverlay.h"

using namespace Qt::Literals::StringLiterals;

TEST(TooltipPosition, IsBelowOrAboveTheSpotlightAndInside) {
    const struct {
        const char* place;
        std::optional<QRectF> spotlight;
        QSizeF size;
        QPointF center;
    } cases[] = {
        {"without a spotlight", {}, {800, 600}, {400, 300}},
        {"below", QRectF(300, 100, 100, 40), {800, 600}, {350, 241}},
        {"just room below", QRectF(300, 374, 100, 40), {800, 600}, {350, 499}},
        {"above", QRectF(300, 415, 100, 40), {800, 600}, {350, 314}},
        {"at the top", QRectF(300, -90, 100, 40), {800, 600}, {350, 101}},
        {"large", QRectF(300, 40, 100, 540), {800, 600}, {350, 101}},
        {"at the left", QRectF(0, 100, 20, 40), {800, 600}, {166, 241}},
        {"at the right", QRectF(780, 100, 20, 40), {800, 600}, {634, 241}},
        {"too small an overlay", QRectF(0, 0, 20, 20), {200, 150}, {34, 49}},
    };
    for (const auto& [place, spotlight, size, center] : cases)
        EXPECT_EQ(tooltipPosition(spotlight, 300, size), center) << place;
}

namespace {

class WalkthroughTest : public DashboardFixture {
protected:
    OnboardingOverlay& overlay() { return *all<OnboardingOverlay>().at(0); }

    void start(QSize size = {1180, 740}) {
        open(size);
        state().replayOnboarding();
        ASSERT_TRUE(overlay().isVisible());
    }
    int step() { return state().onboardingStepIndex.value(); }
    bool isOver() { return !state().isOnboardingPresented.value() && !overlay().isVisible(); }
    QWidget* card() { return view(u"onboarding-next-button"_s)->parentWidget()->parentWidget(); }
    QRect rectOf(QWidget* view) { return {view->mapTo(m_view.get(), QPoint()), view->size()}; }
    QWidget* rowOf(const QString& label) { return view(label)->parentWidget(); }

    /// Beside the cards, wherever they are scrolled to.
    static constexpr QPoint backdrop{312, 30};
};

}  // namespace

TEST_F(WalkthroughTest, FiveCardsExplainFiveControls) {
    start();
    EXPECT_TRUE(view(u"onboarding-overlay"_s)->hasFocus());
    EXPECT_EQ(overlay().geometry(), m_view->rect());
    for (int index = 0; index < 5; ++index) {
        SCOPED_TRACE(index);
        const OnboardingStep& shown = OnboardingStep::all().at(index);
        EXPECT_TRUE(has(shown.title) && has(shown.body));
        EXPECT_TRUE(has(u"%1 of 5"_s.arg(index + 1)));
        EXPECT_EQ(nameOf(view(u"onboarding-next-button"_s)), index == 4 ? u"Done" : u"Next");
        QWidget* const control = index == 0   ? view(u"create-mask-button"_s)
                                 : index == 1 ? view(u"toggle-all-visibility-button"_s)
                                 : index == 2 ? rowOf(u"Mask Style"_s)
                                 : index == 3 ? rowOf(u"Toggles"_s)
                                              : rowOf(u"Hotkeys"_s);
        const QImage image = m_view->grab().toImage();
        EXPECT_EQ(control->visibleRegion().boundingRect(), control->rect()) << "out of view";
        const QRect spotlight = rectOf(control).adjusted(-8, -8, 8, 8);
        const Color ring{0x8B / 255.0, 0x5C / 255.0, 0xF6 / 255.0, 1};
        // Just inside the edges of the spotlight, two points wide.
        for (const int inside : {0, 1})
            EXPECT_TRUE(hasColor(image, {spotlight.left() + inside, spotlight.center().y()}, ring));
        overlay().setVisible(false);
        const QImage bare = m_view->grab().toImage();
        overlay().setVisible(true);
        const QPoint inHole = spotlight.topLeft() + QPoint(20, 5);
        EXPECT_EQ(image.pixel(inHole), bare.pixel(inHole)) << "the hole is dimmed";
        EXPECT_TRUE(
            hasColor(image, backdrop, {9 / 255.0 * 0.32, 10 / 255.0 * 0.32, 15 / 255.0 * 0.32, 1}));
        const QPointF expected = tooltipPosition(QRectF(spotlight), 300, m_view->size());
        EXPECT_LE((QRectF(rectOf(card())).center() - expected).manhattanLength(), 1.0);
        // The dots are 5 points apart, the current one in the accent colour.
        int accented = 0;
        const QRect dots = rectOf(card()).adjusted(16, 0, -16, 0);
        for (int y = dots.top(); y < dots.bottom() && accented == 0; ++y)
            for (int dot = 0; dot < 5; ++dot)
                if (hasColor(image, {dots.left() + dot * 10 + 2, y}, ring)) accented = dot + 1;
        EXPECT_EQ(accented, index + 1);
        click(u"onboarding-next-button"_s);
    }
    EXPECT_TRUE(isOver());
    EXPECT_TRUE(state().hasCompletedOnboarding.value());
    EXPECT_EQ(step(), 0);
}

TEST_F(WalkthroughTest, KeysAndClicksGoOnOrSkip) {
    start();
    overlay().setFocus();
    int expected = 0;
    // The same wherever the keyboard is on the card.
    for (const auto* const focus : {"onboarding-overlay", "onboarding-next-button"}) {
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Space, Qt::Key_Right}) {
            if (++expected == 5) state().onboardingStepIndex.set(0), expected = 1, settle();
            view(QString::fromLatin1(focus))->setFocus();
            press(key);
            EXPECT_EQ(step(), expected) << focus << " " << key;
        }
    }
    overlay().setFocus();
    state().onboardingStepIndex.set(1);
    settle();
    press(Qt::Key_Right, Qt::ShiftModifier);
    press(Qt::Key_Left);
    EXPECT_EQ(step(), 1);
    QTest::mouseClick(m_view->windowHandle(), Qt::LeftButton, {}, backdrop);
    settle();
    EXPECT_EQ(step(), 2);
    click(card());
    EXPECT_EQ(step(), 2) << "a click on the card goes on";
    QTest::mouseClick(m_view->windowHandle(), Qt::LeftButton, {},
                      rectOf(rowOf(u"Mask Style"_s)).center());
    settle();
    EXPECT_EQ(mask().style, ScreenMask::Style::blackout) << "a click reaches what is below";
    for (int i = 0; i < 4; ++i)
        press(Qt::Key_Tab);
    EXPECT_TRUE(overlay().isAncestorOf(QApplication::focusWidget()));

    view(u"onboarding-next-button"_s)->setFocus();
    press(Qt::Key_Escape);
    EXPECT_TRUE(isOver() && state().hasCompletedOnboarding.value());
    press(Qt::Key_Tab);
    EXPECT_FALSE(overlay().isAncestorOf(QApplication::focusWidget()));
    EXPECT_TRUE(QApplication::focusWidget()->isVisible()) << "the keyboard is lost";
    state().replayOnboarding();
    click(u"onboarding-skip-button"_s);
    EXPECT_TRUE(isOver() && state().hasCompletedOnboarding.value());
}

TEST_F(WalkthroughTest, FollowsTheControlIntoViewAndWithTheWindow) {
    start({900, 320});
    for (int i = 0; i < 3; ++i)
        press(Qt::Key_Right);
    const auto isSpotlit = [&](QWidget* control) {
        const QRect spotlight = rectOf(control).adjusted(-8, -8, 8, 8);
        const QColor pixel =
            m_view->grab().toImage().pixelColor(spotlight.left(), spotlight.center().y());
        return pixel == VeylaTheme::accentIndigo();
    };
    QWidget* const toggles = rowOf(u"Toggles"_s);
    EXPECT_EQ(toggles->visibleRegion().boundingRect(), toggles->rect()) << "scrolled into view";
    EXPECT_TRUE(isSpotlit(toggles));
    m_view->resize(1180, 700);
    settle();
    EXPECT_TRUE(isSpotlit(toggles));
    EXPECT_EQ(overlay().size(), m_view->size());

    // Without its control the card is in the middle, until the control is back.
    state().deleteSelectedMask();
    state().onboardingStepIndex.set(2);
    EXPECT_LE((rectOf(card()).center() - m_view->rect().center()).manhattanLength(), 2);
    state().createMask();
    EXPECT_TRUE(isSpotlit(rowOf(u"Mask Style"_s)));
}

TEST_F(WalkthroughTest, NothingIsDrawnForAStepThatDoesNotExist) {
    start();
    for (const int index : {5, -1, 99}) {
        state().onboardingStepIndex.set(index);
        EXPECT_FALSE(overlay().isVisible()) << index;
    }
    state().onboardingStepIndex.set(1);
    EXPECT_TRUE(overlay().isVisible());
    const QImage image = m_view->grab().toImage();
    EXPECT_LT(image.pixelColor(backdrop).lightness(), 8) << "not dimmed";
}

TEST_F(WalkthroughTest, FadesInAndOutAndTheViewMayEndMeanwhile) {
    open();
    for (int round = 0; round < 2; ++round) {
        state().replayOnboarding();
        ASSERT_TRUE(QTest::qWaitFor([&] { return has(u"onboarding-next-button"_s); }));
        press(Qt::Key_Right);
        if (round == 1) break;
        press(Qt::Key_Escape);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !overlay().isVisible(); }));
    }
    m_view.reset();
    state().finishOnboarding();
    settle();
}

TEST(CoachmarkAnchor, TheLaterMarkThatIsOnScreenCounts) {
    QWidget parent;
    QWidget first(&parent);
    QWidget second(&parent);
    CoachmarkAnchors anchors;
    anchors.mark(&first, CoachmarkAnchor::hotkeys);
    anchors.mark(&second, CoachmarkAnchor::hotkeys);
    EXPECT_EQ(anchors.view(CoachmarkAnchor::hotkeys), nullptr) << "is not on screen";
    parent.show();
    EXPECT_EQ(anchors.view(CoachmarkAnchor::hotkeys), &second);
}
