#pragma once

#include "Platform/MainLoop.h"

#include <QObject>

/// The event loop of the toolkit. A QCoreApplication must exist.
class QtMainLoop final : public MainLoop {
public:
    void post(std::function<void()> task) override;
    Subscription after(std::chrono::milliseconds delay, std::function<void()> task) override;
    int run() override;
    void quit(int status) override;

private:
    // Tasks are bound to it: what is still posted when the loop goes is dropped.
    QObject m_context;
};
