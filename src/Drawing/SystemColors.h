#pragma once

#include "Models/Color.h"

#include <QColor>

/// The standard colours of the look, in sRGB.
namespace SystemColors {

inline constexpr Color black{0, 0, 0, 1};
inline constexpr Color white{1, 1, 1, 1};
inline constexpr Color cyan{0x32 / 255.0, 0xAD / 255.0, 0xE6 / 255.0, 1};
inline constexpr Color blue{0x00 / 255.0, 0x7A / 255.0, 0xFF / 255.0, 1};
inline constexpr Color indigo{0x58 / 255.0, 0x56 / 255.0, 0xD6 / 255.0, 1};

}  // namespace SystemColors

/// The same colour for painting. Components must lie between 0 and 1.
inline QColor paintColor(const Color& color) {
    return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                            static_cast<float>(color.blue), static_cast<float>(color.opacity));
}
