#include "Models/MaskGroup.h"

#include "Models/Json.h"
#include "Models/ScreenMask.h"

#include <QHashFunctions>

using namespace Qt::Literals::StringLiterals;

MaskGroup MaskGroup::fromJson(const JsonObjectReader& reader) {
    return {.id = reader.uuid("id"_L1),
            .name = reader.string("name"_L1),
            .isExpanded = reader.boolean("isExpanded"_L1),
            .isVisible = reader.boolean("isVisible"_L1),
            .isLocked = reader.boolean("isLocked"_L1)};
}

QJsonObject MaskGroup::toJson() const {
    QJsonObject object;
    object.insert("id"_L1, uuidText(id));
    object.insert("isExpanded"_L1, isExpanded);
    object.insert("isLocked"_L1, isLocked);
    object.insert("isVisible"_L1, isVisible);
    object.insert("name"_L1, name);
    return object;
}

std::size_t qHash(const MaskGroup& group, std::size_t seed) noexcept {
    return qHashMulti(seed, group.id, group.name, group.isExpanded, group.isVisible,
                      group.isLocked);
}
