#pragma once

#include "support/desktop/ChildProcess.h"

#include <QString>
#include <QStringList>
#include <memory>
#include <vector>
#include <xcb/xcb.h>

/// Another application, in a process of its own.
class NeighbourProgram {
public:
    /// One with windows of that class. Returns when they are asked for; a window manager may still
    /// have to show them.
    NeighbourProgram(const QProcessEnvironment& environment, const QString& windowClass,
                     int windowCount = 1);
    const std::vector<xcb_window_t>& windows() const { return m_windows; }

    /// One that does what the arguments say, see neighbour_program/main.cpp, and whose program is
    /// called `name`: a copy in the folder.
    static std::unique_ptr<ChildProcess> start(const QProcessEnvironment& environment,
                                               const QString& folder, const QString& name,
                                               const QStringList& arguments);

private:
    ChildProcess m_process;
    std::vector<xcb_window_t> m_windows;
};
