#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <optional>

/// The applications that are known under another identifier than the one they have on this desktop:
/// a table from desktop-entry ids, window classes and names of programs to identifiers.
class ApplicationIdentities {
public:
    /// The table that Veyla comes with, resources/identities.json.
    static ApplicationIdentities builtIn();
    /// Reads a table. Throws JsonError, naming the place, when it is not one.
    static ApplicationIdentities fromJsonText(const QByteArray& text);

    /// The identifier for a name, compared without case; nothing when the table does not have it.
    std::optional<QString> identifierFor(const QString& name) const;

private:
    QHash<QString, QString> m_identifiers;
};
