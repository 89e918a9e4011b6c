#include "Views/Settings/SettingsView.h"

#include "Platform/AccessibleIdentifier.h"
#include "Views/Components/AmountSlider.h"
#include "Views/Components/ChoiceRow.h"
#include "Views/Components/MaskChoices.h"
#include "Views/Components/TextLabel.h"
#include "Views/Components/ToggleSwitch.h"
#include "Views/Design/ApplicationLook.h"
#include "Views/Design/VeylaCard.h"
#include "Views/Design/VeylaTheme.h"
#include "Views/Settings/TrayOnlyCaption.h"

#include <QBoxLayout>
#include <QPainter>
#include <QRadioButton>
#include <QScrollArea>
#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr double leastOpacity = 0.15;
constexpr double bodySize = 13;
constexpr int windowPadding = 24;
constexpr int cardPadding = 20;

/// Inside a card.
int paragraphWidth() {
    constexpr int scrollBarWidth = 10;
    return SettingsView::contentSize().width() - 2 * (windowPadding + cardPadding) - scrollBarWidth;
}

TextLabel* bodyText(const QString& text) {
    return new TextLabel(text, {bodySize}, VeylaTheme::textPrimary());
}

ToggleSwitch* bodySwitch(const QString& title, const QString& identifier) {
    auto* const toggle = new ToggleSwitch(title, VeylaTheme::accentGreen());
    toggle->setFont(systemFont({bodySize}));
    setAccessibleIdentifier(*toggle, identifier);
    return toggle;
}

/// The views one after the other; lengths are in points. Without a view of its own, unlike `stack`:
/// each would cost as much as a label when the window is shown.
QBoxLayout* inLine(QBoxLayout::Direction direction, int spacing,
                   std::initializer_list<QWidget*> views) {
    auto* const layout = new QBoxLayout(direction);
    layout->setSpacing(spacing);
    for (QWidget* const view : views)
        layout->addWidget(view);
    return layout;
}

/// A card with a title in capitals.
class Section final : public QWidget {
public:
    Section(const QString& title, int spacing) : m_rows(new QVBoxLayout(this)) {
        const TextStyle style{
            .size = 12, .weight = QFont::Black, .tracking = 1, .isUpperCase = true};
        m_rows->setSpacing(spacing);
        m_rows->setContentsMargins(cardPadding, cardPadding, cardPadding, cardPadding);
        add(new TextLabel(title, style, VeylaTheme::accentBlue()));
    }

    void add(QWidget* view) { m_rows->addWidget(view); }
    void add(QLayout* views) { m_rows->addLayout(views); }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        paintPanel(painter, rect(), VeylaCardModifier::cornerRadius, VeylaTheme::panel(),
                   VeylaTheme::border());
    }

private:
    QVBoxLayout* m_rows;
};

/// Shows the content with a scroll bar beside it. The keyboard starts here, where it scrolls.
QScrollArea* scrolling(QWidget* content) {
    auto* const area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setWidgetResizable(true);
    area->setFocusPolicy(Qt::ClickFocus);
    area->viewport()->setAutoFillBackground(false);
    styleScrollBar(*area);
    area->setWidget(content);
    content->setAutoFillBackground(false);
    return area;
}

}  // namespace

const std::array<QString, 5>& SettingsView::swatches() {
    static const std::array<QString, 5> colors{u"#101114"_s, u"#18222E"_s, u"#103847"_s,
                                               u"#40204A"_s, u"#8A1B1B"_s};
    return colors;
}

QSize SettingsView::contentSize() {
    return (QSizeF(560, 620) * textScale()).toSize();
}

