#pragma once

#include "Platform/TrayIcon.h"

/// An icon in a tray that a test brings and takes away.
class HeadlessTrayIcon final : public TrayIcon {
public:
    void show(const Actions& actions) override {
        m_actions = actions;
        updateIsInTray();
    }
    const Published<bool>& isInTray() const override { return m_isInTray; }

    void setHasTray(bool hasTray) {
        m_hasTray = hasTray;
        updateIsInTray();
    }
    /// As given to `show`.
    const Actions& actions() const { return m_actions; }

private:
    void updateIsInTray() { m_isInTray.set(m_hasTray && m_actions.onActivate); }

    Actions m_actions;
    bool m_hasTray = true;
    Published<bool> m_isInTray{false};
};
