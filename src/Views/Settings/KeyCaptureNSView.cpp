#include "Views/Settings/KeyCaptureNSView.h"

#include "Models/HotkeyBinding.h"
#include "Models/VirtualKeyCodes.h"

#include <QKeyEvent>
#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <utility>

namespace {

/// Command, Shift, Option and Control.
constexpr std::array<quint32, 4> modifierKeyCodes{55, 56, 58, 59};

/// The flags of a key event as HotkeyBinding reads them.
quint64 eventModifierFlags(Qt::KeyboardModifiers modifiers) {
    constexpr std::array<std::pair<Qt::KeyboardModifier, int>, 4> bits{{{Qt::ShiftModifier, 17},
                                                                        {Qt::ControlModifier, 18},
                                                                        {Qt::AltModifier, 19},
                                                                        {Qt::MetaModifier, 20}}};
    quint64 flags = 0;
    for (const auto& [modifier, bit] : bits)
        if (modifiers.testFlag(modifier)) flags |= quint64{1} << bit;
    return flags;
}

/// The place of the key, whatever the layout makes of it.
std::optional<quint32> keyCodeOf(const QKeyEvent& event) {
    const quint32 scanCode = event.nativeScanCode();
    if (scanCode > std::numeric_limits<quint8>::max()) return std::nullopt;
    return virtualKeyForKeycode(static_cast<quint8>(scanCode));
}

}  // namespace

KeyCaptureNSView::KeyCaptureNSView(QWidget* parent) : QWidget(parent) {
    setFocusPolicy(Qt::ClickFocus);
    setFixedSize(0, 0);
}

bool KeyCaptureNSView::event(QEvent* event) {
    switch (event->type()) {
        case QEvent::ShortcutOverride:
            if (!isBesideHeldKey(*static_cast<QKeyEvent*>(event))) break;
            // Told first of a press, which is then a shortcut, or goes where the keyboard is now.
            letGo();
            event->ignore();
            return false;
        case QEvent::KeyPress:
            keyDown(*static_cast<QKeyEvent*>(event));
            break;
        case QEvent::KeyRelease:
            keyUp(*static_cast<QKeyEvent*>(event));
            break;
        default:
            return QWidget::event(event);
    }
    event->accept();
    return true;
}

void KeyCaptureNSView::keyDown(const QKeyEvent& event) {
    if (isBesideHeldKey(event)) return letGo();
    if (event.isAutoRepeat() || m_heldScanCode != 0) return;
    const auto keyCode = keyCodeOf(event);
    const quint32 modifiers = HotkeyBinding::carbonModifiers(eventModifierFlags(event.modifiers()));
    const auto isModifier = [&] {
        return std::find(modifierKeyCodes.begin(), modifierKeyCodes.end(), *keyCode) !=
               modifierKeyCodes.end();
    };
    if (modifiers == 0 || !keyCode || isModifier()) return;
    m_heldScanCode = event.nativeScanCode();
    if (const OnKeyCaptured callback = onKeyCaptured) callback(*keyCode, modifiers);
}

void KeyCaptureNSView::keyUp(const QKeyEvent& event) {
    if (!event.isAutoRepeat() && event.nativeScanCode() == m_heldScanCode) letGo();
}

bool KeyCaptureNSView::isBesideHeldKey(const QKeyEvent& event) const {
    // Modifiers have no key code here: they do not end the repetitions of the held key.
    return m_heldScanCode != 0 && !event.isAutoRepeat() &&
           event.nativeScanCode() != m_heldScanCode && keyCodeOf(event);
}

void KeyCaptureNSView::letGo() {
    m_heldScanCode = 0;
    if (const auto callback = onKeyReleased) callback();
}
