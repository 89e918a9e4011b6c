#include "Views/Sheets/SavePresetSheet.h"

#include "Platform/AccessibleIdentifier.h"
#include "Views/Components/ApplicationMenu.h"
#include "Views/Components/PlainTextField.h"
#include "Views/Components/SpokenNote.h"
#include "Views/Components/StyledButton.h"
#include "Views/Components/TextLabel.h"
#include "Views/Components/ToggleSwitch.h"
#include "Views/Design/Layout.h"
#include "Views/Design/VeylaTheme.h"

#include <QSignalBlocker>

using namespace Qt::Literals::StringLiterals;

namespace {

PlainTextField* field(const QString& name, const QString& placeholder, const QString& identifier) {
    auto* const field = new PlainTextField(placeholder, {13}, PlainTextField::Border::rounded);
    field->setAccessibleName(name);
    setAccessibleIdentifier(*field, identifier);
    return field;
}

QWidget* labelled(const QString& label, QWidget* control) {
    return column(
        5, {new TextLabel(label, {11, QFont::Medium}, VeylaTheme::textSecondary()), control});
}

// What the user types must not be disturbed by its own echo.
void showText(PlainTextField* field, const QString& text) {
    if (field->text() == text) return;
    const QSignalBlocker silence(field);
    field->setText(text);
}

}  // namespace

SavePresetSheet::SavePresetSheet(AppState& state, Scheduler& scheduler)
    : m_state(state),
      m_name(field(u"Preset name"_s, u"Demo Privacy"_s, u"preset-name-field"_s)),
      m_trigger(field(u"Trigger or app"_s, u"Manual, OBS, Zoom"_s, u"preset-trigger-field"_s)),
      m_autoApply(
          new ToggleSwitch(u"Auto-apply for current frontmost app"_s, VeylaTheme::accentGreen())),
      m_target(new TextLabel({}, {11}, VeylaTheme::accentGreen(), TextLabel::Lines::paragraph)),
      m_choose(textButton(u"Choose App…"_s, {11, QFont::Medium}, padding(10, 5), 7)),
      m_targetRow(row(10, {{m_target, 1}, {m_choose, 0, Qt::AlignTop}})),
      m_targetHint(new SpokenNote(u"Choose the app to auto-apply for."_s)),
      m_hint(new SpokenNote(u"A preset needs a name."_s)),
      m_cancel(cancelButton()),
      m_save(prominentButton(u"Save"_s, VeylaTheme::accentIndigo())),
      m_turnUpdate(scheduler, [this] { update(); }) {
    constexpr int inset = 24;
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(inset, inset, inset, inset);
    layout->setSpacing(16);
    layout->addWidget(
        column(4, {new TextLabel(u"Save Preset"_s, {20}, VeylaTheme::textPrimary()),
                   new TextLabel(u"Capture current masks as a reusable layout."_s, {12},
                                 VeylaTheme::textSecondary(), TextLabel::Lines::paragraph)}));
    layout->addWidget(column(5, {labelled(u"Preset name"_s, m_name), m_hint}));
    layout->addWidget(labelled(u"Trigger or app"_s, m_trigger));
    layout->addWidget(column(6, {m_autoApply, m_targetRow, m_targetHint}));
    layout->addWidget(row(8, {LayoutItem::space(), m_cancel, m_save}));
    setAccessibleIdentifier(*m_autoApply, u"preset-auto-apply-switch"_s);
    setAccessibleIdentifier(*m_choose, u"preset-choose-app-button"_s);
    setAccessibleIdentifier(*m_cancel, u"cancel-save-preset-button"_s);
    setAccessibleIdentifier(*m_save, u"save-preset-button"_s);
    bindFields();
    m_turnUpdate.follow(state.presetDraftName, state.presetDraftTrigger, state.presetDraftAutoApply,
                        state.currentFrontmostAppName, state.currentFrontmostBundleIdentifier,
                        state.presetDraftTarget);
    update();
}

SheetContent SavePresetSheet::content(AppState& state, Scheduler& scheduler) {
    auto* const view = new SavePresetSheet(state, scheduler);
    return {.title = u"Save Preset"_s,
            .view = view,
            .width = 400,
            .ground = VeylaTheme::window(),
            .firstFocus = view->m_name,
            .onDismiss = [&state] { state.cancelSavePresetFlow(); },
            .onSubmit = [view] { view->save(); }};
}

void SavePresetSheet::bindFields() {
    // Assistive technology changes texts, too, and does not count as editing.
    connect(m_name, &QLineEdit::textChanged, this,
            [this](const QString& text) { m_state.presetDraftName.set(text); });
    connect(m_trigger, &QLineEdit::textChanged, this,
            [this](const QString& text) { m_state.presetDraftTrigger.set(text); });
    connect(m_autoApply, &QCheckBox::toggled, this,
            [this](bool isOn) { m_state.presetDraftAutoApply.set(isOn); });
    connect(m_choose, &QPushButton::clicked, this, [this] { chooseApplication(); });
    connect(m_cancel, &QPushButton::clicked, this, [this] { m_state.cancelSavePresetFlow(); });
    connect(m_save, &QPushButton::clicked, this, [this] { save(); });
}

void SavePresetSheet::update() {
    // The drafts are emptied when the sheet closes.
    if (!m_state.isSavePresetPresented.value()) return;
    showText(m_name, m_state.presetDraftName.value());
    showText(m_trigger, m_state.presetDraftTrigger.value());
    m_autoApply->showIsOn(m_state.presetDraftAutoApply.value());
    showTarget();
    if (!m_state.presetDraftName.value().trimmed().isEmpty()) {
        m_hint->hide();
        m_name->setAccessibleDescription({});
    }
}

void SavePresetSheet::showTarget() {
    const auto application = m_state.presetDraftApplication();
    m_target->setColor(application ? VeylaTheme::accentGreen() : VeylaTheme::textSecondary());
    m_target->showText(application ? u"Will auto-apply when %1 becomes active."_s.arg(
                                         onOneLine(application->localizedName.value_or(QString())))
                                   : u"Veyla itself is in front."_s);
    const bool isWanted = m_state.presetDraftAutoApply.value();
    m_targetRow->setVisible(isWanted);
    if (!isWanted || application) m_targetHint->hide();
}

void SavePresetSheet::chooseApplication() {
    const auto current = m_state.presetDraftApplication();
    openApplicationMenu(*m_choose, m_state.applicationsToBind(),
                        current ? current->bundleIdentifier : std::nullopt,
                        [this](const RunningApplication& application) {
                            m_state.presetDraftTarget.set(application);
                        });
}

void SavePresetSheet::save() {
    m_state.confirmSavePreset();
    if (!m_state.isSavePresetPresented.newest()) return;
    if (!m_state.presetDraftName.newest().trimmed().isEmpty()) {
        // What is missing is the application.
        m_targetHint->say();
        m_choose->setFocus(Qt::OtherFocusReason);
        return;
    }
    // The name is blank, which is said each time.
    m_hint->say();
    m_name->setAccessibleDescription(m_hint->accessibleName());
    m_name->setFocus(Qt::OtherFocusReason);
}
