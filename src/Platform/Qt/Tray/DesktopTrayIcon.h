#pragma once

#include "Platform/Qt/SessionBus.h"
#include "Platform/TrayIcon.h"
#include "Reactive/Scheduler.h"
#include "Reactive/Subscription.h"

#include <QDBusMessage>
#include <QDBusVariant>
#include <QObject>
#include <QString>
#include <functional>
#include <memory>
#include <optional>

class EmbeddedTrayIcon;
class StatusNotifierItem;

/// The icon in whichever kind of tray the desktop has: an item on the session bus where a host
/// shows those, else a window in the tray of the display. Trays may come, go, restart and change
/// kind at any time.
class DesktopTrayIcon final : public QObject, public TrayIcon {
    Q_OBJECT

public:
    /// `trayOwner` is a number that differs for every tray whose icons are windows, 0 for none.
    /// `isDesktopLight` tells of the ground that hosts show items on. The references must outlive
    /// the object.
    DesktopTrayIcon(const Published<quint32>& trayOwner, const Published<bool>& isDesktopLight,
                    Scheduler& scheduler);
    ~DesktopTrayIcon() override;

    void show(const Actions& actions) override;
    const Published<bool>& isInTray() const override { return m_isInTray; }
    const Published<bool>& isWithoutTray() const override { return m_isWithoutTray; }

private Q_SLOTS:
    void hostsChanged();

private:
    void watchBus();
    void askForHost();
    void setHasHost(bool hasHost);
    void update();

    const Published<quint32>& m_trayOwner;
    const Published<bool>& m_isDesktopLight;
    Scheduler& m_scheduler;
    Actions m_actions;
    // Made when the icon is first shown, since connecting takes its time.
    std::unique_ptr<SessionBus> m_bus;
    /// Nothing until the bus has answered, so that the icon is not shown in the other tray first.
    std::optional<bool> m_hasHost;
    /// The tray that the window is in.
    quint32 m_embeddedIn = 0;
    std::unique_ptr<StatusNotifierItem> m_item;
    std::unique_ptr<EmbeddedTrayIcon> m_embedded;
    Published<bool> m_isInTray{false};
    Published<bool> m_isWithoutTray{false};
    Subscription m_ownerChanges;
    Subscription m_colorChanges;
};
