#pragma once

#include <QString>
#include <chrono>
#include <optional>

/// What the updater remembers from one start to the next, in a JSON file of the user's own:
/// `automaticChecks` (a Boolean, true when missing), `lastCheck` (seconds since 1970 in UTC) and
/// `skippedVersion`. Members that do not fit read as missing.
class UpdateMemory {
public:
    /// "updates.json" in the folder "Veyla" of $XDG_STATE_HOME, or of ~/.local/state when that is
    /// unset or not an absolute path.
    static QString defaultPath();

    /// Reads the file, should it be there.
    explicit UpdateMemory(QString path);

    bool checksAutomatically() const { return m_checksAutomatically; }
    std::optional<std::chrono::sys_seconds> lastCheck() const { return m_lastCheck; }
    const QString& skippedVersion() const { return m_skippedVersion; }

    /// The setters replace the file, which only the user can read. False when that fails; what is
    /// set holds until the program ends all the same.
    bool setChecksAutomatically(bool isOn);
    bool setLastCheck(std::chrono::sys_seconds time);
    bool setSkippedVersion(const QString& version);

private:
    bool save() const;

    QString m_path;
    bool m_checksAutomatically = true;
    std::optional<std::chrono::sys_seconds> m_lastCheck;
    QString m_skippedVersion;
};
