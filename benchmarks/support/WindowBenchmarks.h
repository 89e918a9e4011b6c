#pragma once

#include "App/AppState.h"
#include "Platform/Headless/HeadlessDesktop.h"
#include "support/RecordingSystemLog.h"

#include <QTemporaryDir>
#include <QWidget>
#include <memory>

/// The program's state on a desktop in memory, with that many masks.
class ProgramInMemory {
public:
    explicit ProgramInMemory(int maskCount);

    /// Delivers what was put off to the next turn, and paints.
    void settle();

private:
    QTemporaryDir m_folder;
    RecordingSystemLog m_log;

protected:
    HeadlessDesktop m_desktop;

public:
    AppState state;
};

/// What windows are compared with: that many lines of text, without a look of their own.
std::unique_ptr<QWidget> plainWindow(int rowCount);

/// The main function of a program that measures windows: runs its benchmarks in memory, without a
/// display, with the program's own look.
int runWindowBenchmarks(int argc, char** argv);
