#pragma once

#include "Platform/Workspace.h"

#include <QString>
#include <functional>

/// What the contract suite needs of the applications of a desktop. Every back end provides one.
class WorkspaceHarness {
public:
    virtual ~WorkspaceHarness() = default;

    virtual Workspace& workspace() = 0;
    /// Runs the main loop until the condition holds; false when it does not within a bound.
    virtual bool waitUntil(const std::function<bool()>& condition) = 0;

    /// Starts an application with that name and identifier; it comes to the front.
    virtual void launch(const QString& name) = 0;
    virtual void bringToFront(const QString& name) = 0;
    virtual void quit(const QString& name) = 0;
};
