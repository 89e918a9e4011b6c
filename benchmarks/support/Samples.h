#pragma once

#include <benchmark/benchmark.h>
#include <chrono>
#include <string>
#include <vector>

/// What was measured of one contender, in seconds.
class Samples {
public:
    using Clock = std::chrono::steady_clock;
    using Seconds = std::chrono::duration<double>;

    void add(Seconds time) { m_times.push_back(time.count()); }
    /// Measures how long the operation takes.
    template <typename Operation>
    void measure(Operation operation) {
        const auto start = Clock::now();
        operation();
        add(Clock::now() - start);
    }

    /// The value that the given part of the samples lies below, 0.5 for the median.
    double quantile(double part) const;
    double median() const { return quantile(0.5); }

    /// Median and the range of the middle half, in microseconds or milliseconds.
    std::string summary() const;

private:
    std::vector<double> m_times;
};

/// Reports a figure and the most that it should be, as the counters "measured" and "target".
void reportTarget(benchmark::State& state, double measured, double target);

/// Reports the ratio of two medians against the most that it should be, and both spreads.
void reportRatio(benchmark::State& state, const Samples& measured, const Samples& base,
                 double target);
