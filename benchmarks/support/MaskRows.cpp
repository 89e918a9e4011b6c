#include "benchmarks/support/MaskRows.h"

QList<ScreenMask> rowsOfMasks(int count) {
    constexpr int masksPerRow = 10;
    constexpr int rows = 5;
    QList<ScreenMask> masks;
    for (int number = 0; number < count; ++number) {
        const int column = number % masksPerRow;
        const int row = number / masksPerRow % rows;
        masks.append(
            {.id = QUuid::createUuid(),
             .name = QStringLiteral("Mask %1").arg(number + 1),
             .frame = {.x = 20.0 + 120 * column, .y = 720.0 - 80 * row, .width = 100, .height = 60},
             .opacity = 0.9,
             .colorHex = QStringLiteral("#101114"),
             .style = ScreenMask::allStyles.at(static_cast<std::size_t>(number) %
                                               ScreenMask::allStyles.size()),
             .groupID = std::nullopt});
    }
    return masks;
}
