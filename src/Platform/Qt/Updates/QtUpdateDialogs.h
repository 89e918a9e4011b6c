#pragma once

#include "Platform/UpdateUserDriver.h"

#include <memory>

class UpdateDialog;
struct UpdatePage;

/// Tells of updates in a window of the toolkit, which exists only while something is shown. The
/// window blocks neither the event loop nor other windows; Escape is what does the least: later,
/// cancel or close. Needs a QApplication.
class QtUpdateDialogs final : public UpdateUserDriver {
public:
    QtUpdateDialogs();
    QtUpdateDialogs(const QtUpdateDialogs&) = delete;
    QtUpdateDialogs& operator=(const QtUpdateDialogs&) = delete;
    /// Closes the window; nothing is called for it.
    ~QtUpdateDialogs() override;

    void showChecking(std::function<void()> onCancel) override;
    void showOffer(const UpdateOffer& offer, bool isExpected,
                   std::function<void(UpdateChoice)> onChoice) override;
    void showDownload(const QString& version, std::function<void()> onCancel) override;
    void showProgress(qint64 received, std::optional<qint64> total) override;
    void showOutcome(const UpdateOutcome& outcome) override;
    void bringToFront() override;
    void dismiss() override;
    void setAutomaticChecks(bool isOn, std::function<void(bool)> onChange) override;

private:
    void show(const UpdatePage& page, bool takesKeyboard = true);

    bool m_automaticChecks = false;
    std::function<void(bool)> m_onAutomaticChecks;
    std::unique_ptr<UpdateDialog> m_dialog;
};
