#pragma once

#include "Models/HotkeyBinding.h"
#include "Platform/HotKeyCenter.h"
#include "Platform/SystemLog.h"
#include "Platform/X11/Keyboard/HeldKey.h"
#include "Platform/X11/Keyboard/KeyboardWatch.h"
#include "Platform/X11/Keyboard/ModifierMap.h"
#include "Platform/X11/RawInput.h"
#include "Platform/X11/XcbConnection.h"
#include "Reactive/Lifetime.h"
#include "Reactive/Subscription.h"

#include <vector>

/// Hot keys by grabbing keys of the root window, with Caps Lock, Num Lock and Scroll Lock on or
/// off. Control and Shift are themselves, Option is Alt and Command is Super. When the keyboard
/// changes its modifiers, the combinations follow; one that is then another program's is told in
/// the log, and tried again at the next change, as after a suspension.
class X11HotKeyCenter final : public HotKeyCenter {
public:
    /// Both must outlive the center.
    X11HotKeyCenter(XcbConnection& connection, SystemLog& log);

    Subscription installEventHandler(Handler handler) override;
    std::unique_ptr<HotKeyRegistration> registerHotKey(quint32 keyCode, quint32 modifiers,
                                                       const HotKeyIdentifier& identifier) override;
    Subscription suspendHotKeys() override;

private:
    class Registration;

    bool grab(const Registration& registration);
    void ungrab(const Registration& registration);
    /// Asks for every registered combination; tells, and logs, which ones are not to be had.
    void grabAll();
    void ungrabAll();
    void forget(const Registration& registration);
    void followModifiers();
    void resume();
    void handleEvent(const xcb_generic_event_t& event);
    void dispatch(const xcb_key_press_event_t& event);
    void awaitRelease(xcb_keycode_t keycode);
    void releasedElsewhere(xcb_keycode_t keycode);
    void logRefusal(const HotkeyBinding& binding, const char* reason);

    XcbConnection& m_connection;
    SystemLog& m_log;
    KeyboardWatch m_keyboard;
    ModifierMap m_modifiers;
    HeldKey m_heldKey;
    RawInput m_keyReleases;
    Handler m_handler;
    quint64 m_handlerNumber = 0;
    std::vector<Registration*> m_registrations;
    int m_suspensions = 0;
    Lifetime m_lifetime;
    // A hot key that is down, and whose release may go to another program.
    std::optional<xcb_keycode_t> m_awaitedKey;
    Subscription m_awaitedRelease;
    SubscriptionBag m_subscriptions;
};
