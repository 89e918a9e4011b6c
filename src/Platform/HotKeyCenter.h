#pragma once

#include "Reactive/Published.h"
#include "Reactive/Subscription.h"

#include <QtGlobal>
#include <functional>
#include <memory>
#include <optional>

/// Names one hot key of one program.
struct HotKeyIdentifier {
    /// Four ASCII characters, the first in the most significant byte.
    quint32 signature = 0;
    quint32 id = 0;

    bool operator==(const HotKeyIdentifier&) const = default;
};

/// A hot key that went down. The parameter is absent when the event carries none.
struct HotKeyEvent {
    std::optional<HotKeyIdentifier> directObject;
};

/// Holds one combination of keys with the desktop; letting go of it gives the combination back.
class HotKeyRegistration {
public:
    virtual ~HotKeyRegistration() = default;

    /// Whether the combination is the program's. Another program may get it while hot keys are
    /// suspended or when the keyboard changes; it is asked for again each time that ends.
    virtual const Published<bool>& isHeld() const = 0;
};

/// The desktop's service for shortcuts that work whatever program has the keyboard. The center must
/// outlive its registrations.
class HotKeyCenter {
public:
    using Handler = std::function<void(const HotKeyEvent& event)>;

    virtual ~HotKeyCenter() = default;

    /// Calls `handler` when a registered hot key goes down, once however long it is held, while
    /// the event is being delivered. At most one handler at a time: a second one takes the place of
    /// the first. Letting go of the handle removes the handler if it is still in place.
    virtual Subscription installEventHandler(Handler handler) = 0;

    /// Takes a combination: a virtual key code and a modifier mask as in HotkeyBinding. Null when
    /// it cannot be had, because another program holds it or the keyboard has no such key; the
    /// log then says which and why.
    virtual std::unique_ptr<HotKeyRegistration> registerHotKey(
        quint32 keyCode, quint32 modifiers, const HotKeyIdentifier& identifier) = 0;

    /// While the handle lives, every registered combination reaches the focused window instead of
    /// the handler, so that it can be recorded. Handles may nest.
    virtual Subscription suspendHotKeys() = 0;
};
