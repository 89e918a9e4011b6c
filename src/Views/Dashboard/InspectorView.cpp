#include "Views/Dashboard/InspectorView.h"

#include "Platform/AccessibleIdentifier.h"
#include "Views/Components/AmountSlider.h"
#include "Views/Components/ChoiceRow.h"
#include "Views/Components/FormCard.h"
#include "Views/Components/MaskChoices.h"
#include "Views/Components/PlainTextField.h"
#include "Views/Components/StyledButton.h"
#include "Views/Components/TextLabel.h"
#include "Views/Components/ToggleSwitch.h"
#include "Views/Design/Layout.h"
#include "Views/Design/VeylaTheme.h"

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr double leastOpacity = 0.15;

}  // namespace

const std::array<QString, 6>& InspectorView::palette() {
    static const std::array<QString, 6> colors{u"#1C1C1E"_s, u"#007AFF"_s, u"#8B6CFF"_s,
                                               u"#34C759"_s, u"#FF9500"_s, u"#FF3B30"_s};
    return colors;
}

InspectorView::InspectorView(AppState& state, Scheduler& scheduler, CoachmarkAnchors& anchors)
    : m_state(state),
      m_name(new PlainTextField(u"Mask name"_s, {22, QFont::Bold})),
      m_summary(new TextLabel({}, {12, QFont::Medium}, VeylaTheme::textSecondary())),
      m_duplicate(iconButton(u"Duplicate"_s, u"doc.on.doc"_s)),
      m_visibility(iconButton(u"Hide"_s, u"eye"_s)),
      m_styles(new ChoiceRow(maskStyleNames())),
      m_opacity(new AmountSlider(leastOpacity, 1, VeylaTheme::accentBlue())),
      m_opacityText(new TextLabel({}, {11}, VeylaTheme::textPrimary())),
      m_colors(new ChoiceRow(swatchColors(palette()), {u"Graphite"_s, u"Blue"_s, u"Violet"_s,
                                                       u"Green"_s, u"Orange"_s, u"Red"_s})),
      m_clickThrough(new ToggleSwitch(u"Click-through"_s, VeylaTheme::accentGreen())),
      m_isVisible(new ToggleSwitch(u"Visible"_s, VeylaTheme::accentGreen())),
      m_position(new TextLabel({}, {11}, VeylaTheme::textSecondary())),
      m_maskIDText(new TextLabel({}, {10}, VeylaTheme::textMuted())),
      m_turnUpdate(scheduler, [this] { update(); }) {
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(16);
    layout->addWidget(header());
    layout->addWidget(appearanceCard(anchors));
    layout->addWidget(positionCard());
    layout->addWidget(footer());
    layout->addStretch(1);
    m_turnUpdate.follow(state.masks, state.selectedMaskID);
    update();
}

void InspectorView::addSection(QWidget* section) {
    auto* const rows = static_cast<QVBoxLayout*>(layout());
    const int belowSections = 2;  // the footer, and the room that is left
    rows->insertWidget(rows->count() - belowSections, section);
    // The footer is passed last, although it was there first.
    QWidget* last = m_remove;
    for (QWidget* const inside : section->findChildren<QWidget*>())
        if ((inside->focusPolicy() & Qt::TabFocus) == Qt::TabFocus) last = inside;
    if (last != m_remove) setTabOrder(last, m_remove);
}

QWidget* InspectorView::header() {
    m_name->setAccessibleName(u"Mask name"_s);
    setAccessibleIdentifier(*m_name, u"mask-name-field"_s);
    connect(m_name, &QLineEdit::returnPressed, this, [this] { submitName(); });
    connect(m_duplicate, &QPushButton::clicked, this, [this] { m_state.duplicateSelectedMask(); });
    connect(m_visibility, &QPushButton::clicked, this,
            [this] { m_state.toggleSelectedMaskVisibility(); });
    m_summary->setContentsMargins(0, 0, 0, 0);
    return row(8, {{column(2, {m_name, m_summary}), 1}, m_duplicate, m_visibility});
}

FormCard* InspectorView::appearanceCard(CoachmarkAnchors& anchors) {
    auto* const card = new FormCard(u"Appearance & Behavior"_s, u"slider.horizontal.3"_s);
    anchors.mark(card->addRow(u"Mask Style"_s, styleRow()), CoachmarkAnchor::maskStyle);
    card->addRow(u"Opacity"_s, opacityRow());
    card->addRow(u"Mask Color"_s, colorRow());
    anchors.mark(card->addRow(u"Toggles"_s, toggles()), CoachmarkAnchor::clickThrough);
    return card;
}

QWidget* InspectorView::styleRow() {
    m_styles->onChoose([this](int index) {
        if (m_maskID)
            m_state.setStyle(*m_maskID, ScreenMask::allStyles.at(static_cast<std::size_t>(index)));
    });
    return m_styles;
}

QWidget* InspectorView::opacityRow() {
    constexpr int textWidth = 34;
    m_opacity->setAccessibleName(u"Opacity"_s);
    m_opacity->onChange([this](double opacity) {
        if (m_maskID) m_state.setOpacity(*m_maskID, opacity);
    });
    m_opacityText->setLineWidth(qRound(textWidth * textScale()));
    m_opacityText->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    return row(8, {{m_opacity, 1}, m_opacityText});
}

