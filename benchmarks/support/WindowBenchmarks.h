#pragma once

/// The main function of a program that measures windows: runs its benchmarks in memory, without a
/// display, with the program's own look.
int runWindowBenchmarks(int argc, char** argv);
