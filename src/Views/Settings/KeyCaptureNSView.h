#pragma once

#include <QWidget>
#include <functional>

/// An invisible view that turns key presses into combinations while it has the keyboard. No key
/// reaches anything else meanwhile, menu shortcuts included.
class KeyCaptureNSView final : public QWidget {
public:
    /// A virtual key code and a modifier mask, as in HotkeyBinding.
    using OnKeyCaptured = std::function<void(quint32 keyCode, quint32 modifiers)>;

    explicit KeyCaptureNSView(QWidget* parent);

    /// Called for a press of a key with modifiers; a key alone, a modifier alone, and the key that
    /// ends the hold of the one before are not told. May be empty.
    OnKeyCaptured onKeyCaptured;
    /// Called when the key that was told last goes up, or another one goes down: the release may
    /// have gone to another program, and only the newest key repeats. May be empty.
    std::function<void()> onKeyReleased;

protected:
    bool event(QEvent* event) override;

private:
    void keyDown(const QKeyEvent& event);
    void keyUp(const QKeyEvent& event);
    /// Whether the key goes down while another one, told before, is held.
    bool isBesideHeldKey(const QKeyEvent& event) const;
    void letGo();

    /// Of the key that was told last and is still down, as the display numbers keys; else 0.
    quint32 m_heldScanCode = 0;
};
