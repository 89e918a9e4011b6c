#include "Views/Components/MaskChoices.h"

#include "Drawing/SystemColors.h"
#include "Models/ScreenMask.h"

QStringList maskStyleNames() {
    QStringList names;
    for (const ScreenMask::Style style : ScreenMask::allStyles)
        names << ScreenMask::displayName(style);
    return names;
}

std::vector<QColor> swatchColors(std::span<const QString> hexTexts) {
    std::vector<QColor> colors;
    for (const QString& text : hexTexts)
        colors.push_back(paintColor(Color::fromHex(text).value_or(SystemColors::black)));
    return colors;
}
