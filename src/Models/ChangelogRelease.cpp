#include "Models/ChangelogRelease.h"

#include "Models/Json.h"

using namespace Qt::Literals::StringLiterals;

ChangelogRelease ChangelogRelease::fromJson(const JsonObjectReader& reader) {
    return {.version = reader.string("version"_L1),
            .date = reader.string("date"_L1),
            .dateLabel = reader.string("dateLabel"_L1),
            .tag = reader.optionalString("tag"_L1),
            .changes = reader.strings("changes"_L1)};
}
