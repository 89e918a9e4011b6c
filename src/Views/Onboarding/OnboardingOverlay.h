#pragma once

#include "Models/OnboardingStep.h"
#include "Views/Onboarding/CoachmarkAnchors.h"

#include <QPointer>
#include <QVariantAnimation>
#include <QWidget>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class OnboardingCard;

/// Where the centre of the card lies: below the spotlight, or above it where there is no room, and
/// inside the overlay; in the middle without a spotlight. Points, origin top-left, y downward.
QPointF tooltipPosition(const std::optional<QRectF>& spotlight, double cardWidth, QSizeF size);

/// The walkthrough over the dashboard: dims everything but the control that the step is about, and
/// explains it on a card. Takes the keyboard while it is shown. Fills its parent, which must be
/// the view that all anchored views are in.
class OnboardingOverlay final : public QWidget {
public:
    struct Actions {
        std::function<void()> onNext;
        std::function<void()> onSkip;
    };

    OnboardingOverlay(const QList<OnboardingStep>& steps, const CoachmarkAnchors& anchors,
                      const Actions& actions, QWidget* parent);
    ~OnboardingOverlay() override;

    /// Fades in or moves on to that step. Nothing is drawn for an index that is no step's.
    void present(int index);
    /// Fades out.
    void dismiss();

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool focusNextPrevChild(bool isNext) override;

private:
    struct Placement {
        std::optional<QRectF> spotlight;
        QPointF cardCenter;
    };

    QWidget* anchoredView() const;
    void revealAnchoredView();
    void watchAnchoredView();
    void followAnchoredView();
    bool isStep(int index) const { return index >= 0 && index < m_steps.size(); }
    Placement placement() const;
    void moveTo(const Placement& target, bool isAnimated);
    void show(const Placement& placement);
    void fadeTo(double opacity);
    void giveKeyboardBack();

    QList<OnboardingStep> m_steps;
    const CoachmarkAnchors& m_anchors;
    Actions m_actions;
    OnboardingCard* m_card;
    std::optional<int> m_index;
    /// What had the keyboard before the walkthrough.
    QPointer<QWidget> m_formerFocus;
    Placement m_shown;
    QVariantAnimation m_move;
    QVariantAnimation m_fade;
    double m_opacity = 0;
    std::vector<QPointer<QWidget>> m_watched;
};
