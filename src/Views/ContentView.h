#pragma once

#include "App/AppState.h"
#include "App/VeylaCommands.h"
#include "Views/TurnUpdate.h"

#include <QByteArray>
#include <QMainWindow>
#include <functional>
#include <vector>

/// The main window: the dashboard, the menus, and what connects them to the launch of the program.
/// Closing it hides it; it is where it was when it is opened again.
class ContentView final : public QMainWindow {
public:
    /// `quit` ends the program. The references must outlive the window.
    ContentView(AppState& state, Scheduler& scheduler, const VeylaCommands& commands,
                std::function<void()> quit);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void makeMenus(std::function<void()> quit);
    void updateMenu();

    AppState& m_state;
    /// Where the window was when it was hidden; null before.
    QByteArray m_geometry;
    const VeylaCommands& m_commands;
    std::vector<QAction*> m_actions;
    TurnUpdate m_menuUpdate;
};
