#pragma once

#include "Models/WorkspaceSnapshot.h"
#include "Platform/SystemLog.h"

#include <QString>
#include <optional>

/// Reads and writes the workspace document, "workspace.json" in the folder it is given. Both
/// operations are synchronous. The store keeps no state, watches nothing and locks nothing: it is
/// for the one process that owns the workspace.
class PresetStore {
public:
    /// `directory` is the application's own folder in the user's Application Support directory;
    /// it is made when something is first saved. `log` must outlive the store.
    PresetStore(QString directory, SystemLog& log);

    /// The stored workspace, or nothing when there is none that can be read. A document that
    /// cannot be decoded is logged, left in place and copied to "workspace-backup.json", unless a
    /// backup is already there. Of two masks with one id the second gets a new one, with a log
    /// line.
    std::optional<WorkspaceSnapshot> loadWorkspace();

    /// Replaces the document, also one that is read-only, whole or not at all: mode 0600 in a
    /// folder of mode 0700, flushed to the disk together with the folder. A failure is logged with
    /// the system's own reason, and the old document stays.
    void saveWorkspace(const WorkspaceSnapshot& snapshot);

private:
    QString workspacePath() const;
    QString backupPath() const;

    QString m_directory;
    SystemLog& m_log;
};
