#pragma once

#include "Models/MaskFrame.h"

#include <QJsonObject>
#include <QString>
#include <QUuid>
#include <array>
#include <cstddef>
#include <optional>

/// One mask: a rectangle of the desktop that is covered by an overlay. A plain value; it knows
/// nothing of windows, screens or files, and clamps nothing.
struct ScreenMask {
    enum class Style { blackout, frosted, softTint };

    /// Every style, in the order of every style picker.
    static constexpr std::array<Style, 3> allStyles{Style::blackout, Style::frosted,
                                                    Style::softTint};

    /// The text that the workspace file stores for a style; case-sensitive.
    static QString storedText(Style style);
    /// The style with that stored text, or nothing.
    static std::optional<Style> styleFromStoredText(const QString& text);
    /// The text that every view shows for a style.
    static QString displayName(Style style);

    QUuid id;
    QString name;
    MaskFrame frame;
    /// Fraction of full opacity; 1 is opaque.
    double opacity = 1;
    /// "#" and six hexadecimal digits; stored as given, read with Color::fromHex.
    QString colorHex;
    /// Whether the mask has an overlay on screen when masks are shown at all.
    bool isVisible = true;
    /// Whether mouse events pass through to the windows below.
    bool isClickThrough = false;
    Style style = Style::blackout;
    /// The group that the mask belongs to; may name a group that no longer exists.
    std::optional<QUuid> groupID;

    /// Throws JsonError when a required member is missing, or any has the wrong type or value.
    static ScreenMask fromJson(const JsonObjectReader& reader);
    /// Throws JsonError, naming the member below `path`, when a number is not finite.
    QJsonObject toJson(const JsonPath& path) const;

    bool operator==(const ScreenMask&) const = default;
};

std::size_t qHash(const ScreenMask& mask, std::size_t seed = 0) noexcept;

/// The canonical text of an identifier: upper-case, hyphenated, 36 characters.
QString uuidText(const QUuid& id);
