#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUrl>
#include <optional>

class ReleaseVersion;

/// The file of a release, and how to tell that it is the right one.
struct AppcastEnclosure {
    QUrl url;
    /// In bytes; absent when the list does not tell, or tells nonsense.
    std::optional<qint64> length;
    /// An Ed25519 signature of the file in Base64, as it stands in the list; empty for none.
    QByteArray signature;
    /// The operating system that the file is for; empty for any.
    QString system;

    bool operator==(const AppcastEnclosure&) const = default;
};

/// One release in a list of releases.
struct AppcastItem {
    /// What decides which release is newer.
    QString version;
    /// What people see in its place, on one line; empty when it is the same, or too long to see.
    QString shortVersion;
    QString title;
    /// Release notes, as plain text or HTML.
    QString notes;
    /// Empty for the releases that are for everybody.
    QString channel;
    /// Absent when there is nothing to download.
    std::optional<AppcastEnclosure> enclosure;

    const QString& displayVersion() const {
        return shortVersion.isEmpty() ? version : shortVersion;
    }

    bool operator==(const AppcastItem&) const = default;
};

/// Why a list of releases cannot be read, in words for the user.
struct AppcastError {
    QString message;
};

/// A list of releases in the appcast format: RSS 2.0, with the elements and attributes of the
/// namespace "http://www.andymatuschak.org/xml-namespaces/sparkle".
struct Appcast {
    QList<AppcastItem> items;

    /// Throws AppcastError when it is not well-formed XML, no RSS, or holds items but no version.
    static Appcast fromXml(const QByteArray& xml);

    /// The newest release for this operating system and for everybody that is above the running
    /// version. Pre-releases are only for those who run one. Nothing when there is none.
    const AppcastItem* newestAbove(const ReleaseVersion& running) const;
};
