#pragma once

#include "Platform/TrayIcon.h"
#include "Reactive/Lifetime.h"
#include "Reactive/Scheduler.h"

#include <QMenu>
#include <QObject>
#include <QRect>
#include <QSystemTrayIcon>

/// The icon as a window inside a tray of the older kind. Black or white, by the pixels around it.
class EmbeddedTrayIcon final : public QObject {
public:
    /// To be made while there is such a tray. The scheduler must outlive it.
    EmbeddedTrayIcon(const TrayIcon::Actions& actions, Scheduler& scheduler);
    ~EmbeddedTrayIcon() override;

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void activated(QSystemTrayIcon::ActivationReason reason);
    void followGround();
    void setIsOnLight(bool isOnLight);

    TrayIcon::Actions m_actions;
    Scheduler& m_scheduler;
    QMenu m_menu;
    QSystemTrayIcon m_icon;
    bool m_isOnLight = false;
    /// Where the ground was looked at.
    QRect m_seenAt;
    Lifetime m_lifetime;
};
