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
    const Published<bool>& isWithoutTray() const override { return m_isWithoutTray; }

    void setHasTray(bool hasTray) {
        m_hasTray = hasTray;
        updateIsInTray();
    }
    /// As given to `show`.
    const Actions& actions() const { return m_actions; }

private:
    void updateIsInTray() {
        const bool isOffered = m_actions.onActivate != nullptr;
        m_isInTray.set(m_hasTray && isOffered);
        m_isWithoutTray.set(!m_hasTray && isOffered);
    }

    Actions m_actions;
    bool m_hasTray = true;
    Published<bool> m_isInTray{false};
    Published<bool> m_isWithoutTray{false};
};
