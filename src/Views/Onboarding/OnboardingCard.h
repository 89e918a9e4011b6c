#pragma once

#include "Models/OnboardingStep.h"

#include <QWidget>

class StyledButton;
class TextLabel;

/// The card that explains one step of the walkthrough, with a margin for its shadow around it.
class OnboardingCard final : public QWidget {
public:
    static constexpr int cardWidth = 300;
    /// Room for the shadow on every side.
    static constexpr int margin = 32;

    explicit OnboardingCard(QWidget* parent);

    void showStep(const QList<OnboardingStep>& steps, int index);
    StyledButton* nextButton() const { return m_next; }
    StyledButton* skipButton() const { return m_skip; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    class Dots;

    TextLabel* m_title;
    TextLabel* m_counter;
    TextLabel* m_body;
    Dots* m_dots;
    StyledButton* m_skip;
    StyledButton* m_next;
};
