#pragma once

#include "Models/ScreenMask.h"

#include <QJsonObject>
#include <QList>
#include <QString>
#include <QUuid>
#include <cstddef>
#include <optional>

/// A saved layout: full copies of masks, optionally bound to an application.
struct MaskPreset {
    QUuid id;
    QString name;
    /// Free text that says when the preset is meant to be used; shown, never interpreted.
    QString trigger;
    QList<ScreenMask> masks;
    /// Whether the preset is applied when its target application comes to the front.
    bool autoApply = false;
    std::optional<QString> targetAppName;
    /// What automatic application matches on.
    std::optional<QString> targetBundleIdentifier;
    /// The larger value wins when several presets match.
    qint64 priority = 0;

    /// "Auto for NAME • P" and the priority, or "Manual".
    QString activationSummary() const;

    /// Throws JsonError when a required member is missing, or any has the wrong type or value.
    static MaskPreset fromJson(const JsonObjectReader& reader);
    /// Throws JsonError, naming the member below `path`, when a number is not finite.
    QJsonObject toJson(const JsonPath& path) const;

    bool operator==(const MaskPreset&) const = default;
};

std::size_t qHash(const MaskPreset& preset, std::size_t seed = 0) noexcept;
