#include "Models/MaskFrame.h"

#include "Models/Json.h"

using namespace Qt::Literals::StringLiterals;

MaskFrame maskFrameFromJson(const JsonObjectReader& reader) {
    return {.x = reader.number("x"_L1),
            .y = reader.number("y"_L1),
            .width = reader.number("width"_L1),
            .height = reader.number("height"_L1)};
}

QJsonObject maskFrameToJson(const MaskFrame& frame, const JsonPath& path) {
    static const QJsonObject members =
        jsonObjectWithMembers({"height"_L1, "width"_L1, "x"_L1, "y"_L1});
    QJsonObject object = members;
    object.insert("height"_L1, finiteJsonNumber(frame.height, path, "height"_L1));
    object.insert("width"_L1, finiteJsonNumber(frame.width, path, "width"_L1));
    object.insert("x"_L1, finiteJsonNumber(frame.x, path, "x"_L1));
    object.insert("y"_L1, finiteJsonNumber(frame.y, path, "y"_L1));
    return object;
}
