#include "Platform/Qt/Applications/ProcessWatch.h"

#include "Platform/Qt/Applications/ProcessEnd.h"

#include <QDir>
#include <unistd.h>
#include <utility>

struct ProcessWatch::Watched {
    Watched(pid_t process, std::function<void()> onEnd) : end(process, std::move(onEnd)) {}

    ProcessFacts facts;
    ProcessEnd end;
};

ProcessWatch::ProcessWatch(Scheduler& scheduler, const QByteArray& display,
                           IsOfInterest isOfInterest, KernelEvents kernelEvents)
    : m_display(display), m_isOfInterest(std::move(isOfInterest)) {
    // Before the look at all, so that no start falls between.
    if (kernelEvents == KernelEvents::whereAllowed)
        m_events = ProcessEvents::open(scheduler, [this](const auto& started) {
            if (!started) {
                lookAtAll();
                return;
            }
            bool hasChanged = false;
            for (const pid_t process : *started)
                hasChanged |= update(process);
            tellIf(hasChanged);
        });
    lookAtAll();
}

ProcessWatch::~ProcessWatch() = default;

std::vector<ProcessFacts> ProcessWatch::processes() const {
    std::vector<ProcessFacts> facts;
    facts.reserve(m_processes.size());
    for (const auto& [process, watched] : m_processes)
        facts.push_back(watched->facts);
    return facts;
}

Subscription ProcessWatch::onChanged(std::function<void()> callback) {
    return m_changed.subscribe(std::move(callback));
}

void ProcessWatch::look(pid_t process) {
    tellIf(update(process));
}

void ProcessWatch::lookAtAll() {
    bool hasChanged = false;
    std::vector<pid_t> processes;
    for (const auto& [process, watched] : m_processes)
        processes.push_back(process);
    for (const QString& name : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs))
        if (const pid_t process = name.toInt(); process > 0) processes.push_back(process);
    for (const pid_t process : processes)
        hasChanged |= update(process);
    tellIf(hasChanged);
}

bool ProcessWatch::isWanted(const ProcessFacts& facts, pid_t process) const {
    return facts.user == geteuid() && m_isOfInterest(facts) &&
           !isOnOtherDisplay(process, m_display);
}

bool ProcessWatch::update(pid_t process) {
    auto facts = readProcess(process);
    if (!facts || !isWanted(*facts, process)) return forget(process);
    if (const auto known = m_processes.find(process); known != m_processes.end()) {
        const bool hasChanged = known->second->facts != *facts;
        known->second->facts = *std::move(facts);
        return hasChanged;
    }
    auto watched = std::make_unique<Watched>(process, [this, process] { tellIf(forget(process)); });
    // What was read may be of an earlier process of the same number.
    facts = readProcess(process);
    if (!facts || !isWanted(*facts, process)) return false;
    watched->facts = *std::move(facts);
    m_processes.emplace(process, std::move(watched));
    return true;
}

bool ProcessWatch::forget(pid_t process) {
    return m_processes.erase(process) > 0;
}

void ProcessWatch::tellIf(bool hasChanged) {
    if (hasChanged) m_changed.notify();
}