SettingsView::SettingsView(AppState& state, Scheduler& scheduler, LoginItem& loginItem)
    : m_state(state),
      m_loginItem(loginItem),
      m_opacityText(bodyText({})),
      m_opacity(new AmountSlider(leastOpacity, 1, VeylaTheme::accentBlue())),
      m_styles(new ChoiceRow(maskStyleNames())),
      m_clickThrough(bodySwitch(u"Default click-through"_s, u"settings-default-click-through"_s)),
      m_colors(new ChoiceRow(swatchColors(SettingsView::swatches()),
                             {u"Black"_s, u"Slate"_s, u"Teal"_s, u"Plum"_s, u"Red"_s},
                             {24, 28, 6, VeylaTheme::accentBlue()})),
      m_showHelpOnLaunch(bodySwitch(u"Show help on launch"_s, u"settings-show-help-on-launch"_s)),
      m_menuBarOnlyMode(
          bodySwitch(u"Prefer menu bar utility mode"_s, u"settings-menu-bar-only-mode"_s)),
      m_showDashboardOnLaunch(
          bodySwitch(u"Show dashboard on launch"_s, u"settings-show-dashboard-on-launch"_s)),
      m_startAtLogin(bodySwitch(u"Start at login"_s, u"settings-start-at-login"_s)),
      m_loginFailure(new TextLabel({}, {11}, VeylaTheme::accentRed(), TextLabel::Lines::paragraph)),
      m_turnUpdate(scheduler, [this] { update(); }) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    auto* const content = new QWidget;
    auto* const items = new QVBoxLayout(content);
    items->setContentsMargins(windowPadding, windowPadding, windowPadding, windowPadding);
    items->setSpacing(18);
    items->addLayout(header());
    for (QWidget* const card : {newMaskCard(), behaviorCard(), hotkeysCard()})
        items->addWidget(card);
    items->addStretch(1);
    QScrollArea* const area = scrolling(content);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(area);
    setFocusProxy(area);
    m_turnUpdate.follow(state.settings);
    update();
}

QLayout* SettingsView::header() {
    return inLine(
        QBoxLayout::TopToBottom, 6,
        {new TextLabel(u"Settings"_s, {28, QFont::Bold}, VeylaTheme::textPrimary()),
         new TextLabel(u"Tune new-mask defaults, launch behavior, and keyboard control."_s,
                       {13, QFont::Medium}, VeylaTheme::textSecondary())});
}

QWidget* SettingsView::newMaskCard() {
    m_opacity->setAccessibleName(u"Opacity"_s);
    setAccessibleIdentifier(*m_opacity, u"settings-default-opacity"_s);
    m_opacity->onChange([this](double opacity) {
        m_state.settings.update([&](AppSettings& settings) { settings.defaultOpacity = opacity; });
    });
    connect(m_clickThrough, &QCheckBox::toggled, this, [this](bool isOn) {
        m_state.settings.update(
            [&](AppSettings& settings) { settings.defaultClickThrough = isOn; });
    });
    auto* const card = new Section(u"New Mask Defaults"_s, 16);
    card->add(inLine(QBoxLayout::TopToBottom, 8, {m_opacityText, m_opacity}));
    card->add(styleRow());
    card->add(m_clickThrough);
    card->add(colorRow());
    return card;
}

QLayout* SettingsView::styleRow() {
    m_styles->onChoose([this](int index) {
        m_state.settings.update([&](AppSettings& settings) {
            settings.defaultStyle = ScreenMask::allStyles.at(static_cast<std::size_t>(index));
        });
    });
    for (int index = 0; index < static_cast<int>(ScreenMask::allStyles.size()); ++index)
        setAccessibleIdentifier(
            *m_styles->button(index),
            u"settings-default-style-"_s +
                ScreenMask::storedText(ScreenMask::allStyles.at(static_cast<std::size_t>(index))));
    QBoxLayout* const row = inLine(QBoxLayout::LeftToRight, 12, {bodyText(u"Style"_s), m_styles});
    row->setStretch(1, 1);
    return row;
}

QLayout* SettingsView::colorRow() {
    m_colors->onChoose([this](int index) {
        m_state.settings.update([&](AppSettings& settings) {
            settings.defaultColorHex = swatches().at(static_cast<std::size_t>(index));
        });
    });
    for (int index = 0; index < static_cast<int>(swatches().size()); ++index)
        setAccessibleIdentifier(
            *m_colors->button(index),
            u"settings-default-color-"_s + swatches().at(static_cast<std::size_t>(index)).mid(1));
    return inLine(QBoxLayout::TopToBottom, 8, {bodyText(u"Default color"_s), m_colors});
}

