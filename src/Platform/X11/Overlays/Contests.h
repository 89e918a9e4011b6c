#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <unordered_map>
#include <vector>

/// Tells how often to answer rivals who undo at once what was done against them. Each rival is
/// counted by itself: who does not insist is always answered at once.
class Contests {
public:
    using Rival = std::uint32_t;

    /// How long to wait before the next answer to rivals who insist: a frame of a usual display.
    static constexpr std::chrono::milliseconds delay{16};

    /// Whether some of these rivals are to be answered now, and not only after `delay`.
    bool mayAnswer(const std::vector<Rival>& rivals);
    /// Takes note of an answer to all of them.
    void noteAnswer(const std::vector<Rival>& rivals);
    /// Whether a contest has begun since the last call, and none in the minute before.
    bool takeBeginning();

private:
    using Clock = std::chrono::steady_clock;
    struct Contest {
        std::deque<Clock::time_point> answers;
        bool isSlow = false;
    };

    void forgetQuietOnes();

    std::unordered_map<Rival, Contest> m_contests;
    bool m_hasBegun = false;
    std::optional<Clock::time_point> m_lastBeginning;
};
