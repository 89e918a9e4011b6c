#pragma once

#include <QString>
#include <QStringList>
#include <optional>

/// The notes of one release, as the release-notes endpoint writes them.
struct ChangelogRelease {
    QString version;
    QString date;
    QString dateLabel;
    std::optional<QString> tag;
    QStringList changes;

    bool operator==(const ChangelogRelease&) const = default;
};
