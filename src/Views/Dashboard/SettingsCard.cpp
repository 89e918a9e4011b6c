#include "Views/Dashboard/SettingsCard.h"

#include "Platform/AccessibleIdentifier.h"
#include "Views/Components/CheckBox.h"
#include "Views/Components/FormCard.h"
#include "Views/Components/StyledButton.h"
#include "Views/Components/TextLabel.h"
#include "Views/Design/Layout.h"
#include "Views/Design/VeylaTheme.h"
#include "Views/Settings/HotkeyRecorderView.h"
#include "Views/Settings/TrayOnlyCaption.h"

using namespace Qt::Literals::StringLiterals;

namespace {

struct Behavior {
    const char16_t* title;
    const char16_t* identifier;
    bool (*isOn)(const AppSettings& settings);
    void (*write)(AppSettings& settings, bool isOn);
    /// Whether the caption stands below it.
    bool hasCaption = false;
};

constexpr std::array<Behavior, 4> behaviorTable{{
    {u"Show help on launch", u"behavior-show-help-on-launch",
     [](const AppSettings& settings) { return settings.showHelpOnLaunch; },
     [](AppSettings& settings, bool isOn) { settings.showHelpOnLaunch = isOn; }},
    {u"Menu bar utility mode", u"behavior-menu-bar-only-mode",
     [](const AppSettings& settings) { return settings.menuBarOnlyMode; },
     [](AppSettings& settings, bool isOn) { settings.menuBarOnlyMode = isOn; }},
    {u"Show dashboard on launch", u"behavior-show-dashboard-on-launch",
     [](const AppSettings& settings) { return settings.showDashboardOnLaunch; },
     [](AppSettings& settings, bool isOn) { settings.showDashboardOnLaunch = isOn; }, true},
    {u"Auto-show masks when screen sharing", u"behavior-auto-show-masks-on-screen-share",
     [](const AppSettings& settings) {
         return settings.autoShowMasksOnScreenShare.value_or(false);
     },
     [](AppSettings& settings, bool isOn) { settings.autoShowMasksOnScreenShare = isOn; }},
}};

/// Lines that are never cut: one that wraps would make every layout around it try widths.
QWidget* caption(const QStringList& lines) {
    constexpr QMargins belowTheTitle{24, 0, 0, 4};
    QWidget* const view = column(0, {}, belowTheTitle);
    for (const QString& line : lines) {
        auto* const label = new TextLabel(line, {10}, VeylaTheme::textSecondary());
        label->setMinimumWidth(label->sizeHint().width());
        view->layout()->addWidget(label);
    }
    return view;
}

}  // namespace

SettingsCard::SettingsCard(AppState& state, Scheduler& scheduler, CoachmarkAnchors& anchors)
    : m_state(state),
      m_hotkeyConflictMessage(
          new TextLabel({}, {10}, VeylaTheme::accentRed(), TextLabel::Lines::paragraph)),
      m_turnUpdate(scheduler, [this] { update(); }) {
    auto* const card = new FormCard(u"Settings"_s, u"gearshape"_s);
    QWidget* const behaviors = behaviorRows();
    QWidget* const hotkeys = hotkeyRows(scheduler);
    card->addRow(u"Behavior"_s, behaviors, m_behaviors.front());
    anchors.mark(card->addRow(u"Hotkeys"_s, hotkeys, m_recorders.front()),
                 CoachmarkAnchor::hotkeys);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(card);
    m_turnUpdate.follow(state.settings);
    update();
}

QWidget* SettingsCard::behaviorRows() {
    auto* const rows = column(4, {});
    for (std::size_t index = 0; index < behaviorTable.size(); ++index) {
        const Behavior& behavior = behaviorTable[index];
        auto* const box = new CheckBox(QString::fromUtf16(behavior.title));
        setAccessibleIdentifier(*box, QString::fromUtf16(behavior.identifier));
        connect(box, &QCheckBox::toggled, this, [this, &behavior](bool isOn) {
            m_state.settings.update([&](AppSettings& settings) { behavior.write(settings, isOn); });
        });
        rows->layout()->addWidget(box);
        if (behavior.hasCaption) rows->layout()->addWidget(caption(trayOnlyCaption()));
        m_behaviors[index] = box;
    }
    return rows;
}

QWidget* SettingsCard::hotkeyRows(Scheduler& scheduler) {
    auto* const rows = column(8, {});
    for (std::size_t index = 0; index < allHotkeyActions.size(); ++index) {
        const HotkeyAction action = allHotkeyActions[index];
        m_recorders[index] = new HotkeyRecorderView(
            m_state, scheduler, action,
            [this, action](HotkeyAction conflicting) { showConflict(action, conflicting); });
        rows->layout()->addWidget(m_recorders[index]);
    }
    m_hotkeyConflictMessage->hide();
    rows->layout()->addWidget(m_hotkeyConflictMessage);

    ButtonLook look;
    look.text = {11, QFont::Medium};
    look.textColor = VeylaTheme::accentBlue();
    look.fill = VeylaTheme::panelMuted();
    look.border = VeylaTheme::softBorder();
    look.padding = padding(10, 6);
    auto* const reset = new StyledButton(u"Reset to Defaults"_s, look);
    reset->setAccessibleDescription(u"Gives all four hotkeys their default shortcuts"_s);
    setAccessibleIdentifier(*reset, u"hotkeys-reset-button"_s);
    connect(reset, &QPushButton::clicked, this, [this] { resetHotkeys(); });
    rows->layout()->addWidget(row(0, {reset, LayoutItem::space()}));
    return rows;
}

void SettingsCard::showConflict(HotkeyAction action, HotkeyAction conflicting) {
    m_hotkeyConflictMessage->showText(hotkeyActionTitle(action) + u" conflicts with "_s +
                                      hotkeyActionTitle(conflicting));
    m_hotkeyConflictMessage->show();
}

void SettingsCard::resetHotkeys() {
    m_state.resetHotkeyBindings();
    m_hotkeyConflictMessage->hide();
    for (HotkeyRecorderView* const recorder : m_recorders)
        recorder->forgetConflict();
}

void SettingsCard::update() {
    const AppSettings& settings = m_state.settings.value();
    for (std::size_t index = 0; index < behaviorTable.size(); ++index)
        m_behaviors[index]->showIsOn(behaviorTable[index].isOn(settings));
}
