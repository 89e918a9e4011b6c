#pragma once

#include "support/desktop/XClient.h"

#include <QPoint>

/// A person's hands: pointer and keyboard input through the XTEST extension, in device pixels of
/// the root, y down. Every method returns when the server has handled the event; what clients do
/// about it comes later.
class XTestInput : public XClient {
public:
    /// Throws std::runtime_error when the server lacks XTEST.
    explicit XTestInput(const QString& displayName = {});
    /// Releases buttons and keys that are still down.
    ~XTestInput() override;

    void movePointer(QPoint position);

    void press(int button = 1);
    void release(int button = 1);
    /// Moves there, then presses and releases.
    void click(QPoint position, int button = 1);
    /// Presses at `from`, moves in that many equal steps and releases at `to`.
    void drag(QPoint from, QPoint to, int steps = 8);

    void pressKeycode(std::uint8_t keycode);
    void releaseKeycode(std::uint8_t keycode);
    /// Presses the keys in their order and releases them in reverse order.
    void typeChord(const std::vector<std::uint8_t>& keycodes);
    /// The same by keysym ("XK_" numbers). Throws std::runtime_error when no key bears one.
    void typeKeysyms(const std::vector<std::uint32_t>& keysyms);

    /// The first key that bears the keysym in its first two columns. Throws std::runtime_error when
    /// there is none.
    std::uint8_t keycodeFor(std::uint32_t keysym) const;

private:
    void send(std::uint8_t type, std::uint8_t detail, QPoint position = {});

    std::vector<std::pair<std::uint8_t, std::uint8_t>> m_held;
};
