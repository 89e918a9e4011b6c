#pragma once

#include "Reactive/Scheduler.h"

/// The main event loop of the process. Everything runs on its thread.
class MainLoop : public Scheduler {
public:
    /// Runs until `quit`; returns the status given to it.
    virtual int run() = 0;
    /// Ends `run` after the current turn.
    virtual void quit(int status) = 0;
};