QWidget* SettingsView::behaviorCard() {
    const auto connectTo = [this](ToggleSwitch* toggle, bool AppSettings::*field) {
        connect(toggle, &QCheckBox::toggled, this, [this, field](bool isOn) {
            m_state.settings.update([&](AppSettings& settings) { settings.*field = isOn; });
        });
    };
    connectTo(m_showHelpOnLaunch, &AppSettings::showHelpOnLaunch);
    connectTo(m_menuBarOnlyMode, &AppSettings::menuBarOnlyMode);
    connectTo(m_showDashboardOnLaunch, &AppSettings::showDashboardOnLaunch);
    connect(m_startAtLogin, &QCheckBox::toggled, this,
            [this](bool isOn) { setStartsAtLogin(isOn); });
    setAccessibleIdentifier(*m_loginFailure, u"settings-start-at-login-failure"_s);
    m_loginFailure->hide();
    auto* const card = new Section(u"Behavior"_s, 16);
    auto* const caption = new TextLabel(trayOnlyCaption().join(u' '), {11},
                                        VeylaTheme::textSecondary(), TextLabel::Lines::paragraph);
    caption->setParagraphWidth(paragraphWidth());
    for (QWidget* const toggle : {m_showHelpOnLaunch, m_menuBarOnlyMode})
        card->add(toggle);
    card->add(inLine(QBoxLayout::TopToBottom, 6, {m_showDashboardOnLaunch, caption}));
    card->add(inLine(QBoxLayout::TopToBottom, 6, {m_startAtLogin, m_loginFailure}));
    return card;
}

QWidget* SettingsView::hotkeysCard() {
    // As wide as the card has room, so that the layout does not have to try widths.
    const auto line = [](const QString& text) {
        auto* const label = new TextLabel(text, {12}, VeylaTheme::textSecondary());
        label->setFixedWidth(paragraphWidth());
        return label;
    };
    auto* const last = new TextLabel(
        u"In-app menu shortcuts use Option-Command instead of Control-Option-Command."_s, {12},
        VeylaTheme::textSecondary(), TextLabel::Lines::paragraph);
    last->setParagraphWidth(paragraphWidth());
    auto* const card = new Section(u"Global Hotkeys"_s, 14);
    for (const auto& text : {u"Control-Option-Command-N creates a mask."_s,
                             u"Control-Option-Command-H hides or shows all masks."_s,
                             u"Control-Option-Command-L locks or unlocks editing."_s,
                             u"Control-Option-Command-S toggles the dashboard window."_s})
        card->add(line(text));
    card->add(last);
    return card;
}

void SettingsView::update() {
    const AppSettings& settings = m_state.settings.value();
    m_opacityText->showText(u"Opacity "_s + truncatedText(settings.defaultOpacity * 100) + u'%');
    m_opacity->showAmount(settings.defaultOpacity);
    m_styles->showChoice(choiceOf(settings.defaultStyle, ScreenMask::allStyles));
    m_clickThrough->showIsOn(settings.defaultClickThrough);
    m_colors->showChoice(choiceOf(settings.defaultColorHex, swatches()));
    m_showHelpOnLaunch->showIsOn(settings.showHelpOnLaunch);
    m_menuBarOnlyMode->showIsOn(settings.menuBarOnlyMode);
    m_showDashboardOnLaunch->showIsOn(settings.showDashboardOnLaunch);
}

void SettingsView::setStartsAtLogin(bool isOn) {
    showLoginItem(m_loginItem.setEnabled(isOn).value_or(QString()));
}

void SettingsView::showLoginItem(const QString& failure) {
    m_startAtLogin->showIsOn(m_loginItem.isEnabled());
    m_startAtLogin->update();
    m_loginFailure->showText(failure);
    m_loginFailure->setVisible(!failure.isEmpty());
    if (m_startAtLogin->accessibleDescription() != failure)
        m_startAtLogin->setAccessibleDescription(failure);
}

void SettingsView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!event->spontaneous()) showLoginItem({});
}

void SettingsView::paintEvent(QPaintEvent* /*event*/) {
    QPainter(this).fillRect(rect(), VeylaTheme::background());
}
