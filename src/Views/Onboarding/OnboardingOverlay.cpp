#include "Views/Onboarding/OnboardingOverlay.h"

#include "Drawing/ContinuousRoundedRect.h"
#include "Platform/AccessibleIdentifier.h"
#include "Views/Components/StyledButton.h"
#include "Views/Design/ApplicationLook.h"
#include "Views/Design/VeylaCard.h"
#include "Views/Design/VeylaTheme.h"
#include "Views/Onboarding/OnboardingCard.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollArea>
#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr double spotlightMargin = 8;
constexpr double spotlightRadius = 12;
constexpr double ringWidth = 2;
constexpr double dimness = 0.68;
constexpr int stepMilliseconds = 220;
constexpr int fadeMilliseconds = 180;

QPointF between(QPointF from, QPointF to, double part) {
    return from + (to - from) * part;
}

}  // namespace

QPointF tooltipPosition(const std::optional<QRectF>& spotlight, double cardWidth, QSizeF size) {
    constexpr double gap = 16;
    // Half of the height that is allowed for the card.
    constexpr double halfHeight = 85;
    if (!spotlight) return {size.width() / 2, size.height() / 2};
    double y = spotlight->bottom() + gap + halfHeight;
    if (y + halfHeight > size.height()) y = spotlight->top() - gap - halfHeight;
    y = std::max(y, halfHeight + gap);
    y = std::min(y, size.height() - halfHeight - gap);
    double x = std::max(spotlight->center().x(), cardWidth / 2 + gap);
    x = std::min(x, size.width() - cardWidth / 2 - gap);
    return {x, y};
}

OnboardingOverlay::OnboardingOverlay(const QList<OnboardingStep>& steps,
                                     const CoachmarkAnchors& anchors, const Actions& actions,
                                     QWidget* parent)
    : QWidget(parent),
      m_steps(steps),
      m_anchors(anchors),
      m_actions(actions),
      m_card(new OnboardingCard(this)) {
    setAccessibleIdentifier(*this, u"onboarding-overlay"_s);
    setAccessibleName(u"Walkthrough"_s);
    setFocusPolicy(Qt::StrongFocus);
    connect(m_card->nextButton(), &QPushButton::clicked, this, [this] { m_actions.onNext(); });
    connect(m_card->skipButton(), &QPushButton::clicked, this, [this] { m_actions.onSkip(); });
    m_card->installEventFilter(this);
    m_card->nextButton()->installEventFilter(this);
    m_card->skipButton()->installEventFilter(this);
    m_move.setEasingCurve(QEasingCurve::InOutQuad);
    connect(&m_fade, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        m_opacity = value.toDouble();
        update();
    });
    connect(&m_fade, &QVariantAnimation::finished, this, [this] {
        if (!m_index) hide();
    });
    parent->installEventFilter(this);
    hide();
}

OnboardingOverlay::~OnboardingOverlay() = default;

void OnboardingOverlay::present(int index) {
    if (m_index == index) return followAnchoredView();
    const bool wasPresented = m_index && isStep(*m_index);
    m_index = index;
    if (!isStep(index)) {
        giveKeyboardBack();
        return hide();
    }
    if (!wasPresented) m_formerFocus = window()->focusWidget();
    m_card->showStep(m_steps, index);
    setGeometry(parentWidget()->rect());
    revealAnchoredView();
    watchAnchoredView();
    moveTo(placement(), wasPresented && isVisible());
    QWidget::show();
    m_card->show();
    raise();
    setFocus(Qt::OtherFocusReason);
    if (!wasPresented) fadeTo(1);
}

void OnboardingOverlay::dismiss() {
    if (!m_index) return;
    m_index.reset();
    m_watched.clear();
    m_move.stop();
    giveKeyboardBack();
    m_card->hide();
    fadeTo(0);
}

// It would stay on a card that nobody sees.
void OnboardingOverlay::giveKeyboardBack() {
    const QWidget* const focused = window()->focusWidget();
    if (focused != this && !isAncestorOf(focused)) return;
    const bool canHaveIt =
        m_formerFocus && m_formerFocus->isVisible() && m_formerFocus->isEnabled();
    (canHaveIt ? m_formerFocus.data() : parentWidget())->setFocus(Qt::OtherFocusReason);
}

void OnboardingOverlay::fadeTo(double opacity) {
    m_fade.stop();
    m_fade.setStartValue(m_opacity);
    m_fade.setEndValue(opacity);
    m_fade.setDuration(motionDuration(fadeMilliseconds));
    m_fade.start();
}

QWidget* OnboardingOverlay::anchoredView() const {
    if (!m_index || !isStep(*m_index)) return nullptr;
    return m_anchors.view(m_steps.at(*m_index).anchor);
}

// What the user is told to look at must be there to be seen.
void OnboardingOverlay::revealAnchoredView() {
    QWidget* const view = anchoredView();
    if (!view) return;
    for (QWidget* each = view->parentWidget(); each; each = each->parentWidget()) {
        constexpr int room = 40;
        if (auto* const area = qobject_cast<QScrollArea*>(each))
            area->ensureWidgetVisible(view, room, room);
    }
}

