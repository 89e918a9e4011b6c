#pragma once

#include <QString>
#include <QStringList>
#include <optional>

class JsonObjectReader;

/// The notes of one release, as the release-notes endpoint writes them.
struct ChangelogRelease {
    QString version;
    QString date;
    QString dateLabel;
    std::optional<QString> tag;
    QStringList changes;

    /// Throws JsonError when a member other than `tag` is missing, or one has another type.
    static ChangelogRelease fromJson(const JsonObjectReader& reader);

    bool operator==(const ChangelogRelease&) const = default;
};
