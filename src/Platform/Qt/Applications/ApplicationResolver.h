#pragma once

#include "Platform/Qt/Applications/ApplicationIdentities.h"
#include "Platform/Qt/Applications/DesktopEntries.h"
#include "Platform/Qt/Applications/ProcessFacts.h"
#include "Platform/Workspace.h"

#include <QString>
#include <QStringList>
#include <optional>

/// What a window tells of its application; empty where it tells nothing.
struct WindowFacts {
    QString gtkApplicationId;
    /// A desktop-entry id, also with ".desktop" or as a path.
    QString desktopFile;
    QString classInstance;
    QString className;
};

/// Tells which application a window or a process belongs to.
///
/// The table of identities comes first, asked for everything that is known of the window and the
/// process. Then, in this order: the sandbox or scope that the process runs in, what the window
/// says of its application, the desktop entry that fits the window's class or the program, the
/// window's class, the program. A scope is not believed about a window or program that has a
/// desktop entry of its own: it was started from the other application.
class ApplicationResolver {
public:
    ApplicationResolver(DesktopEntries entries, ApplicationIdentities identities);

    /// `process` is nothing for a window whose process is not known.
    RunningApplication applicationOf(const WindowFacts& window,
                                     const std::optional<ProcessFacts>& process);
    /// An application without a window.
    RunningApplication applicationOf(const ProcessFacts& process);
    /// Whether the table of identities has the process. Never reads desktop entries.
    bool isInTable(const ProcessFacts& process) const;

private:
    struct Evidence;
    std::optional<QString> tableIdentifier(const QStringList& names) const;
    std::optional<DesktopEntry> entryOf(const Evidence& evidence);
    RunningApplication resolve(Evidence evidence);

    DesktopEntries m_entries;
    ApplicationIdentities m_identities;
};
