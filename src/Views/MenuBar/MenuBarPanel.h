#pragma once

#include "App/AppState.h"
#include "Platform/PointerPresses.h"

#include <QRect>
#include <QWidget>
#include <chrono>
#include <functional>

class MenuBarView;
class QScrollArea;

/// The window of the menu bar panel. It opens beside what was clicked, always inside its screen,
/// and closes on Escape, on a press elsewhere and when another window gets the keyboard. It takes
/// neither pointer nor keyboard away from others while it is open, so that hot keys and screen
/// lockers work.
class MenuBarPanel final : public QWidget {
public:
    /// How long after opening the keyboard may still go elsewhere. If another window of the program
    /// has it then, the panel asks for it once more.
    static constexpr std::chrono::milliseconds keyboardDelay{150};

    /// `openSettings` is empty where there are no settings to open. The references must outlive
    /// the panel.
    MenuBarPanel(AppState& state, Scheduler& scheduler, PointerPresses& presses,
                 std::function<void()> openSettings);
    ~MenuBarPanel() override;

    /// Shows the panel beside a rectangle of the desktop, in the toolkit's points, such as that of
    /// a tray icon. An empty one with a place other than the origin is a point; a null one means
    /// the pointer.
    void open(const QRect& anchor);
    /// Closes the panel if it is open. Presses of the primary button on the anchor do not close it
    /// by themselves, so that they can do this.
    void toggle(const QRect& anchor);

    /// Where a window of that size goes: below the anchor, or above it where there is no room,
    /// and in any case inside.
    static QRect placeBeside(const QRect& anchor, const QSize& size, const QRect& available);

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void makeScrollArea();
    void fit();
    void takeKeyboard();
    void settleKeyboard();
    void followFocus(const QWindow* focused);
    void pressed(PointerPresses::Button button);

    Scheduler& m_scheduler;
    PointerPresses& m_presses;
    /// Made when the content is first higher than the screen; null before.
    QScrollArea* m_area = nullptr;
    MenuBarView* m_view;
    QRect m_anchor;
    bool m_hasFocus = false;
    Subscription m_outsidePresses;
    /// Runs while the keyboard may still go elsewhere without anybody having asked for that.
    Subscription m_keyboardSettles;
};
