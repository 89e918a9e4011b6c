#include "Views/Settings/HotkeyRecorderView.h"

#include "Platform/AccessibleIdentifier.h"
#include "Views/Components/StyledButton.h"
#include "Views/Components/TextLabel.h"
#include "Views/Design/Layout.h"
#include "Views/Design/VeylaTheme.h"
#include "Views/Settings/KeyCaptureView.h"

#include <QEvent>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int titleWidth = 150;
constexpr int leastTextWidth = 100;
constexpr QMargins fieldPadding{10, 5, 10, 5};

ButtonLook fieldLook(bool isRecording) {
    ButtonLook look;
    look.cornerRadius = 7;
    look.padding = fieldPadding;
    if (isRecording) {
        look.text = {11, QFont::Medium};
        look.textColor = VeylaTheme::warning();
        look.fill = VeylaTheme::withOpacity(VeylaTheme::accentBlue(), 0.15);
        look.border = VeylaTheme::withOpacity(VeylaTheme::accentBlue(), 0.5);
    } else {
        look.text = {.size = 11, .weight = QFont::DemiBold, .tracking = 1.5, .isMonospaced = true};
        look.textColor = VeylaTheme::textPrimary();
        look.fill = VeylaTheme::panelMuted();
        look.border = VeylaTheme::softBorder();
    }
    return look;
}

}  // namespace

HotkeyRecorderView::HotkeyRecorderView(AppState& state, Scheduler& scheduler, HotkeyAction action,
                                       OnConflict onConflict)
    : m_state(state),
      m_scheduler(scheduler),
      m_action(action),
      m_onConflict(std::move(onConflict)),
      m_field(new StyledButton({}, fieldLook(false))),
      m_conflict(new TextLabel({}, {10}, VeylaTheme::accentRed())),
      m_refusal(new TextLabel(u"Not working: another program may be using this shortcut."_s, {10},
                              VeylaTheme::warning())),
      m_turnUpdate(scheduler, [this] { update(); }) {
    const QString actionTitle = hotkeyActionTitle(action);
    auto* const title = new TextLabel(actionTitle, {12, QFont::Medium}, VeylaTheme::textPrimary());
    title->setFixedWidth(qRound(titleWidth * textScale()));
    m_field->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    m_field->setMinimumWidth(qRound(leastTextWidth * textScale()) + fieldPadding.left() +
                             fieldPadding.right());
    m_field->setAccessibleName(u"Shortcut for "_s + actionTitle);
    setAccessibleIdentifier(*m_field, u"hotkey-field-"_s + hotkeyBindingKey(action));
    connect(m_field, &QPushButton::clicked, this, [this] { toggleRecording(); });

    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(row(12, {title, m_field, m_conflict, LayoutItem::space()}));
    layout->addWidget(m_refusal);
    m_turnUpdate.follow(state.settings, state.hotkeyManager().registeredActions());
    update();
    // The words of a recording are in a font of another height.
    m_field->setMinimumHeight(m_field->sizeHint().height());
}

HotkeyRecorderView::~HotkeyRecorderView() {
    if (m_capture) m_capture->removeEventFilter(this);
}

void HotkeyRecorderView::forgetConflict() {
    m_conflictAction.reset();
    update();
}

void HotkeyRecorderView::toggleRecording() {
    m_isRecording ? stopRecording() : startRecording();
}

void HotkeyRecorderView::startRecording() {
    releaseKeyboard();
    m_isRecording = true;
    const KeyCaptureView view{[this](quint32 keyCode, quint32 modifiers) {
        capture({.keyCode = keyCode, .modifiers = modifiers});
    }};
    m_capture = view.makeView(this, m_scheduler);
    m_capture->setAccessibleName(u"Press the new shortcut for "_s + hotkeyActionTitle(m_action));
    m_capture->onKeyReleased = [this] { releaseKeyboard(); };
    m_capture->installEventFilter(this);
    // The click that ends the recording must not end it before, by taking the keyboard.
    m_field->setFocusProxy(m_capture);
    window()->activateWindow();
    update();
}

void HotkeyRecorderView::stopRecording() {
    m_isRecording = false;
    releaseKeyboard();
    update();
}

void HotkeyRecorderView::capture(const HotkeyBinding& candidate) {
    if (!std::exchange(m_isRecording, false)) return;
    if (const auto other = m_state.hotkeyConflict(hotkeyBindingKey(m_action), candidate)) {
        m_conflictAction = other;
        m_onConflict(*other);
    } else {
        m_state.setHotkeyBinding(m_action, candidate);
    }
    update();
}

void HotkeyRecorderView::releaseKeyboard() {
    m_suspension.reset();
    KeyCaptureNSView* const capture = m_capture;
    if (!capture) return;
    m_capture.clear();
    capture->removeEventFilter(this);
    m_field->setFocusProxy(nullptr);
    // Not where the keyboard went elsewhere; the field has it when only the window lost it.
    if (window()->focusWidget() == capture) m_field->setFocus(Qt::OtherFocusReason);
    capture->hide();
    capture->deleteLater();
}

bool HotkeyRecorderView::eventFilter(QObject* watched, QEvent* event) {
    if (watched != m_capture) return false;
    // Only while keys come here are they missing elsewhere.
    if (event->type() == QEvent::FocusIn) m_suspension = m_state.suspendHotkeys();
    if (event->type() == QEvent::FocusOut) stopRecording();
    return false;
}

void HotkeyRecorderView::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    stopRecording();
}

void HotkeyRecorderView::update() {
    const HotkeyBinding binding =
        m_state.settings.value().binding(hotkeyBindingKey(m_action)).value_or(HotkeyBinding{});
    m_field->setLook(fieldLook(m_isRecording));
    m_field->show(m_isRecording ? u"Press shortcut…"_s : binding.displayString(), {});
    if (m_conflictAction)
        m_conflict->showText(u"Conflicts with "_s + hotkeyActionTitle(*m_conflictAction));
    m_conflict->setVisible(m_conflictAction.has_value());
    m_refusal->setVisible(!m_isRecording && !m_state.hotkeyManager().isRegistered(m_action));
    describeField(binding);
}

void HotkeyRecorderView::describeField(const HotkeyBinding& binding) {
    // Setting them tells assistive technology, even of what is the same.
    if (const QString keys = binding.keyboardText(); m_field->toolTip() != keys)
        m_field->setToolTip(keys);
    QStringList parts{m_isRecording ? u"Press the new shortcut"_s : binding.keyboardText()};
    for (const TextLabel* const notice : {m_conflict, m_refusal})
        if (!notice->isHidden()) parts << notice->text();
    const QString description = parts.join(u". "_s);
    if (m_field->accessibleDescription() != description)
        m_field->setAccessibleDescription(description);
}
