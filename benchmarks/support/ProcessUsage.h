#pragma once

#include <sys/types.h>

/// What a process has used since it started, all threads together, as the kernel counts it.
struct ProcessUsage {
    double processorMilliseconds = 0;
    /// How often a thread went to sleep by itself; each time something had woken it.
    double sleeps = 0;

    /// Throws std::runtime_error when there is no such process.
    static ProcessUsage of(pid_t process);
};

/// The memory of a process in MiB.
struct ProcessMemory {
    /// A page that several processes share counts in part.
    double proportional = 0;
    /// Every page counts in full: the most that `proportional` can be when nobody shares.
    double resident = 0;

    /// Throws std::runtime_error when there is no such process.
    static ProcessMemory of(pid_t process);
};
