#include "Views/Components/ChoiceRow.h"

#include "Views/Components/StyledButton.h"
#include "Views/Design/VeylaCard.h"
#include "Views/Design/VeylaTheme.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QRadioButton>
#include <QSignalBlocker>

namespace {

constexpr double wordCornerRadius = 6;
constexpr double swatchRingWidth = 2.5;

class WordButton final : public QRadioButton {
public:
    explicit WordButton(const QString& title) : QRadioButton(title) {
        setFont(systemFont({11, QFont::Medium}));
        setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
    }
    QSize sizeHint() const override {
        return {fontMetrics().horizontalAdvance(text()) + 24, fontMetrics().height() + 12};
    }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool hitButton(const QPoint& position) const override { return rect().contains(position); }
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        const QColor accent = VeylaTheme::accentBlue();
        if (isChecked())
            paintPanel(painter, rect(), wordCornerRadius, VeylaTheme::withOpacity(accent, 0.22),
                       VeylaTheme::withOpacity(accent, 0.7));
        else
            paintPanel(painter, rect(), wordCornerRadius, VeylaTheme::panelMuted(),
                       VeylaTheme::softBorder());
        painter.setPen(isChecked() ? VeylaTheme::textPrimary() : VeylaTheme::textSecondary());
        painter.drawText(rect(), Qt::AlignCenter, text());
        if (hasFocus()) paintFocusRing(painter, rect(), wordCornerRadius);
    }
};

class SwatchButton final : public QRadioButton {
public:
    SwatchButton(const QColor& color, const QString& name, const SwatchLook& look)
        : m_color(color), m_look(look) {
        setAccessibleName(name);
        setToolTip(name);
        setFixedSize(look.side, look.side);
    }

protected:
    bool hitButton(const QPoint& position) const override { return rect().contains(position); }
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QPointF middle = QRectF(rect()).center();
        const double radius = m_look.diameter / 2;
        painter.setPen(QPen(VeylaTheme::border(), 1));
        painter.setBrush(m_color);
        painter.drawEllipse(middle, radius - 0.5, radius - 0.5);
        painter.setBrush(Qt::NoBrush);
        if (isChecked()) {
            painter.setPen(QPen(m_look.ring, swatchRingWidth));
            const double ring = radius - swatchRingWidth / 2;
            painter.drawEllipse(middle, ring, ring);
        }
        if (hasFocus()) paintFocusRing(painter, rect(), m_look.side / 2.0);
    }

private:
    QColor m_color;
    SwatchLook m_look;
};

}  // namespace

ChoiceRow::ChoiceRow(const QStringList& titles) {
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    for (const QString& title : titles)
        add(new WordButton(title));
    layout->addStretch(1);
}

ChoiceRow::ChoiceRow(const std::vector<QColor>& colors, const QStringList& names,
                     const SwatchLook& look) {
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(look.spacing);
    for (std::size_t index = 0; index < colors.size(); ++index)
        add(new SwatchButton(colors[index], names.value(static_cast<qsizetype>(index)), look));
    layout->addStretch(1);
}

void ChoiceRow::add(QRadioButton* button) {
    const int index = static_cast<int>(m_buttons.size());
    m_buttons.push_back(button);
    layout()->addWidget(button);
    // Assistive technology chooses without a click.
    connect(button, &QRadioButton::toggled, this, [this, index](bool isChosen) {
        if (isChosen && m_onChoose) m_onChoose(index);
    });
}

void ChoiceRow::showChoice(int index) {
    for (std::size_t place = 0; place < m_buttons.size(); ++place) {
        QRadioButton* const button = m_buttons[place];
        const QSignalBlocker silence(button);
        const bool isChosen = static_cast<int>(place) == index;
        if (button->isChecked() == isChosen) continue;
        // An exclusive button cannot be taken back by itself.
        button->setAutoExclusive(false);
        button->setChecked(isChosen);
        button->setAutoExclusive(true);
        button->update();
    }
}
