#include "Models/MaskPreset.h"

#include "Models/Json.h"

#include <QHashFunctions>

using namespace Qt::Literals::StringLiterals;

QString MaskPreset::activationSummary() const {
    if (!autoApply || !targetAppName) return u"Manual"_s;
    return u"Auto for "_s + *targetAppName + u" • P"_s + QString::number(priority);
}

MaskPreset MaskPreset::fromJson(const JsonObjectReader& reader) {
    return {.id = reader.uuid("id"_L1),
            .name = reader.string("name"_L1),
            .trigger = reader.string("trigger"_L1),
            .masks = reader.list<ScreenMask>("masks"_L1),
            .autoApply = reader.boolean("autoApply"_L1),
            .targetAppName = reader.optionalString("targetAppName"_L1),
            .targetBundleIdentifier = reader.optionalString("targetBundleIdentifier"_L1),
            .priority = reader.signed64("priority"_L1)};
}

QJsonObject MaskPreset::toJson(const JsonPath& path) const {
    QJsonObject object;
    object.insert("autoApply"_L1, autoApply);
    object.insert("id"_L1, uuidText(id));
    object.insert("masks"_L1, recordsToJson(masks, path, "masks"_L1));
    object.insert("name"_L1, name);
    object.insert("priority"_L1, priority);
    if (targetAppName) object.insert("targetAppName"_L1, *targetAppName);
    if (targetBundleIdentifier) {
        object.insert("targetBundleIdentifier"_L1, *targetBundleIdentifier);
    }
    object.insert("trigger"_L1, trigger);
    return object;
}

std::size_t qHash(const MaskPreset& preset, std::size_t seed) noexcept {
    return qHashMulti(seed, preset.id, preset.name, preset.trigger, preset.masks, preset.autoApply,
                      preset.targetAppName.has_value(), preset.targetAppName.value_or(QString()),
                      preset.targetBundleIdentifier.has_value(),
                      preset.targetBundleIdentifier.value_or(QString()), preset.priority);
}
