#pragma once

#include <QByteArray>
#include <QTemporaryDir>

/// A key for releases, used with the commands that docs/updates.md tells.
class SigningKey {
public:
    /// Makes one; throws std::runtime_error when the `openssl` program fails.
    SigningKey();

    /// As the build setting wants it.
    const QByteArray& publicKey() const { return m_publicKey; }
    /// As the list of releases wants it.
    QByteArray signatureOf(const QByteArray& package) const;

private:
    QTemporaryDir m_folder;
    QByteArray m_publicKey;
};
