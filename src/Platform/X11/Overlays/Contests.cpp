#include "Platform/X11/Overlays/Contests.h"

#include <algorithm>
#include <utility>

namespace {

// More answers than this in a second mean that a rival insists.
constexpr std::size_t mostAnswers = 40;
// Once slowed down, a contest goes on at the slower rate until it is quiet for a while.
constexpr std::size_t mostAnswersWhenSlow = 2;
constexpr std::chrono::seconds countedTime{1};

}  // namespace

void Contests::forgetQuietOnes() {
    const auto start = Clock::now() - countedTime;
    for (auto& [rival, contest] : m_contests)
        std::erase_if(contest.answers, [&](Clock::time_point answer) { return answer < start; });
    std::erase_if(m_contests, [](const auto& entry) { return entry.second.answers.empty(); });
}

bool Contests::mayAnswer(const std::vector<Rival>& rivals) {
    forgetQuietOnes();
    bool may = false;
    for (const Rival rival : rivals) {
        const auto found = m_contests.find(rival);
        if (found == m_contests.end()) {
            may = true;
            continue;
        }
        Contest& contest = found->second;
        if (contest.answers.size() < (contest.isSlow ? mostAnswersWhenSlow : mostAnswers)) {
            may = true;
        } else if (!contest.isSlow) {
            m_hasBegun = true;
            contest.isSlow = true;
        }
    }
    return may;
}

void Contests::noteAnswer(const std::vector<Rival>& rivals) {
    for (const Rival rival : rivals)
        m_contests[rival].answers.push_back(Clock::now());
}

bool Contests::takeBeginning() {
    if (!std::exchange(m_hasBegun, false)) return false;
    const auto now = Clock::now();
    const bool isFirst = !m_lastBeginning || now - *m_lastBeginning > std::chrono::minutes(1);
    if (isFirst) m_lastBeginning = now;
    return isFirst;
}
