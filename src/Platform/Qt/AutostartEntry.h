#pragma once

#include "Platform/LoginItem.h"

/// The login item as a desktop entry in the user's autostart folder, where every desktop looks.
/// Switching it off removes the entry.
class AutostartEntry final : public LoginItem {
public:
    /// `path` is the entry's; its folder is made when it is needed. `program` is the absolute path
    /// of what the entry starts, in the background.
    AutostartEntry(const QString& path, const QString& program);

    /// The entry of the running program. An application object must exist.
    static AutostartEntry ofThisProgram();

    /// An entry that is hidden, or switched off by the desktop, does not count.
    bool isEnabled() const override;
    std::optional<QString> setEnabled(bool isEnabled) override;

private:
    std::optional<QString> write();
    std::optional<QString> remove();
    QByteArray text() const;

    QString m_path;
    QString m_program;
};
