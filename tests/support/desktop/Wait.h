#pragma once

#include <chrono>
#include <functional>

/// Longer than anything that a test waits for should take on a busy machine with sanitizers on.
inline constexpr std::chrono::milliseconds defaultWait{10000};

/// Waits until the condition holds; false when it still does not at the end of the time. The
/// condition is asked again every two milliseconds, and between two questions the Qt events of this
/// thread are delivered when there is an application object. This is the only place where the
/// desktop tests let time pass.
[[nodiscard]] bool waitUntil(const std::function<bool()>& condition,
                             std::chrono::milliseconds timeout = defaultWait);

/// The same for fixtures: throws std::runtime_error that names what did not happen.
void requireSoon(const char* what, const std::function<bool()>& condition,
                 std::chrono::milliseconds timeout = defaultWait);
