#pragma once

#include <QtGlobal>
#include <optional>

// A virtual key code (see HotkeyBinding) and an X keycode both name a key by its place, whatever
// the layout in use. The X server must number keys as evdev does, plus 8: every one on Linux does.

/// The X keycode of the key at that place; nothing for a code that no key of a PC keyboard stands
/// for.
std::optional<quint8> keycodeForVirtualKey(quint32 keyCode);

/// The virtual key code of an X keycode; nothing for a key without one, such as a modifier.
std::optional<quint32> virtualKeyForKeycode(quint8 keycode);
