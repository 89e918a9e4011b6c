#pragma once

#include <QJsonObject>
#include <QMap>
#include <QString>
#include <array>
#include <cstddef>
#include <optional>

class JsonObjectReader;

/// One global shortcut. Key codes and modifier masks are those of the Carbon Event Manager; a key
/// code names a physical key by its place on the ANSI layout, whatever the layout in use.
struct HotkeyBinding {
    static constexpr quint32 commandModifier = 256;
    static constexpr quint32 shiftModifier = 512;
    static constexpr quint32 optionModifier = 2048;
    static constexpr quint32 controlModifier = 4096;

    quint32 keyCode = 0;
    /// Sum of the modifier constants above.
    quint32 modifiers = 0;

    /// The binding of every action that the user has not changed, by binding key.
    static const QMap<QString, HotkeyBinding>& defaults();

    /// For example "⌃⌥⌘N": always in the order Control, Option, Shift, Command.
    QString displayString() const;
    /// In the words that keyboards on Linux bear, for example "Ctrl+Alt+Super+N": always in the
    /// order Ctrl, Alt, Shift, Super.
    QString keyboardText() const;

    /// The name of a key, or "Key" and the code for a key without one.
    static QString keyCodeToString(quint32 keyCode);

    /// Converts the modifier flags of a key event (Shift is bit 17, Control 18, Option 19,
    /// Command 20) to the Carbon mask; every other bit is dropped.
    static quint32 carbonModifiers(quint64 eventModifierFlags);

    /// Throws JsonError when a member is missing or not an unsigned 32-bit integer.
    static HotkeyBinding fromJson(const JsonObjectReader& reader);
    QJsonObject toJson() const;

    bool operator==(const HotkeyBinding&) const = default;
};

std::size_t qHash(const HotkeyBinding& binding, std::size_t seed = 0) noexcept;

/// The actions that a global shortcut can trigger. The value is the number under which the hot
/// key is registered with the desktop.
enum class HotkeyAction : quint32 {
    createMask = 1,
    toggleAll = 2,
    toggleEditing = 3,
    toggleDashboard = 4,
};

/// Every action, in the order of registration, of the conflict check and of the shortcut rows.
inline constexpr std::array<HotkeyAction, 4> allHotkeyActions{
    HotkeyAction::createMask, HotkeyAction::toggleAll, HotkeyAction::toggleEditing,
    HotkeyAction::toggleDashboard};

/// The action with that number, or nothing.
std::optional<HotkeyAction> hotkeyActionFromRawValue(quint32 rawValue);
/// The key of the action in AppSettings::hotkeyBindings and HotkeyBinding::defaults.
QString hotkeyBindingKey(HotkeyAction action);
/// The text that shortcut rows show for the action.
QString hotkeyActionTitle(HotkeyAction action);