QWidget* InspectorView::colorRow() {
    m_colors->onChoose([this](int index) {
        if (m_maskID) m_state.setColorHex(*m_maskID, palette().at(static_cast<std::size_t>(index)));
    });
    return m_colors;
}

QWidget* InspectorView::toggles() {
    connect(m_clickThrough, &QCheckBox::toggled, this, [this](bool isOn) {
        if (m_maskID) m_state.setClickThrough(*m_maskID, isOn);
    });
    connect(m_isVisible, &QCheckBox::toggled, this, [this](bool isOn) {
        if (m_maskID) m_state.setVisibility(*m_maskID, isOn);
    });
    return row(24, {m_clickThrough, m_isVisible, LayoutItem::space()});
}

FormCard* InspectorView::positionCard() {
    constexpr double step = 10;
    constexpr double widthStep = 20;
    constexpr int arrowWidth = 26;
    const auto nudge = [this](const QString& title, const QString& label, double dx, double dy) {
        StyledButton* const button = textButton(title, {10}, padding(4, 6), 5);
        button->setFixedWidth(arrowWidth);
        button->setAccessibleName(label);
        button->setToolTip(label);
        connect(button, &QPushButton::clicked, this,
                [this, dx, dy] { m_state.nudgeSelectedMask(dx, dy); });
        return button;
    };
    const auto resizer = [this](const QString& title, double width, double height) {
        StyledButton* const button = textButton(title, {11}, padding(8, 8), 7);
        connect(button, &QPushButton::clicked, this,
                [this, width, height] { m_state.resizeSelectedMask(width, height); });
        return button;
    };
    auto* const card =
        new FormCard(u"Position & Scaling"_s, u"arrow.up.left.and.arrow.down.right"_s);
    card->addWide(m_position);
    card->addRow(
        u"Nudge Layer"_s,
        row(6, {nudge(u"▲"_s, u"Nudge up"_s, 0, step), nudge(u"▼"_s, u"Nudge down"_s, 0, -step),
                nudge(u"◀"_s, u"Nudge left"_s, -step, 0), nudge(u"▶"_s, u"Nudge right"_s, step, 0),
                LayoutItem::space()}));
    card->addRow(
        u"Resize Layer"_s,
        row(6, {resizer(u"Narrower (-20)"_s, -widthStep, 0),
                resizer(u"Wider (+20)"_s, widthStep, 0), resizer(u"Shorter (-10)"_s, 0, -step),
                resizer(u"Taller (+10)"_s, 0, step), LayoutItem::space()}));
    return card;
}

QWidget* InspectorView::footer() {
    ButtonLook look;
    look.text = {11, QFont::Medium};
    look.textColor = VeylaTheme::accentRed();
    look.fill = VeylaTheme::withOpacity(VeylaTheme::accentRed(), 0.1);
    look.border = VeylaTheme::withOpacity(VeylaTheme::accentRed(), 0.25);
    look.padding = padding(12, 8);
    m_remove = new StyledButton(u"Delete Mask"_s, look);
    m_remove->setAccessibleName(u"Delete mask permanently"_s);
    setAccessibleIdentifier(*m_remove, u"delete-mask-button"_s);
    connect(m_remove, &QPushButton::clicked, this, [this] { m_state.deleteSelectedMask(); });
    return row(12, {{m_maskIDText, 1}, m_remove});
}

void InspectorView::update() {
    if (const auto mask = m_state.activeMask())
        showMask(*mask);
    else
        m_maskID.reset();
}

void InspectorView::showMask(const ScreenMask& mask) {
    if (m_maskID != mask.id) {
        m_maskID = mask.id;
        m_name->setText(mask.name);
        m_name->setCursorPosition(0);
    }
    m_summary->showText(u"%1 × %2 px · %3"_s.arg(truncatedText(mask.frame.width),
                                                 truncatedText(mask.frame.height),
                                                 ScreenMask::displayName(mask.style)));
    const QString label = mask.isVisible ? u"Hide"_s : u"Show"_s;
    m_visibility->show(QString(), mask.isVisible ? u"eye"_s : u"eye.slash"_s);
    if (m_visibility->accessibleName() != label) {
        m_visibility->setAccessibleName(label);
        m_visibility->setToolTip(label);
    }
    m_styles->showChoice(choiceOf(mask.style, ScreenMask::allStyles));
    m_opacity->showAmount(mask.opacity);
    m_opacityText->showText(truncatedText(mask.opacity * 100) + u'%');
    m_colors->showChoice(choiceOf(mask.colorHex, palette()));
    m_clickThrough->showIsOn(mask.isClickThrough);
    m_isVisible->showIsOn(mask.isVisible);
    m_position->showText(
        u"X: %1,  Y: %2 px"_s.arg(truncatedText(mask.frame.x), truncatedText(mask.frame.y)));
    m_maskIDText->showText(u"Mask ID: "_s + uuidText(mask.id));
}

void InspectorView::reloadName() {
    if (const auto mask = m_state.activeMask()) m_name->setText(mask->name);
    // A name that is too long shows how it begins.
    m_name->setCursorPosition(0);
}

void InspectorView::submitName() {
    const QString name = m_name->text().trimmed();
    if (m_maskID && !name.isEmpty()) m_state.setMaskName(*m_maskID, name);
}
