#include "Views/ContentView.h"

#include "Views/Components/SheetArea.h"
#include "Views/DashboardView.h"
#include "Views/Design/ApplicationLook.h"

#include <QAction>
#include <QHideEvent>
#include <QMenuBar>
#include <QScreen>
#include <QWindow>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr QSize defaultSize{1180, 760};
constexpr int smallestHeight = 520;
constexpr QSize roomForDecorations{0, 40};

}  // namespace

ContentView::ContentView(AppState& state, Scheduler& scheduler, const VeylaCommands& commands,
                         std::function<void()> quit)
    : m_state(state),
      m_commands(commands),
      m_dashboard(new DashboardView(state, scheduler)),
      m_whatsNew(state, scheduler, m_dashboard->sheets()),
      m_menuUpdate(scheduler, [this] { updateMenu(); }) {
    setWindowTitle(u"Veyla"_s);
    setMinimumHeight(smallestHeight);
    resize(defaultSize.boundedTo(screen()->availableSize() - roomForDecorations));
    setCentralWidget(m_dashboard);
    if (!m_dashboard->sheets().isPresenting.value()) m_dashboard->setFocus();
    makeMenus(std::move(quit));
    m_menuUpdate.follow(state.masks, state.selectedMaskID, state.areMasksVisible,
                        state.isEditingEnabled, state.updaterManager().canCheckForUpdates(),
                        m_dashboard->sheets().isPresenting, state.undoableAct);
    updateMenu();
}

void ContentView::makeMenus(std::function<void()> quit) {
    styleMenus(*menuBar());
    QMenu* const file = m_fileMenu = menuBar()->addMenu(u"&File"_s);
    file->addAction(u"&Close Window"_s, QKeySequence::Close, this, [this] { close(); });
    file->addSeparator();
    // Some desktops have no standard combination for it.
    file->addAction(u"&Quit Veyla"_s, QKeySequence(Qt::CTRL | Qt::Key_Q), this, std::move(quit));

    m_editActions = addMenu(u"&Edit"_s, m_commands.editItems());
    m_actions = addMenu(u"&Veyla"_s, m_commands.items());
}

std::vector<QAction*> ContentView::addMenu(const QString& title,
                                           const std::vector<MenuCommand>& items) {
    std::vector<QAction*> actions;
    QMenu* const menu = menuBar()->addMenu(title);
    for (const MenuCommand& item : items) {
        QAction* const action =
            item.isSeparator() ? menu->addSeparator() : menu->addAction(QString());
        actions.push_back(action);
        if (item.isSeparator()) continue;
        action->setShortcuts(item.shortcuts);
        connect(action, &QAction::triggered, this, item.perform);
    }
    return actions;
}

void ContentView::offerPanel(const Published<bool>& isInTray,
                             const std::function<void(const QRect&)>& showPanel) {
    auto* const action = new QAction(u"Show &Panel"_s, this);
    m_fileMenu->insertAction(m_fileMenu->actions().constFirst(), action);
    connect(action, &QAction::triggered, this, [this, showPanel] {
        const QRect title = menuBar()->actionGeometry(m_fileMenu->menuAction());
        showPanel(QRect(menuBar()->mapToGlobal(title.topLeft()), title.size()));
    });
    m_panelOffer = isInTray.subscribe([action](bool isThere) { action->setVisible(!isThere); });
}

// A sheet hides what the selected mask looks like, and a key meant for the sheet must not delete
// it.
void ContentView::updateMenu() {
    const bool hasSheet = m_dashboard->sheets().isPresenting.value();
    const auto show = [&](const std::vector<QAction*>& actions,
                          const std::vector<MenuCommand>& items) {
        for (std::size_t index = 0; index < items.size(); ++index) {
            if (items[index].isSeparator()) continue;
            actions[index]->setText(menuTitle(items[index].title));
            actions[index]->setEnabled(items[index].isEnabled &&
                                       !(hasSheet && items[index].waitsForSheets));
        }
    };
    show(m_editActions, m_commands.editItems());
    show(m_actions, m_commands.items());
}

void ContentView::hideEvent(QHideEvent* event) {
    // Hidden by its owner, not by the desktop.
    if (!event->spontaneous()) m_geometry = saveGeometry();
    QMainWindow::hideEvent(event);
}

void ContentView::showEvent(QShowEvent* event) {
    if (!event->spontaneous() && !m_geometry.isEmpty()) {
        restoreGeometry(m_geometry);
        // A place that has not changed since is not asked for again by itself, and the desktop
        // would choose another.
        windowHandle()->setPosition(windowHandle()->position());
    }
    QMainWindow::showEvent(event);
    m_state.handleDashboardWindowAppearance();
}
