#pragma once

#include <QJsonObject>
#include <QString>
#include <QUuid>
#include <cstddef>

class JsonObjectReader;

/// A named group of masks. The masks name their group; the group holds no list of members.
struct MaskGroup {
    QUuid id;
    QString name;
    bool isExpanded = true;
    bool isVisible = true;
    bool isLocked = false;

    /// Throws JsonError when a member is missing or has the wrong type.
    static MaskGroup fromJson(const JsonObjectReader& reader);
    QJsonObject toJson() const;

    bool operator==(const MaskGroup&) const = default;
};

std::size_t qHash(const MaskGroup& group, std::size_t seed = 0) noexcept;
