#pragma once

#include "Platform/ApplicationHost.h"

#include <QStringList>
#include <optional>

/// A window that its owner describes.
class HeadlessWindow final : public HostWindow {
public:
    explicit HeadlessWindow(const QString& title, bool isPanel = false, bool hasContent = true)
        : m_title(title), m_isPanel(isPanel), m_hasContent(hasContent) {}

    QString title() const override { return m_title; }
    bool isPanel() const override { return m_isPanel; }
    bool hasContentView() const override { return m_hasContent; }
    bool isVisible() const override { return m_isVisible; }
    void orderOut() override { m_isVisible = false; }
    void makeKeyAndOrderFront() override { m_isVisible = true; }

private:
    QString m_title;
    bool m_isPanel;
    bool m_hasContent;
    bool m_isVisible = false;
};

/// Keeps the policy and the windows that its owner adds.
class HeadlessApplicationHost final : public ApplicationHost {
public:
    void setActivationPolicy(ActivationPolicy policy) override;
    void activateIgnoringOtherApps() override { m_log << QStringLiteral("activated"); }
    std::vector<std::shared_ptr<HostWindow>> windows() override { return m_windows; }

    std::shared_ptr<HeadlessWindow> addWindow(const QString& title, bool isPanel = false,
                                              bool hasContent = true);
    /// Destroys every window that nobody else holds.
    void closeWindows() { m_windows.clear(); }
    /// Nothing before the first time it is set.
    std::optional<ActivationPolicy> policy() const { return m_policy; }
    /// "regular", "accessory" and "activated", in the order in which it was asked for.
    const QStringList& log() const { return m_log; }

private:
    std::optional<ActivationPolicy> m_policy;
    std::vector<std::shared_ptr<HostWindow>> m_windows;
    QStringList m_log;
};
