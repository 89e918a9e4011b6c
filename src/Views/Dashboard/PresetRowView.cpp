#include "Views/Dashboard/PresetRowView.h"

#include "Platform/AccessibleIdentifier.h"
#include "Views/Components/ApplicationMenu.h"
#include "Views/Components/PlainTextField.h"
#include "Views/Components/SheetArea.h"
#include "Views/Components/StyledButton.h"
#include "Views/Components/TextLabel.h"
#include "Views/Design/Layout.h"
#include "Views/Design/VeylaCard.h"
#include "Views/Design/VeylaTheme.h"
#include "Views/Sheets/ConfirmationView.h"

#include <QHideEvent>
#include <QKeyEvent>
#include <QPainter>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int cardPadding = 14;

QString maskCount(const MaskPreset& preset) {
    return QString::number(preset.masks.size()) + u" masks"_s;
}

PlainTextField* draftField(const QString& name, const QString& identifier) {
    auto* const field = new PlainTextField(name, {12}, PlainTextField::Border::rounded);
    field->setAccessibleName(name);
    setAccessibleIdentifier(*field, identifier);
    return field;
}

}  // namespace

PresetRowView::PresetRowView(const MaskPreset& preset, const Actions& actions, SheetArea& sheets)
    : m_preset(preset),
      m_actions(actions),
      m_sheets(&sheets),
      m_name(new TextLabel({}, {14}, VeylaTheme::textPrimary())),
      m_summary(new TextLabel({}, {11}, VeylaTheme::textSecondary())),
      m_activation(new TextLabel({}, {10}, VeylaTheme::accentBlue())),
      m_displayed(displayed()) {
    setAccessibleIdentifier(*this, u"preset-card-"_s + uuidText(preset.id));
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(cardPadding, cardPadding, cardPadding, cardPadding);
    layout->addWidget(m_displayed);
    describe();
}

// The confirmation asks about a preset that goes with the card.
PresetRowView::~PresetRowView() {
    if (m_isDeleteConfirmPresented) endConfirmation();
}

void PresetRowView::show(const MaskPreset& preset) {
    if (preset == m_preset) return;
    m_preset = preset;
    describe();
}

void PresetRowView::describe() {
    const QString count = maskCount(m_preset);
    setAccessibleName(u"Preset: "_s + onOneLine(m_preset.name) + u", "_s + count +
                      u", trigger: "_s + onOneLine(m_preset.trigger));
    m_name->showText(m_preset.name);
    m_summary->showText(count + u" • Trigger: "_s + m_preset.trigger);
    m_activation->showText(m_preset.activationSummary());
    m_activation->setVisible(m_preset.autoApply);
    // The keyboard stays in the place where it was pressed.
    const bool hadKeyboard = m_bind->hasFocus() || m_manual->hasFocus();
    (m_preset.autoApply ? m_manual : m_bind)->setVisible(true);
    if (hadKeyboard) (m_preset.autoApply ? m_manual : m_bind)->setFocus(Qt::OtherFocusReason);
    (m_preset.autoApply ? m_bind : m_manual)->setVisible(false);
    if (m_count) m_count->showText(count);
}

StyledButton* PresetRowView::control(StyledButton* button, const QString& identifier,
                                     const std::function<void()>& action) {
    setAccessibleIdentifier(*button, identifier + u'-' + uuidText(m_preset.id));
    connect(button, &QPushButton::clicked, this, action);
    return button;
}

QWidget* PresetRowView::displayed() {
    const TextStyle style{11, QFont::Medium};
    m_load = control(prominentButton(u"Load"_s), u"preset-load"_s, [this] { m_actions.onLoad(); });
    m_bind = control(textButton(u"Bind App"_s, style, padding(10, 7), 7), u"preset-bind"_s, [this] {
        if (!m_actions.onBindToCurrentApp()) chooseApplication(*m_bind);
    });
    m_manual = control(textButton(u"Manual"_s, style, padding(10, 7), 7), u"preset-manual"_s,
                       [this] { m_actions.onClearBinding(); });
    const Symbol arrow{u"chevron.down"_s, 10, SymbolWeight::regular, VeylaTheme::textSecondary()};
    m_choose = control(bareIconButton(u"Bind to a running application"_s, arrow, {18, 28}),
                       u"preset-choose"_s, [this] { chooseApplication(*m_choose); });
    m_edit = control(iconButton(u"Edit preset"_s, u"pencil"_s), u"preset-edit"_s,
                     [this] { beginEditing(); });
    auto* const remove = control(iconButton(u"Delete preset"_s, u"trash"_s), u"preset-delete"_s,
                                 [this] { confirmDelete(); });
    remove->setSymbolColor(VeylaTheme::accentRed());
    // Cards are as high as each other, with and without the line.
    QSizePolicy policy = m_activation->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    m_activation->setSizePolicy(policy);
    return column(10, {column(3, {m_name, m_summary, m_activation}),
                       row(6, {m_load, row(2, {m_bind, m_manual, m_choose}), LayoutItem::space(),
                               m_edit, remove})});
}

