#include "support/desktop/TrayPanel.h"

#include "support/desktop/DesktopSession.h"
#include "support/desktop/Wait.h"
#include "support/desktop/XClient.h"

#include <QFile>
#include <stdexcept>

TrayPanel::TrayPanel(DesktopSession& desktop, const QString& position, const QString& color) {
    const QString path = desktop.home().configFolder() + QStringLiteral("/tint2rc");
    QFile file(path);
    const QString configuration = QStringLiteral(
                                      "rounded = 0\n"
                                      "background_color = %2 100\n"
                                      "border_width = 0\n"
                                      "panel_items = S\n"
                                      "panel_size = 100% 32\n"
                                      "panel_background_id = 1\n"
                                      "panel_position = %1\n"
                                      "systray_padding = 4 4 4\n"
                                      "strut_policy = follow_size\n")
                                      .arg(position, color);
    if (!file.open(QFile::WriteOnly) || file.write(configuration.toUtf8()) < 0 || !file.flush())
        throw std::runtime_error("cannot write the configuration of the panel");
    m_process = std::make_unique<ChildProcess>(
        QStringLiteral("tint2"), QStringList{QStringLiteral("-c"), path}, desktop.environment());
    const XClient client(desktop.displayName());
    requireSoon("there is a tray", [&] {
        return client.selectionOwner(QStringLiteral("_NET_SYSTEM_TRAY_S0")) != XCB_NONE;
    });
}
