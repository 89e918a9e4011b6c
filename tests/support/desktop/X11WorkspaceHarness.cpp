#include "support/desktop/X11WorkspaceHarness.h"

#include "support/desktop/Wait.h"

#include <stdexcept>

X11WorkspaceHarness::X11WorkspaceHarness(ProcessWatch::KernelEvents kernelEvents) {
    QString error;
    m_connection = XcbConnection::open(&error);
    if (!m_connection) throw std::runtime_error(error.toStdString());
    m_workspace = std::make_unique<X11Workspace>(
        *m_connection, m_mainLoop,
        ApplicationResolver(DesktopEntries(), ApplicationIdentities::builtIn()), kernelEvents);
}

bool X11WorkspaceHarness::waitUntil(const std::function<bool()>& condition) {
    return ::waitUntil(condition);
}

void X11WorkspaceHarness::bringToFront(const QString& name) {
    m_pager.requestActivation(m_programs.at(name)->windows().front());
}

NeighbourProgram& X11WorkspaceHarness::launch(const QString& name, int windowCount) {
    auto& program = m_programs[name];
    program = std::make_unique<NeighbourProgram>(QProcessEnvironment::systemEnvironment(), name,
                                                 windowCount);
    return *program;
}
