#pragma once

#include "App/AppState.h"
#include "Views/Components/AccessibleElement.h"
#include "Views/TurnUpdate.h"

#include <QWidget>
#include <chrono>

class StyledButton;
class TextLabel;

/// Tells what was just done and can be undone, and offers that for a while. Takes no keyboard by
/// itself. Hidden at first.
class UndoBar final : public QWidget, public AccessibleElement {
public:
    /// How long it stays, or until the keyboard and the pointer have left it.
    static constexpr std::chrono::seconds shownFor{10};

    /// The references must outlive the view.
    UndoBar(AppState& state, Scheduler& scheduler);

    /// Spoken when it comes on screen.
    QAccessible::Role accessibleRole() const override { return QAccessible::AlertMessage; }
    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    void build();
    void tell();
    void leaveIfDue();

    AppState& m_state;
    Scheduler& m_scheduler;
    // Made when there is something to tell.
    TextLabel* m_notice = nullptr;
    StyledButton* m_undo = nullptr;
    bool m_isDue = false;
    Subscription m_end;
    TurnUpdate m_turnUpdate;
    Subscription m_acts;
};