// A move of any view around the anchored one moves the spotlight.
void OnboardingOverlay::watchAnchoredView() {
    for (const auto& view : m_watched)
        if (view) view->removeEventFilter(this);
    m_watched.clear();
    for (QWidget* view = anchoredView(); view && view != parentWidget();
         view = view->parentWidget()) {
        view->installEventFilter(this);
        m_watched.emplace_back(view);
    }
    parentWidget()->installEventFilter(this);
}

// The control may have come on screen since the step was shown.
void OnboardingOverlay::followAnchoredView() {
    const QWidget* const view = anchoredView();
    if (!view || (!m_watched.empty() && m_watched.front() == view)) return;
    revealAnchoredView();
    watchAnchoredView();
    moveTo(placement(), false);
}

bool OnboardingOverlay::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
        case QEvent::KeyPress: {
            // A button takes this key for moving on to the next button.
            const bool isButton =
                watched == m_card->nextButton() || watched == m_card->skipButton();
            if (!isButton || static_cast<QKeyEvent*>(event)->key() != Qt::Key_Right) break;
            keyPressEvent(static_cast<QKeyEvent*>(event));
            return true;
        }
        case QEvent::Move:
        case QEvent::Resize:
        case QEvent::Show:
        case QEvent::Hide:
            if (!m_index) break;
            // Its centre is what has a place; its size follows its text.
            if (watched == m_card) {
                if (event->type() == QEvent::Resize) show(m_shown);
                break;
            }
            if (watched == parentWidget()) setGeometry(parentWidget()->rect());
            moveTo(placement(), false);
            break;
        default:
            break;
    }
    return false;
}

OnboardingOverlay::Placement OnboardingOverlay::placement() const {
    Placement placement;
    if (const QWidget* const view = anchoredView()) {
        const QRectF rect(view->mapTo(parentWidget(), QPoint(0, 0)), QSizeF(view->size()));
        placement.spotlight =
            rect.adjusted(-spotlightMargin, -spotlightMargin, spotlightMargin, spotlightMargin);
    }
    placement.cardCenter =
        tooltipPosition(placement.spotlight, OnboardingCard::cardWidth, parentWidget()->size());
    return placement;
}

void OnboardingOverlay::moveTo(const Placement& target, bool isAnimated) {
    m_move.stop();
    m_move.disconnect(this);
    const int duration = isAnimated ? motionDuration(stepMilliseconds) : 0;
    if (duration == 0) return show(target);
    m_move.setDuration(duration);
    const Placement start = m_shown;
    m_move.setStartValue(0.0);
    m_move.setEndValue(1.0);
    connect(
        &m_move, &QVariantAnimation::valueChanged, this,
        [this, start, target](const QVariant& value) {
            const double part = value.toDouble();
            Placement now = target;
            now.cardCenter = between(start.cardCenter, target.cardCenter, part);
            if (start.spotlight && target.spotlight)
                now.spotlight = QRectF(
                    between(start.spotlight->topLeft(), target.spotlight->topLeft(), part),
                    between(start.spotlight->bottomRight(), target.spotlight->bottomRight(), part));
            show(now);
        });
    m_move.start();
}

void OnboardingOverlay::show(const Placement& placement) {
    m_shown = placement;
    const QSizeF size = m_card->size();
    m_card->move((placement.cardCenter - QPointF(size.width() / 2, size.height() / 2)).toPoint());
    update();
}

void OnboardingOverlay::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(m_opacity);
    QPainterPath backdrop;
    backdrop.addRect(rect());
    if (m_shown.spotlight)
        backdrop.addPath(ContinuousRoundedRect{*m_shown.spotlight, spotlightRadius}.path());
    backdrop.setFillRule(Qt::OddEvenFill);
    painter.fillPath(backdrop, VeylaTheme::withOpacity(Qt::black, dimness));
    if (m_shown.spotlight)
        paintPanel(painter, *m_shown.spotlight, spotlightRadius, Qt::NoBrush,
                   VeylaTheme::accentIndigo(), ringWidth);
}

void OnboardingOverlay::mousePressEvent(QMouseEvent* event) {
    event->accept();
    const bool isOnCard =
        m_card->geometry()
            .marginsRemoved(QMargins(OnboardingCard::margin, OnboardingCard::margin,
                                     OnboardingCard::margin, OnboardingCard::margin))
            .contains(event->position().toPoint());
    if (m_index && !isOnCard && event->button() == Qt::LeftButton) m_actions.onNext();
}

void OnboardingOverlay::keyPressEvent(QKeyEvent* event) {
    if (!m_index || event->modifiers() & ~Qt::KeypadModifier) return event->ignore();
    switch (event->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
        case Qt::Key_Space:
            // A button that was reached by Tab is what the key is meant for.
            if (m_card->skipButton()->hasFocus()) return m_actions.onSkip();
            return m_actions.onNext();
        case Qt::Key_Right:
            return m_actions.onNext();
        case Qt::Key_Escape:
            return m_actions.onSkip();
        default:
            event->ignore();
    }
}

// Tab stays on the card while it is shown.
bool OnboardingOverlay::focusNextPrevChild(bool isNext) {
    if (!m_index) return QWidget::focusNextPrevChild(isNext);
    const bool isOnNext = m_card->nextButton()->hasFocus();
    (isOnNext ? m_card->skipButton() : m_card->nextButton())->setFocus(Qt::TabFocusReason);
    return true;
}
