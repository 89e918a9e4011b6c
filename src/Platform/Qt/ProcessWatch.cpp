#include "Platform/Qt/ProcessWatch.h"

#include <QDir>
#include <QSocketNotifier>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

/// A process with the handle that tells of its end. Without one, as when the process has no more
/// handles to spare, the end is seen by the next look at it only.
struct ProcessWatch::Watched {
    explicit Watched(pid_t process)
        // The C library's own name for this call is not in all versions that Veyla builds with.
        : handle(static_cast<int>(syscall(SYS_pidfd_open, process, 0))) {}
    ~Watched() {
        end.reset();
        if (handle >= 0) close(handle);
    }
    Watched(const Watched&) = delete;
    Watched& operator=(const Watched&) = delete;

    int handle;
    std::unique_ptr<QSocketNotifier> end;
    ProcessFacts facts;
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
    auto watched = std::make_unique<Watched>(process);
    // The handle may belong to a later process of the same number.
    facts = readProcess(process);
    if (!facts || !isWanted(*facts, process)) return false;
    watched->facts = *std::move(facts);
    if (watched->handle >= 0) {
        watched->end = std::make_unique<QSocketNotifier>(watched->handle, QSocketNotifier::Read);
        QObject::connect(watched->end.get(), &QSocketNotifier::activated, [this, process] {
            // The notifier that calls goes with what is forgotten; it must not do so yet.
            const auto pinned = std::move(m_processes[process]);
            pinned->end->setEnabled(false);
            pinned->end.release()->deleteLater();
            tellIf(forget(process));
        });
    }
    m_processes.emplace(process, std::move(watched));
    return true;
}

bool ProcessWatch::forget(pid_t process) {
    return m_processes.erase(process) > 0;
}

void ProcessWatch::tellIf(bool hasChanged) {
    if (hasChanged) m_changed.notify();
}
