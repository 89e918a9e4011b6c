#pragma once

#include "App/AppState.h"
#include "Views/TurnUpdate.h"

#include <QPointer>
#include <QWidget>
#include <functional>
#include <optional>

class KeyCaptureNSView;
class StyledButton;
class TextLabel;

/// A row that shows the shortcut of an action and records another one. While it records, Veyla's
/// own hot keys reach it like any other combination; that ends with the keyboard's going elsewhere,
/// which changes nothing.
class HotkeyRecorderView final : public QWidget {
public:
    using OnConflict = std::function<void(HotkeyAction conflicting)>;

    /// `onConflict` is told which action has the combination already that was recorded in vain.
    /// The references must outlive the view.
    HotkeyRecorderView(AppState& state, Scheduler& scheduler, HotkeyAction action,
                       OnConflict onConflict);
    ~HotkeyRecorderView() override;

    /// Takes the notice of a conflict back, which otherwise stays.
    void forgetConflict();

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void hideEvent(QHideEvent* event) override;

private:
    void toggleRecording();
    void startRecording();
    void stopRecording();
    void capture(const HotkeyBinding& candidate);
    void releaseKeyboard();
    void update();
    void describeField(const HotkeyBinding& binding);

    AppState& m_state;
    Scheduler& m_scheduler;
    HotkeyAction m_action;
    OnConflict m_onConflict;
    bool m_isRecording = false;
    std::optional<HotkeyAction> m_conflictAction;
    StyledButton* m_field;
    TextLabel* m_conflict;
    TextLabel* m_refusal;
    /// Stays a little longer than the recording, until the recorded key is let go: held down, it
    /// would trigger what it was just bound to, or a shortcut of the menu.
    QPointer<KeyCaptureNSView> m_capture;
    Subscription m_suspension;
    TurnUpdate m_turnUpdate;
};
