#include "Views/Sheets/WhatsNewSheet.h"

#include "Views/Components/SheetArea.h"
#include "Views/Sheets/WhatsNewView.h"

#include <QDesktopServices>

WhatsNewSheet::WhatsNewSheet(AppState& state, Scheduler& scheduler, SheetArea& area)
    : m_state(state), m_area(area), m_turnUpdate(scheduler, [this] { update(); }) {
    m_turnUpdate.follow(state.isWhatsNewPresented, state.latestChangelog, state.changelogError);
    update();
}

void WhatsNewSheet::update() {
    if (!m_state.isWhatsNewPresented.value()) return m_area.dismiss(SheetLevel::releaseNotes);
    const auto release = m_state.latestChangelog.value();
    const bool hasFailed = m_state.changelogError.value().has_value();
    if (m_area.isPresented(SheetLevel::releaseNotes)) return m_view->show(release, hasFailed);
    const QUrl page = ChangelogService::pageURL().value_or(QUrl());
    const SheetContent content =
        WhatsNewView::content({.applicationVersion = m_state.applicationVersion(),
                               .pageAddress = page.toString(),
                               .onDismiss = [this] { m_state.dismissWhatsNew(); },
                               .onOpenPage = [page] { return QDesktopServices::openUrl(page); }});
    m_view = static_cast<WhatsNewView*>(content.view);
    m_view->show(release, hasFailed);
    m_area.present(SheetLevel::releaseNotes, content);
}
