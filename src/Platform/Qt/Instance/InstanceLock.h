#pragma once

#include <QString>
#include <optional>
#include <vector>

/// Decides which process owns the workspace: the one that holds every one of these locks that can
/// be had. The kernel keeps them and drops them with the process, however that ends, so what a dead
/// process left behind never counts.
/// - The folder of the workspace, so that no clean-up takes the lock away.
/// - The file "workspace.lock" in it, since a lock of a folder does not reach the other computers
///   that share a home over the network.
/// - A file in the runtime directory, which lets one Veyla run in a session, whatever its
/// workspace,
///   and serves alone where the file system of the workspace has no locks.
/// The files stay; they hold the owner's process id, for others to name.
class InstanceLock {
public:
    enum class Outcome { taken, heldByAnother, unusable };

    /// $XDG_RUNTIME_DIR when it is the user's and nobody else can write to it, else what Qt falls
    /// back to, which is checked in the same way, else empty.
    static QString runtimeDirectory();

    /// The folder of the workspace is made when the lock is taken. An empty runtime directory does
    /// without the file there.
    InstanceLock(const QString& workspaceDirectory, const QString& runtimeDirectory);
    InstanceLock(const InstanceLock&) = delete;
    InstanceLock& operator=(const InstanceLock&) = delete;
    ~InstanceLock();

    /// Never waits. `unusable` when nothing can be locked; `errorText` tells why. Another process
    /// that asks just then may be taken for an owner, so ask `isHeldByAnother` before giving up.
    Outcome take();

    /// Lets another process take the lock. Done at the latest when the object dies.
    void release();

    /// Whether another process holds the lock. Leaves the lock alone, so that it may be asked at
    /// any time.
    bool isHeldByAnother() const;

    /// The process id that the owner wrote down; nothing while no other process holds the lock,
    /// or when it has only just taken it.
    std::optional<qint64> ownerPid() const;

    /// One line: why the last `take` was `unusable`, or what it has `taken` in spite of. Else
    /// empty.
    const QString& errorText() const { return m_errorText; }

private:
    bool isTaken() const { return !m_held.empty(); }

    QString m_folder;
    QString m_workspaceFile;
    QString m_runtimeFile;
    QString m_errorText;
    std::vector<int> m_held;
};
