#include "Models/WorkspaceSnapshot.h"

#include "Models/Json.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <limits>

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

/// Qt reads a number that it cannot hold as a double, and that as the nearest integer that it can
/// hold: -9223372036854775809 becomes one that fits. Where that can happen, which is beyond the
/// integers that every double holds exactly, a priority must be in the text digit for digit. The
/// text is one with plain integers.
void requireExactPriorities(const QList<MaskPreset>& presets, const QByteArray& text) {
    constexpr qint64 firstInexact = qint64{1} << std::numeric_limits<double>::digits;
    constexpr QByteArrayView numberCharacters = "0123456789.eE";
    qsizetype position = 0;  // the presets are in the order of the text
    for (qsizetype index = 0; index < presets.size(); ++index) {
        const qint64 priority = presets.at(index).priority;
        if (-firstInexact < priority && priority < firstInexact) continue;
        const QByteArray digits = QByteArray::number(priority);
        do {
            position = text.indexOf(digits, position);
            if (position < 0) {
                const JsonPath root;
                const JsonPath list(root, "presets"_L1);
                const JsonPath preset(list, index);
                throw JsonError(JsonPath(preset, "priority"_L1),
                                u"expected a 64-bit integer, found a number between two"_s);
            }
            position += digits.size();
        } while (position < text.size() && numberCharacters.contains(text.at(position)));
    }
}

}  // namespace

WorkspaceSnapshot WorkspaceSnapshot::fromJsonText(const QByteArray& text) {
    const JsonPath path;
    QJsonParseError error;
    QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError) {
        throw JsonError(path, u"%1 at byte offset %2"_s.arg(error.errorString()).arg(error.offset));
    }
    // The offset above is one in the text as it stands in the file.
    const QByteArray plainText = withPlainIntegers(text);
    if (plainText != text) document = QJsonDocument::fromJson(plainText);
    const QJsonValue root =
        document.isObject() ? QJsonValue(document.object()) : QJsonValue(document.array());
    WorkspaceSnapshot snapshot = snapshotFromJson(JsonObjectReader(root, path));
    requireExactPriorities(snapshot.presets, plainText);
    return snapshot;
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
