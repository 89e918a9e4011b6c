#pragma once

#include <QString>
#include <optional>

/// A colour in the sRGB colour space; every component from 0 to 1.
struct Color {
    double red = 0;
    double green = 0;
    double blue = 0;
    double opacity = 1;

    /// Reads "#" and six hexadecimal digits. Every character that is not alphanumeric in the
    /// Unicode sense (a letter, mark or number of any script) is first stripped from both ends;
    /// what remains must be exactly six ASCII hexadecimal digits in either case. Nothing for any
    /// other text. This is the one place where colour texts are interpreted.
    static std::optional<Color> fromHex(const QString& text);

    /// The same colour with its opacity multiplied.
    Color withOpacity(double factor) const { return {red, green, blue, opacity * factor}; }

    bool operator==(const Color&) const = default;
};
