#pragma once

#include "App/AppState.h"
#include "App/VeylaCommands.h"
#include "Views/Sheets/WhatsNewSheet.h"
#include "Views/TurnUpdate.h"

#include <QByteArray>
#include <QMainWindow>
#include <QRect>
#include <functional>
#include <vector>

class DashboardView;

/// The main window: the dashboard, the menus, and what connects them to the launch of the program.
/// Closing it hides it; it is where it was when it is opened again.
class ContentView final : public QMainWindow {
public:
    /// `quit` ends the program. The references must outlive the window.
    ContentView(AppState& state, Scheduler& scheduler, const VeylaCommands& commands,
                std::function<void()> quit);

    /// Offers the panel in the menu while it is not in a tray. It opens beside a rectangle of the
    /// desktop. The field must outlive the window.
    void offerPanel(const Published<bool>& isInTray,
                    const std::function<void(const QRect& anchor)>& showPanel);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void makeMenus(std::function<void()> quit);
    std::vector<QAction*> addMenu(const QString& title, const std::vector<MenuCommand>& items);
    void updateMenu();

    AppState& m_state;
    /// Where the window was when it was hidden; null before.
    QByteArray m_geometry;
    const VeylaCommands& m_commands;
    DashboardView* m_dashboard;
    WhatsNewSheet m_whatsNew;
    QMenu* m_fileMenu = nullptr;
    std::vector<QAction*> m_editActions;
    std::vector<QAction*> m_actions;
    TurnUpdate m_menuUpdate;
    Subscription m_panelOffer;
};
