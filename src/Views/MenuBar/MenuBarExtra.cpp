#include "Views/MenuBar/MenuBarExtra.h"

#include "Views/MenuBar/MenuBarPanel.h"

#include <utility>

using namespace Qt::Literals::StringLiterals;

MenuBarExtra::MenuBarExtra(AppState& state, Scheduler& scheduler, TrayIcon& trayIcon,
                           PointerPresses& presses, Actions actions)
    : m_state(state),
      m_scheduler(scheduler),
      m_trayIcon(trayIcon),
      m_presses(presses),
      m_actions(std::move(actions)) {
    m_scheduler.post(m_lifetime.guard([this] { showIcon(); }));
}

MenuBarExtra::~MenuBarExtra() = default;

void MenuBarExtra::showIcon() {
    m_trayIcon.show(
        {m_lifetime.guard([this](const QRect& anchor) { togglePanel(anchor); }),
         {{u"Show Dashboard"_s, m_lifetime.guard([this] { m_state.openDashboardWindow(); })},
          {u"Quit Veyla"_s, m_actions.quit}}});
}

void MenuBarExtra::closePanel() {
    m_panel.reset();
}

void MenuBarExtra::togglePanel(const QRect& anchor) {
    if (!m_panel)
        m_panel =
            std::make_unique<MenuBarPanel>(m_state, m_scheduler, m_presses, m_actions.openSettings);
    m_panel->toggle(anchor);
}
