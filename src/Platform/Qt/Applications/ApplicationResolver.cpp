#include "Platform/Qt/Applications/ApplicationResolver.h"

#include <QFileInfo>
#include <utility>

using namespace Qt::Literals::StringLiterals;

struct ApplicationResolver::Evidence {
    std::optional<ApplicationScope> scope;
    /// What the window says itself, the best first.
    QStringList announced;
    QStringList classes;
    QStringList programs;
};

namespace {

QStringList filled(const QStringList& texts) {
    QStringList result;
    for (const QString& text : texts)
        if (!text.isEmpty()) result.append(text);
    return result;
}

QString idFromDesktopFile(const QString& name) {
    const QString file = QFileInfo(name).fileName();
    return file.endsWith(".desktop"_L1) ? file.chopped(8) : file;
}

std::optional<QString> firstOf(const QStringList& texts) {
    return texts.isEmpty() ? std::nullopt : std::optional(texts.first());
}

QStringList programsOf(const ProcessFacts& process) {
    // A program can call itself anything, but of a script only the interpreter can be seen.
    if (isSharedLauncher(process.executable)) return filled({process.commandName});
    return filled({process.executable, process.commandName});
}

}  // namespace

ApplicationResolver::ApplicationResolver(DesktopEntries entries, ApplicationIdentities identities)
    : m_entries(std::move(entries)), m_identities(std::move(identities)) {}

RunningApplication ApplicationResolver::applicationOf(const WindowFacts& window,
                                                      const std::optional<ProcessFacts>& process) {
    return resolve({process ? process->scope : std::nullopt,
                    filled({window.gtkApplicationId, idFromDesktopFile(window.desktopFile)}),
                    filled({window.className, window.classInstance}),
                    process ? programsOf(*process) : QStringList()});
}

RunningApplication ApplicationResolver::applicationOf(const ProcessFacts& process) {
    return resolve({process.scope, {}, {}, programsOf(process)});
}

bool ApplicationResolver::isInTable(const ProcessFacts& process) const {
    QStringList names = programsOf(process);
    if (process.scope && process.scope->isSandbox) names.append(process.scope->id);
    return tableIdentifier(names).has_value();
}

std::optional<QString> ApplicationResolver::tableIdentifier(const QStringList& names) const {
    for (const QString& name : names)
        if (auto identifier = m_identities.identifierFor(name)) return identifier;
    return std::nullopt;
}

std::optional<DesktopEntry> ApplicationResolver::entryOf(const Evidence& evidence) {
    for (const QString& id : evidence.announced)
        if (auto entry = m_entries.byId(id)) return entry;
    for (const QString& windowClass : evidence.classes)
        if (auto entry = m_entries.byWindowClass(windowClass)) return entry;
    for (const QString& program : evidence.programs)
        if (auto entry = m_entries.byExecutable(program)) return entry;
    return std::nullopt;
}

RunningApplication ApplicationResolver::resolve(Evidence evidence) {
    auto entry = entryOf(evidence);
    const bool wasStartedFromAnother =
        evidence.scope && !evidence.scope->isSandbox && entry &&
        entry->id.compare(evidence.scope->id, Qt::CaseInsensitive) != 0;
    if (wasStartedFromAnother) evidence.scope.reset();
    // What is in a sandbox may resemble an application outside.
    if (evidence.scope) entry = m_entries.byId(evidence.scope->id);

    const QStringList scope = evidence.scope ? QStringList(evidence.scope->id) : QStringList();
    const QStringList entryIds = entry ? QStringList(entry->id) : QStringList();
    const QStringList names =
        scope + evidence.announced + entryIds + evidence.classes + evidence.programs;
    const auto identifier = firstOf(names);
    if (identifier)
        if (auto named = m_entries.byId(*identifier)) entry = std::move(named);

    const auto known = tableIdentifier(names);
    return {entry ? entry->name : firstOf(evidence.classes + evidence.programs),
            known ? known : identifier};
}
