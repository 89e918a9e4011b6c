#include "Models/Geometry.h"

#include <QHashFunctions>

std::size_t qHash(const Rect& rect, std::size_t seed) noexcept {
    return qHashMulti(seed, rect.x, rect.y, rect.width, rect.height);
}
