#pragma once

#include <QString>

/// What users ask of every program in the settings of their desktop.
struct AppearanceWishes {
    /// Nothing slides or fades.
    bool isMotionReduced = false;
    /// Text and outlines stand out from what they are on.
    bool isContrastIncreased = false;

    bool operator==(const AppearanceWishes&) const = default;
};

/// What one source or the other tells of.
inline AppearanceWishes operator|(const AppearanceWishes& a, const AppearanceWishes& b) {
    return {.isMotionReduced = a.isMotionReduced || b.isMotionReduced,
            .isContrastIncreased = a.isContrastIncreased || b.isContrastIncreased};
}

/// Whether a theme of that name is one of those that desktops switch to for increased contrast.
bool isContrastTheme(const QString& name);
