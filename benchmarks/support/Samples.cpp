#include "benchmarks/support/Samples.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

double Samples::quantile(double part) const {
    std::vector<double> sorted = m_times;
    std::sort(sorted.begin(), sorted.end());
    const auto last = static_cast<double>(sorted.size() - 1);
    return sorted.at(static_cast<std::size_t>(std::lround(part * last)));
}

std::string Samples::summary() const {
    const bool isShort = median() < 1e-3;
    const double unit = isShort ? 1e-6 : 1e-3;
    char text[80];
    std::snprintf(text, sizeof text, "%.1f (%.1f-%.1f) %s", median() / unit, quantile(0.25) / unit,
                  quantile(0.75) / unit, isShort ? "us" : "ms");
    return text;
}

void reportTarget(benchmark::State& state, double measured, double target) {
    state.counters["measured"] = measured;
    state.counters["target"] = target;
}

void reportRatio(benchmark::State& state, const Samples& measured, const Samples& base,
                 double target) {
    reportTarget(state, measured.median() / base.median(), target);
    state.SetLabel(measured.summary() + " against " + base.summary());
}
