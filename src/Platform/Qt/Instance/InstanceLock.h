#pragma once

#include <QString>
#include <optional>

/// Decides which process owns the workspace: the one that holds a lock on a file in the runtime
/// directory. The kernel keeps the lock and drops it with the process, however that ends, so what
/// a dead process left behind never counts. The file itself stays; it holds the owner's process
/// id, for others to name.
class InstanceLock {
public:
    enum class Outcome { taken, heldByAnother, unusable };

    /// $XDG_RUNTIME_DIR when it can be used, else what Qt falls back to, else empty.
    static QString runtimeDirectory();

    explicit InstanceLock(const QString& directory);
    InstanceLock(const InstanceLock&) = delete;
    InstanceLock& operator=(const InstanceLock&) = delete;
    ~InstanceLock();

    /// Never waits. `unusable` when the file cannot be made or locked; `errorText` tells why.
    Outcome take();

    /// Lets another process take the lock. Done at the latest when the object dies.
    void release();

    /// Whether another process holds the lock. Leaves the lock alone, so that it may be asked at
    /// any time.
    bool isHeldByAnother() const;

    /// The process id that the owner wrote down; nothing while no other process holds the lock,
    /// or when it has only just taken it.
    std::optional<qint64> ownerPid() const;

    /// One line, empty unless the last `take` was `unusable`.
    const QString& errorText() const { return m_errorText; }

private:
    Outcome unusable(int errorNumber);
    void writePid() const;

    QString m_path;
    QString m_errorText;
    int m_file = -1;
};
