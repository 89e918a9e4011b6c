#pragma once

#include "Platform/ApplicationHost.h"
#include "Platform/WindowManagement.h"

#include <QObject>

class QtHostWindow;
class QWidget;

/// The program as a QApplication with widgets for windows.
class QtApplicationHost final : public QObject, public ApplicationHost {
public:
    /// A QApplication must exist; `windowManagement` must outlive the host.
    explicit QtApplicationHost(WindowManagement& windowManagement);
    ~QtApplicationHost() override;

    void setActivationPolicy(ActivationPolicy policy) override;
    void activateIgnoringOtherApps() override;
    std::vector<std::shared_ptr<HostWindow>> windows() override;

    // Every window has its place among the others, and is listed or not, from the moment it is
    // shown.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void takeInNewWindows();
    void takeIn(QWidget& widget);

    WindowManagement& m_windowManagement;
    ActivationPolicy m_policy = ActivationPolicy::regular;
    std::vector<std::shared_ptr<QtHostWindow>> m_windows;
};
