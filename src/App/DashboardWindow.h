#pragma once

/// The dashboard window, as far as it is driven from outside itself.
class DashboardWindow {
public:
    virtual ~DashboardWindow() = default;

    /// False when this build has no dashboard; the other operations then do nothing.
    virtual bool isAvailable() const = 0;
    virtual bool isVisible() const = 0;
    /// Shows the window and brings it to the front.
    virtual void show() = 0;
    virtual void hide() = 0;
};

/// Stands in where there is no dashboard.
class NoDashboardWindow final : public DashboardWindow {
public:
    bool isAvailable() const override { return false; }
    bool isVisible() const override { return false; }
    void show() override {}
    void hide() override {}
};
