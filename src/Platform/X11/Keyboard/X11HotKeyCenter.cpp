#include "Platform/X11/Keyboard/X11HotKeyCenter.h"

#include "Models/VirtualKeyCodes.h"

#include <algorithm>
#include <utility>

namespace {

constexpr auto heldByOther = "another program holds it";
constexpr auto withoutKey = "the keyboard has no such key";
constexpr auto heldAlready = "Veyla has registered it already";

}  // namespace

class X11HotKeyCenter::Registration final : public HotKeyRegistration {
public:
    Registration(X11HotKeyCenter& hotKeyCenter, const HotkeyBinding& keys,
                 xcb_keycode_t serverKeycode, const HotKeyIdentifier& hotKey)
        : center(hotKeyCenter), binding(keys), keycode(serverKeycode), identifier(hotKey) {}
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;
    ~Registration() override { center.forget(*this); }

    const Published<bool>& isHeld() const override { return held; }
    uint16_t mask() const { return center.m_modifiers.maskOf(binding.modifiers); }

    X11HotKeyCenter& center;
    HotkeyBinding binding;
    xcb_keycode_t keycode;
    HotKeyIdentifier identifier;
    Published<bool> held{true};
};

X11HotKeyCenter::X11HotKeyCenter(XcbConnection& connection, SystemLog& log)
    : m_connection(connection),
      m_log(log),
      m_keyboard(connection),
      m_modifiers(ModifierMap::read(connection)),
      m_heldKey(m_keyboard.areRepeatsWithoutRelease()),
      m_keyReleases(connection, RawInput::Kind::keyRelease) {
    m_keyboard.onMappingChanged = [this] { followModifiers(); };
    m_subscriptions.keep(
        m_connection.onEvent([this](const xcb_generic_event_t& event) { handleEvent(event); }));
}

Subscription X11HotKeyCenter::installEventHandler(Handler handler) {
    m_handler = std::move(handler);
    return Subscription(m_lifetime.guard([this, number = ++m_handlerNumber] {
        if (number == m_handlerNumber) m_handler = nullptr;
    }));
}

std::unique_ptr<HotKeyRegistration> X11HotKeyCenter::registerHotKey(
    quint32 keyCode, quint32 modifiers, const HotKeyIdentifier& identifier) {
    const HotkeyBinding binding{.keyCode = keyCode, .modifiers = modifiers};
    const auto keycode = keycodeForVirtualKey(keyCode);
    const xcb_setup_t* const setup = xcb_get_setup(m_connection);
    if (!keycode || *keycode < setup->min_keycode || *keycode > setup->max_keycode) {
        logRefusal(binding, withoutKey);
        return nullptr;
    }
    auto registration = std::make_unique<Registration>(*this, binding, *keycode, identifier);
    const bool isKnown =
        std::any_of(m_registrations.begin(), m_registrations.end(), [&](const Registration* other) {
            return other->keycode == *keycode && other->mask() == registration->mask();
        });
    if (isKnown || !grab(*registration)) {
        logRefusal(binding, isKnown ? heldAlready : heldByOther);
        return nullptr;
    }
    if (m_suspensions > 0) ungrab(*registration);
    m_registrations.push_back(registration.get());
    return registration;
}

Subscription X11HotKeyCenter::suspendHotKeys() {
    if (m_suspensions++ == 0) ungrabAll();
    return Subscription(m_lifetime.guard([this] { resume(); }));
}

void X11HotKeyCenter::resume() {
    if (--m_suspensions == 0) grabAll();
}

bool X11HotKeyCenter::grab(const Registration& registration) {
    std::vector<xcb_void_cookie_t> requests;
    for (const uint16_t mask : m_modifiers.withLocks(registration.mask()))
        requests.push_back(xcb_grab_key_checked(m_connection, 0, m_connection.root(), mask,
                                                registration.keycode, XCB_GRAB_MODE_ASYNC,
                                                XCB_GRAB_MODE_ASYNC));
    bool isGranted = true;
    for (const xcb_void_cookie_t request : requests) {
        const XcbReply<xcb_generic_error_t> error(xcb_request_check(m_connection, request));
        isGranted &= !error;
    }
    if (!isGranted) ungrab(registration);
    return isGranted;
}

