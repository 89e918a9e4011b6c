#include "Views/Onboarding/OnboardingCard.h"

#include "Platform/AccessibleIdentifier.h"
#include "Views/Components/StyledButton.h"
#include "Views/Components/TextLabel.h"
#include "Views/Design/Layout.h"
#include "Views/Design/Shadow.h"
#include "Views/Design/VeylaCard.h"
#include "Views/Design/VeylaTheme.h"

#include <QPainter>

using namespace Qt::Literals::StringLiterals;

/// Which of the steps is shown.
class OnboardingCard::Dots final : public QWidget {
public:
    Dots() { setFixedHeight(diameter); }

    void showStep(int count, int index) {
        m_count = count;
        m_index = index;
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        for (int dot = 0; dot < m_count; ++dot) {
            painter.setBrush(dot == m_index
                                 ? VeylaTheme::accentIndigo()
                                 : VeylaTheme::withOpacity(VeylaTheme::textMuted(), 0.4));
            painter.drawEllipse(dot * (diameter + gap), 0, diameter, diameter);
        }
    }

private:
    static constexpr int diameter = 5;
    static constexpr int gap = 5;

    int m_count = 0;
    int m_index = 0;
};

OnboardingCard::OnboardingCard(QWidget* parent)
    : QWidget(parent),
      m_title(new TextLabel({}, {15, QFont::Bold}, VeylaTheme::textPrimary(),
                            TextLabel::Lines::paragraph)),
      m_counter(new TextLabel({}, {.size = 10, .weight = QFont::DemiBold, .isMonospaced = true},
                              VeylaTheme::textMuted())),
      m_body(new TextLabel({}, {12}, VeylaTheme::textSecondary(), TextLabel::Lines::paragraph)),
      m_dots(new Dots) {
    ButtonLook skipLook;
    skipLook.text = {12, QFont::Medium};
    skipLook.textColor = VeylaTheme::textSecondary();
    skipLook.padding = padding(8, 7);
    m_skip = new StyledButton(u"Skip"_s, skipLook);
    setAccessibleIdentifier(*m_skip, u"onboarding-skip-button"_s);

    ButtonLook nextLook;
    nextLook.text = {12, QFont::Bold};
    nextLook.textColor = Qt::white;
    nextLook.hasGradient = true;
    nextLook.cornerRadius = 8;
    nextLook.padding = padding(18, 7);
    m_next = new StyledButton(u"Next"_s, nextLook);
    setAccessibleIdentifier(*m_next, u"onboarding-next-button"_s);

    constexpr int inside = 16;
    constexpr int gap = 8;
    const int counterWidth = m_counter->fontMetrics().horizontalAdvance(u"0 of 0"_s) + 1;
    m_title->setParagraphWidth(cardWidth - 2 * inside - gap - counterWidth);
    auto* const content = column(12,
                                 {row(gap, {{m_title, 1}, m_counter}), m_body, m_dots,
                                  row(8, {m_skip, LayoutItem::space(), m_next})},
                                 padding(inside, inside));
    content->setFixedWidth(cardWidth);
    m_body->setParagraphWidth(cardWidth - 2 * inside);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->addWidget(content);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

void OnboardingCard::showStep(const QList<OnboardingStep>& steps, int index) {
    const OnboardingStep& step = steps.at(index);
    const auto count = static_cast<int>(steps.size());
    m_title->showText(step.title);
    m_counter->showText(u"%1 of %2"_s.arg(index + 1).arg(count));
    m_body->showText(step.body);
    m_dots->showStep(count, index);
    m_next->show(index >= count - 1 ? u"Done"_s : u"Next"_s, QString());
    layout()->activate();
    adjustSize();
}

void OnboardingCard::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const QRectF card = QRectF(rect()).marginsRemoved(QMarginsF(margin, margin, margin, margin));
    paintShadow(painter, card, VeylaCardModifier::cornerRadius,
                {VeylaTheme::withOpacity(Qt::black, 0.4), 20, {0, 8}});
    const VeylaCardModifier look{true};
    look.paintBackground(painter, card);
    look.paintBorder(painter, card);
}
