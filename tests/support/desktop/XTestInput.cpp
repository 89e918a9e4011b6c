#include "support/desktop/XTestInput.h"

#include <stdexcept>
#include <xcb/xtest.h>

namespace {

std::uint8_t narrow(int value) {
    return static_cast<std::uint8_t>(value);
}

}  // namespace

XTestInput::XTestInput(const QString& displayName) : XClient(displayName) {
    const auto* extension = xcb_get_extension_data(connection(), &xcb_test_id);
    if (extension == nullptr || extension->present == 0) {
        throw std::runtime_error("the X server has no XTEST extension");
    }
}

XTestInput::~XTestInput() {
    const auto held = m_held;
    for (const auto& [releaseType, detail] : held)
        send(releaseType, detail);
}

void XTestInput::movePointer(QPoint position) {
    send(XCB_MOTION_NOTIFY, 0, position);
}

void XTestInput::press(int button) {
    send(XCB_BUTTON_PRESS, narrow(button));
}

void XTestInput::release(int button) {
    send(XCB_BUTTON_RELEASE, narrow(button));
}

void XTestInput::click(QPoint position, int button) {
    movePointer(position);
    press(button);
    release(button);
}

void XTestInput::drag(QPoint from, QPoint to, int steps) {
    movePointer(from);
    press();
    for (int step = 1; step <= steps; ++step)
        movePointer(from + (to - from) * step / steps);
    release();
}

void XTestInput::pressKeycode(std::uint8_t keycode) {
    send(XCB_KEY_PRESS, keycode);
}

void XTestInput::releaseKeycode(std::uint8_t keycode) {
    send(XCB_KEY_RELEASE, keycode);
}

void XTestInput::typeChord(const std::vector<std::uint8_t>& keycodes) {
    for (const std::uint8_t keycode : keycodes)
        pressKeycode(keycode);
    for (auto keycode = keycodes.rbegin(); keycode != keycodes.rend(); ++keycode)
        releaseKeycode(*keycode);
}

void XTestInput::typeKeysyms(const std::vector<std::uint32_t>& keysyms) {
    std::vector<std::uint8_t> keycodes;
    for (const std::uint32_t keysym : keysyms)
        keycodes.push_back(keycodeFor(keysym));
    typeChord(keycodes);
}

std::uint8_t XTestInput::keycodeFor(std::uint32_t keysym) const {
    const xcb_setup_t* setup = xcb_get_setup(connection());
    const auto mapping =
        reply(xcb_get_keyboard_mapping_reply,
              xcb_get_keyboard_mapping(connection(), setup->min_keycode,
                                       narrow(setup->max_keycode - setup->min_keycode + 1)));
    if (mapping) {
        const xcb_keysym_t* keysyms = xcb_get_keyboard_mapping_keysyms(mapping.get());
        const int count = xcb_get_keyboard_mapping_keysyms_length(mapping.get());
        const int columns = mapping->keysyms_per_keycode;
        for (int index = 0; index < count; ++index) {
            if (keysyms[index] == keysym && index % columns < 2) {
                return narrow(setup->min_keycode + index / columns);
            }
        }
    }
    throw std::runtime_error("no key bears the keysym " + std::to_string(keysym));
}

void XTestInput::send(std::uint8_t type, std::uint8_t detail, QPoint position) {
    xcb_test_fake_input(connection(), type, detail, XCB_CURRENT_TIME, root(),
                        static_cast<std::int16_t>(position.x()),
                        static_cast<std::int16_t>(position.y()), 0);
    roundTrip();
    const bool isPress = type == XCB_BUTTON_PRESS || type == XCB_KEY_PRESS;
    const auto releaseType = narrow(isPress ? type + 1 : type);
    const auto held = std::pair(releaseType, detail);
    std::erase(m_held, held);
    if (isPress) m_held.push_back(held);
}
