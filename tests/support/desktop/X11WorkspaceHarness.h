#pragma once

#include "Platform/Qt/QtMainLoop.h"
#include "Platform/X11/X11Workspace.h"
#include "contract/WorkspaceHarness.h"
#include "support/desktop/NeighbourClient.h"
#include "support/desktop/NeighbourProgram.h"

#include <map>
#include <memory>

/// The X11 back end in this process, with applications that are programs with a window of that
/// class, on the display of the test's session.
class X11WorkspaceHarness : public WorkspaceHarness {
public:
    explicit X11WorkspaceHarness(
        ProcessWatch::KernelEvents kernelEvents = ProcessWatch::KernelEvents::whereAllowed);

    X11Workspace& workspace() override { return *m_workspace; }
    bool waitUntil(const std::function<bool()>& condition) override;
    void launch(const QString& name) override { launch(name, 1); }
    void bringToFront(const QString& name) override;
    void quit(const QString& name) override { m_programs.erase(name); }

    NeighbourProgram& launch(const QString& name, int windowCount);
    NeighbourClient& pager() { return m_pager; }

private:
    QtMainLoop m_mainLoop;
    std::unique_ptr<XcbConnection> m_connection;
    std::unique_ptr<X11Workspace> m_workspace;
    NeighbourClient m_pager;
    std::map<QString, std::unique_ptr<NeighbourProgram>> m_programs;
};
