#include "Models/ScreenMask.h"

#include "Models/Json.h"

#include <QHashFunctions>

using namespace Qt::Literals::StringLiterals;

QString ScreenMask::storedText(Style style) {
    switch (style) {
        case Style::blackout:
            return u"blackout"_s;
        case Style::frosted:
            return u"frosted"_s;
        case Style::softTint:
            return u"softTint"_s;
    }
    Q_UNREACHABLE();
}

std::optional<ScreenMask::Style> ScreenMask::styleFromStoredText(const QString& text) {
    for (const Style style : allStyles) {
        if (storedText(style) == text) return style;
    }
    return std::nullopt;
}

QString ScreenMask::displayName(Style style) {
    switch (style) {
        case Style::blackout:
            return u"Blackout"_s;
        case Style::frosted:
            return u"Frosted"_s;
        case Style::softTint:
            return u"Soft Tint"_s;
    }
    Q_UNREACHABLE();
}

ScreenMask ScreenMask::fromJson(const JsonObjectReader& reader) {
    return {.id = reader.uuid("id"_L1),
            .name = reader.string("name"_L1),
            .frame = reader.object("frame"_L1, maskFrameFromJson),
            .opacity = reader.number("opacity"_L1),
            .colorHex = reader.string("colorHex"_L1),
            .isVisible = reader.boolean("isVisible"_L1),
            .isClickThrough = reader.boolean("isClickThrough"_L1),
            .style = reader.parsed("style"_L1, "style"_L1, styleFromStoredText),
            .groupID = reader.optionalUuid("groupID"_L1)};
}

QJsonObject ScreenMask::toJson(const JsonPath& path) const {
    static const QJsonObject members =
        jsonObjectWithMembers({"colorHex"_L1, "frame"_L1, "id"_L1, "isClickThrough"_L1,
                               "isVisible"_L1, "name"_L1, "opacity"_L1, "style"_L1});
    QJsonObject object = members;
    object.insert("colorHex"_L1, colorHex);
    object.insert("frame"_L1, maskFrameToJson(frame, JsonPath(path, "frame"_L1)));
    if (groupID) object.insert("groupID"_L1, uuidText(*groupID));
    object.insert("id"_L1, uuidText(id));
    object.insert("isClickThrough"_L1, isClickThrough);
    object.insert("isVisible"_L1, isVisible);
    object.insert("name"_L1, name);
    object.insert("opacity"_L1, finiteJsonNumber(opacity, path, "opacity"_L1));
    object.insert("style"_L1, storedText(style));
    return object;
}

std::size_t qHash(const ScreenMask& mask, std::size_t seed) noexcept {
    return qHashMulti(seed, mask.id, mask.name, mask.frame, mask.opacity, mask.colorHex,
                      mask.isVisible, mask.isClickThrough, static_cast<int>(mask.style),
                      mask.groupID.has_value(), mask.groupID.value_or(QUuid()));
}

QString uuidText(const QUuid& id) {
    // By hand, because QUuid's own text is lower-case and in braces, and saving a large workspace
    // writes thousands of these.
    constexpr QLatin1StringView hexDigits = "0123456789ABCDEF"_L1;
    constexpr QLatin1StringView shape = "00000000-0000-0000-0000-000000000000"_L1;
    QString text(shape);
    QChar* place = text.data();
    for (const char byte : id.toRfc4122()) {
        if (*place == u'-') ++place;
        const auto value = static_cast<unsigned char>(byte);
        *place++ = hexDigits[value >> 4U];
        *place++ = hexDigits[value & 0xFU];
    }
    return text;
}
