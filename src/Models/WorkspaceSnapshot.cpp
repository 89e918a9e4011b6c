#include "Models/WorkspaceSnapshot.h"

#include "Models/Json.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::Literals::StringLiterals;

namespace {

WorkspaceSnapshot snapshotFromJson(const JsonObjectReader& reader) {
    return {.masks = reader.list<ScreenMask>("masks"_L1),
            .presets = reader.list<MaskPreset>("presets"_L1),
            .groups = reader.optionalList<MaskGroup>("groups"_L1),
            .selectedMaskID = reader.optionalUuid("selectedMaskID"_L1),
            .areMasksVisible = reader.boolean("areMasksVisible"_L1),
            .isEditingEnabled = reader.boolean("isEditingEnabled"_L1),
            .hasCompletedOnboarding = reader.boolean("hasCompletedOnboarding"_L1),
            .settings = reader.object("settings"_L1, AppSettings::fromJson)};
}

}  // namespace

WorkspaceSnapshot WorkspaceSnapshot::fromJsonText(const QByteArray& text) {
    const JsonPath path;
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError) {
        throw JsonError(path, u"%1 at byte offset %2"_s.arg(error.errorString()).arg(error.offset));
    }
    const QJsonValue root =
        document.isObject() ? QJsonValue(document.object()) : QJsonValue(document.array());
    return snapshotFromJson(JsonObjectReader(root, path));
}

QByteArray WorkspaceSnapshot::toJsonText() const {
    const JsonPath path;
    QJsonArray groupArray;
    for (const MaskGroup& group : groups)
        groupArray.append(group.toJson());

    QJsonObject object;
    object.insert("areMasksVisible"_L1, areMasksVisible);
    object.insert("groups"_L1, groupArray);
    object.insert("hasCompletedOnboarding"_L1, hasCompletedOnboarding);
    object.insert("isEditingEnabled"_L1, isEditingEnabled);
    object.insert("masks"_L1, recordsToJson(masks, path, "masks"_L1));
    object.insert("presets"_L1, recordsToJson(presets, path, "presets"_L1));
    if (selectedMaskID) object.insert("selectedMaskID"_L1, uuidText(*selectedMaskID));
    object.insert("settings"_L1, settings.toJson(JsonPath(path, "settings"_L1)));
    return QJsonDocument(object).toJson(QJsonDocument::Indented);
}