QWidget* PresetRowView::edited() {
    const QString id = u'-' + uuidText(m_preset.id);
    m_draftName = draftField(u"Preset name"_s, u"preset-draft-name"_s + id);
    m_draftTrigger = draftField(u"Trigger"_s, u"preset-draft-trigger"_s + id);
    m_count = new TextLabel(maskCount(m_preset), {11}, VeylaTheme::textSecondary());
    auto* const cancel = control(cancelButton(), u"preset-cancel"_s, [this] { setEditing(false); });
    m_save = control(prominentButton(u"Save"_s), u"preset-save"_s, [this] { saveDraft(); });
    connect(m_draftName, &QLineEdit::textChanged, this, [this] { updateSave(); });
    return column(8, {m_draftName, m_draftTrigger, row(6, {{m_count, 1}, cancel, m_save})});
}

void PresetRowView::chooseApplication(QWidget& control) {
    openApplicationMenu(
        control, m_actions.applications(),
        m_preset.autoApply ? m_preset.targetBundleIdentifier : std::nullopt,
        [this](const RunningApplication& application) { m_actions.onBind(application); });
}

void PresetRowView::beginEditing() {
    if (!m_edited) {
        m_edited = edited();
        layout()->addWidget(m_edited);
    }
    m_draftName->setText(m_preset.name);
    m_draftTrigger->setText(m_preset.trigger);
    updateSave();
    setEditing(true);
    m_draftName->selectAll();
}

// What is hidden must not have the keyboard, which would wander.
void PresetRowView::setEditing(bool isEditing) {
    m_isEditing = isEditing;
    (isEditing ? m_edited : m_displayed)->show();
    (isEditing ? static_cast<QWidget*>(m_draftName) : m_edit)->setFocus(Qt::OtherFocusReason);
    (isEditing ? m_displayed : m_edited)->hide();
    m_actions.onResize();
}

void PresetRowView::saveDraft() {
    if (!m_save->isEnabled()) return;
    m_actions.onSave(m_draftName->text(), m_draftTrigger->text());
    setEditing(false);
}

void PresetRowView::updateSave() {
    m_save->setEnabled(!m_draftName->text().trimmed().isEmpty());
}

void PresetRowView::confirmDelete() {
    // Assistive technology may press what lies behind a sheet.
    if (m_sheets->isPresented(SheetLevel::confirmation)) return;
    m_isDeleteConfirmPresented = true;
    m_sheets->present(
        SheetLevel::confirmation,
        confirmationSheet({.title = u"Delete \""_s + onOneLine(m_preset.name) + u"\"?"_s,
                           .message = u"This preset and its %1 saved masks will be permanently "
                                      "removed."_s.arg(m_preset.masks.size()),
                           .destructiveTitle = u"Delete Preset"_s,
                           .onConfirm =
                               [this] {
                                   endConfirmation();
                                   m_actions.onDelete();
                               },
                           .onCancel = [this] { endConfirmation(); }}));
}

void PresetRowView::endConfirmation() {
    m_isDeleteConfirmPresented = false;
    if (m_sheets) m_sheets->dismiss(SheetLevel::confirmation);
}

void PresetRowView::takeKeyboard() {
    (m_isEditing ? static_cast<QWidget*>(m_draftName) : m_load)->setFocus(Qt::OtherFocusReason);
}

void PresetRowView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const VeylaCardModifier look;
    look.paintBackground(painter, rect());
    look.paintBorder(painter, rect());
}

void PresetRowView::keyPressEvent(QKeyEvent* event) {
    if (!m_isEditing) return event->ignore();
    switch (event->key()) {
        case Qt::Key_Escape:
            return setEditing(false);
        case Qt::Key_Return:
        case Qt::Key_Enter:
            // On a button it would do something else than the button says.
            if (m_draftName->hasFocus() || m_draftTrigger->hasFocus()) return saveDraft();
            [[fallthrough]];
        default:
            event->ignore();
    }
}

// What is begun ends when the card is no longer shown.
void PresetRowView::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    if (event->spontaneous()) return;
    if (m_isDeleteConfirmPresented) endConfirmation();
    if (!std::exchange(m_isEditing, false)) return;
    m_edited->hide();
    m_displayed->show();
}