void X11HotKeyCenter::ungrab(const Registration& registration) {
    for (const uint16_t mask : m_modifiers.withLocks(registration.mask()))
        xcb_ungrab_key(m_connection, registration.keycode, m_connection.root(), mask);
    m_connection.flush();
}

void X11HotKeyCenter::grabAll() {
    // Whoever is told may let go of any of them.
    const auto registrations = m_registrations;
    for (Registration* const registration : registrations) {
        if (std::find(m_registrations.begin(), m_registrations.end(), registration) ==
            m_registrations.end())
            continue;
        const bool isHeld = grab(*registration);
        if (!isHeld) logRefusal(registration->binding, heldByOther);
        if (isHeld != registration->held.newest()) registration->held.set(isHeld);
    }
}

void X11HotKeyCenter::ungrabAll() {
    for (const Registration* const registration : m_registrations)
        ungrab(*registration);
}

void X11HotKeyCenter::forget(const Registration& registration) {
    if (std::erase(m_registrations, &registration) != 0) ungrab(registration);
}

void X11HotKeyCenter::followModifiers() {
    // Keys are grabbed by their place: only the modifiers can make a difference.
    const ModifierMap modifiers = ModifierMap::read(m_connection);
    if (modifiers == m_modifiers) return;
    if (m_suspensions == 0) ungrabAll();
    m_modifiers = modifiers;
    if (m_suspensions == 0) grabAll();
}

void X11HotKeyCenter::handleEvent(const xcb_generic_event_t& event) {
    const uint8_t type = event.response_type & 0x7f;
    // Only hot keys make the server report keys of the root window, in both cases with one layout.
    const auto& key = reinterpret_cast<const xcb_key_press_event_t&>(event);
    if (type == XCB_KEY_RELEASE && key.event == m_connection.root()) {
        const auto stillDown = m_heldKey.release(key);
        if (stillDown && stillDown != m_awaitedKey) m_heldKey.releasedElsewhere(*stillDown);
    } else if (type == XCB_KEY_PRESS && key.event == m_connection.root()) {
        if (!m_heldKey.press(key)) return;
        if (m_heldKey.isInGrabOfAnother()) awaitRelease(key.detail);
        dispatch(key);
    }
}

// A key that was pressed while another hot key was down repeats after that one is up, and grabs
// anew: only its release, which may come before, tells that the next press is a person's.
void X11HotKeyCenter::awaitRelease(xcb_keycode_t keycode) {
    const bool isHotKey = std::any_of(m_registrations.begin(), m_registrations.end(),
                                      [&](const auto* each) { return each->keycode == keycode; });
    if (!isHotKey) return;
    m_awaitedRelease.reset();
    m_awaitedRelease = m_keyReleases.listen([this, keycode](uint32_t released) {
        if (released == keycode) releasedElsewhere(keycode);
    });
    if (!m_awaitedRelease.isActive()) return;
    m_awaitedKey = keycode;
    // It may have gone up before the server was asked for releases.
    const auto keys =
        xcbReply(xcb_query_keymap_reply, m_connection.get(), xcb_query_keymap(m_connection));
    const bool isDown = keys && (keys->keys[keycode / 8] & (1 << (keycode % 8))) != 0;
    if (!isDown) releasedElsewhere(keycode);
}

void X11HotKeyCenter::releasedElsewhere(xcb_keycode_t keycode) {
    m_heldKey.releasedElsewhere(keycode);
    m_awaitedKey.reset();
    m_awaitedRelease.reset();
}

void X11HotKeyCenter::dispatch(const xcb_key_press_event_t& event) {
    if (m_suspensions > 0) return;
    constexpr unsigned everyModifier = 0xff;  // above are buttons and the keyboard's group
    const auto pressed = event.state & everyModifier & ~unsigned{m_modifiers.locks()};
    const auto found = std::find_if(
        m_registrations.begin(), m_registrations.end(), [&](const Registration* registration) {
            return registration->keycode == event.detail && registration->mask() == pressed;
        });
    if (found == m_registrations.end()) return;
    const HotKeyIdentifier identifier = (*found)->identifier;
    if (const Handler handler = m_handler) handler({identifier});
}

void X11HotKeyCenter::logRefusal(const HotkeyBinding& binding, const char* reason) {
    m_log.write(
        QStringLiteral("Veyla cannot use the shortcut %1 (%2): %3")
            .arg(binding.displayString(), binding.keyboardText(), QString::fromLatin1(reason)));
}
