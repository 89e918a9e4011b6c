#include "Models/Json.h"
#include "Models/WorkspaceSnapshot.h"
#include "support/SampleWorkspace.h"

#include <QJsonDocument>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <variant>

using namespace Qt::Literals::StringLiterals;

namespace {

using PathStep = std::variant<QString, int>;
using Path = QList<PathStep>;

/// The value with what is at the path below it replaced; undefined removes a member.
QJsonValue replaced(const QJsonValue& value, Path path, const QJsonValue& replacement) {
    if (path.isEmpty()) return replacement;
    const PathStep step = path.takeFirst();
    if (const int* index = std::get_if<int>(&step)) {
        QJsonArray array = value.toArray();
        array[*index] = replaced(array.at(*index), path, replacement);
        return array;
    }
    QJsonObject object = value.toObject();
    const QString key = std::get<QString>(step);
    object.insert(key, replaced(object.value(key), path, replacement));
    return object;
}

QJsonValue valueAt(QJsonValue value, const Path& path) {
    for (const PathStep& step : path) {
        const int* index = std::get_if<int>(&step);
        value = index != nullptr ? value.toArray().at(*index) : value[std::get<QString>(step)];
    }
    return value;
}

QJsonObject sampleDocument() {
    return QJsonDocument::fromJson(sampleText()).object();
}

QByteArray sampleWith(const Path& path, const QJsonValue& replacement) {
    return QJsonDocument(replaced(sampleDocument(), path, replacement).toObject()).toJson();
}

/// The sample with a value that stands in the text exactly as given.
QByteArray sampleWithText(const Path& path, const QByteArray& valueText) {
    return sampleWith(path, u"PLACE"_s).replace("\"PLACE\"", valueText);
}

/// What the operation says, or nothing when it succeeds.
template <typename Operation>
std::string errorOf(Operation operation) {
    try {
        operation();
        return {};
    } catch (const JsonError& error) {
        return error.message().toStdString();
    }
}

std::string errorOfReading(const QByteArray& text) {
    return errorOf([&text] { WorkspaceSnapshot::fromJsonText(text); });
}

const Path settingsPath{u"settings"_s};
const Path maskPath{u"masks"_s, 1};
const Path presetPath{u"presets"_s, 0};
const Path bindingPath{u"settings"_s, u"hotkeyBindings"_s, u"toggleAll"_s};

/// The members of one kind of object, separated by spaces.
struct ObjectShape {
    Path path;
    QString pathText;
    QString required;
    QString optional;
};

const QList<ObjectShape> objectShapes{
    {{},
     u""_s,
     u"masks presets areMasksVisible isEditingEnabled hasCompletedOnboarding settings"_s,
     u"groups selectedMaskID"_s},
    {maskPath, u"masks[1]."_s, u"id name frame opacity colorHex isVisible isClickThrough style"_s,
     u"groupID"_s},
    {maskPath + Path{u"frame"_s}, u"masks[1].frame."_s, u"x y width height"_s, {}},
    {{u"groups"_s, 0}, u"groups[0]."_s, u"id name isExpanded isVisible isLocked"_s, {}},
    {presetPath, u"presets[0]."_s, u"id name trigger masks autoApply priority"_s,
     u"targetAppName targetBundleIdentifier"_s},
    {presetPath + Path{u"masks"_s, 0, u"frame"_s},
     u"presets[0].masks[0].frame."_s,
     u"x y width height"_s,
     {}},
    {settingsPath, u"settings."_s,
     u"defaultOpacity defaultColorHex defaultStyle defaultClickThrough showHelpOnLaunch "
     u"menuBarOnlyMode showDashboardOnLaunch hotkeyBindings"_s,
     u"lastSeenVersion autoShowMasksOnScreenShare"_s},
    {bindingPath, u"settings.hotkeyBindings.toggleAll."_s, u"keyCode modifiers"_s, {}},
};

TEST(WorkspaceJson, InsistsOnEveryRequiredMemberAndOnEveryType) {
    for (const ObjectShape& shape : objectShapes) {
        const QStringList required = shape.required.split(u' ');
        const QStringList optional = shape.optional.split(u' ', Qt::SkipEmptyParts);
        QStringList keys = required + optional;
        keys.sort();
        EXPECT_EQ(valueAt(sampleDocument(), shape.path).toObject().keys(), keys)
            << shape.pathText.toStdString();

        for (const QString& key : keys) {
            const Path path = shape.path + Path{key};
            const std::string member = (shape.pathText + key).toStdString();
            const bool isString = valueAt(sampleDocument(), path).isString();
            const QJsonValue wrong = isString ? QJsonValue(7) : QJsonValue(u"7"_s);
            const std::string found = isString ? "a number" : "a string";
            const std::string wrongError = errorOfReading(sampleWith(path, wrong));
            EXPECT_TRUE(wrongError.starts_with(member + ": expected ")) << wrongError;
            EXPECT_TRUE(wrongError.ends_with(", found " + found)) << wrongError;

            const std::string missing = errorOfReading(sampleWith(path, QJsonValue::Undefined));
            const std::string null = errorOfReading(sampleWith(path, QJsonValue::Null));
            if (required.contains(key)) {
                EXPECT_EQ(missing, member + ": required member is missing");
                EXPECT_TRUE(null.starts_with(member + ": expected ")) << null;
                EXPECT_TRUE(null.ends_with(", found null")) << null;
            } else {
                EXPECT_EQ(missing, "") << member;
                EXPECT_EQ(null, "") << member;
            }
        }
    }
}

TEST(WorkspaceJson, LeavesAbsentMembersOutAndDropsUnknownOnes) {
    WorkspaceSnapshot workspace = sampleWorkspace();
    workspace.masks[1].groupID.reset();
    workspace.selectedMaskID.reset();
    workspace.groups.clear();
    workspace.presets[0].targetAppName.reset();
    workspace.presets[0].targetBundleIdentifier.reset();
    workspace.settings.lastSeenVersion.reset();
    workspace.settings.autoShowMasksOnScreenShare.reset();

    QJsonValue document = sampleDocument();
    const QList<Path> optionalPaths{maskPath + Path{u"groupID"_s},
                                    presetPath + Path{u"targetAppName"_s},
                                    presetPath + Path{u"targetBundleIdentifier"_s},
                                    settingsPath + Path{u"lastSeenVersion"_s},
                                    settingsPath + Path{u"autoShowMasksOnScreenShare"_s},
                                    {u"selectedMaskID"_s}};
    for (const Path& path : optionalPaths) {
        document = replaced(document, path, QJsonValue::Undefined);
    }
    document = replaced(document, {u"groups"_s}, QJsonArray());
    EXPECT_EQ(QJsonDocument::fromJson(workspace.toJsonText()).object(), document.toObject());

    for (const Path& path : {Path{}, maskPath, presetPath, settingsPath, bindingPath}) {
        document = replaced(document, path + Path{u"unknown"_s}, u"kept by nobody"_s);
    }
    const auto read = WorkspaceSnapshot::fromJsonText(QJsonDocument(document.toObject()).toJson());
    EXPECT_EQ(read, workspace);
    EXPECT_EQ(read.toJsonText(), workspace.toJsonText());
}

TEST(WorkspaceJson, RejectsValuesOutOfRange) {
    const Path uuid = presetPath + Path{u"id"_s};
    const Path keyCode = bindingPath + Path{u"keyCode"_s};
    const Path priority = presetPath + Path{u"priority"_s};
    const std::string priorityRange =
        "presets[0].priority: expected an integer from -9223372036854775808 to "
        "9223372036854775807, found ";
    const struct {
        Path path;
        /// Ends with the value as it was found; empty for values that are accepted.
        std::string error;
        QByteArrayList values;
    } cases[]{
        {maskPath + Path{u"style"_s},
         "masks[1].style: unknown style ",
         {R"("Blackout")", R"("soft tint")", R"("a\nb")"}},
        {settingsPath + Path{u"defaultStyle"_s},
         "settings.defaultStyle: unknown style ",
         {R"("")"}},
        {uuid,
         "presets[0].id: expected a UUID, found ",
         {R"("{aaaaaaaa-bbbb-cccc-dddd-eeeeeeeeeeee}")", R"("aaaaaaaabbbbccccddddeeeeeeeeeeee")",
          R"("aaaaaaaa-bbbb-cccc-dddd-eeeeeeeeeee")"}},
        {maskPath + Path{u"groupID"_s},
         "masks[1].groupID: expected a UUID, found ",
         {R"("aaaaaaaa-bbbb-cccc-dddd-eeeeeeeeeeeg")", R"("aaaaaaaa-bbbb-cccc-ddddeeeee-eeeeeee")",
          R"("")"}},
        {keyCode,
         "settings.hotkeyBindings.toggleAll.keyCode: expected an integer from 0 to 4294967295, "
         "found ",
         {"-1", "4294967296", "45.5"}},
        {priority, priorityRange, {"0.5", "1e+300", "1e-05"}},
        // At the edges of what is accepted.
        {uuid,
         {},
         {R"("AAAAAAAA-bbbb-CCCC-dddd-EEEEEEEEEEEE")",
          R"("00000000-0000-0000-0000-000000000000")"}},
        {keyCode, {}, {"0", "4294967295", "6400.0"}},
        {priority, {}, {"3.0", "9223372036854775807", "-9223372036854775808", "9007199254740993"}},
    };
    for (const auto& [path, error, values] : cases)
        for (const QByteArray& value : values)
            EXPECT_EQ(errorOfReading(sampleWithText(path, value)),
                      error.empty() ? error : error + value.toStdString());

    const std::string rounded =
        "presets[0].priority: expected a 64-bit integer, found a number between two";
    const std::tuple<Path, QByteArray, std::string> others[]{
        {priority, "9223372036854775808", priorityRange + "9223372036854776000"},
        {priority, "-9223372036854775809", rounded},
        {priority, "9007199254740993.5", rounded},
        {priority, "1e19", priorityRange + "1e+19"},
        {maskPath, "[]", "masks[1]: expected an object, found an array"},
        {bindingPath, "null", "settings.hotkeyBindings.toggleAll: expected an object, found null"},
        {{u"settings"_s, u"hotkeyBindings"_s, u"no action, kept"_s},
         "1",
         "settings.hotkeyBindings[\"no action, kept\"]: expected an object, found a number"},
    };
    for (const auto& [path, value, error] : others)
        EXPECT_EQ(errorOfReading(sampleWithText(path, value)), error) << value.constData();
}

TEST(WorkspaceJson, TellsWhereTheTextIsNotJson) {
    const struct {
        QByteArray text;
        std::string error;
    } cases[]{{"", "document: illegal value at byte offset "},
              {"{\"masks\": [", "document: "},
              {"{\"masks\": tru}", "document: illegal value at byte offset 11"},
              {"{} x", "document: garbage at the end of the document at byte offset "},
              {"{\"a\": \"\xff\xfe\"}", "document: invalid UTF8 string at byte offset "},
              {QByteArray(10000, '['), "document: too deeply nested document at byte offset "},
              {"[]", "document: expected an object, found an array"}};
    for (const auto& [text, error] : cases) {
        const std::string actual = errorOfReading(text);
        EXPECT_TRUE(actual.starts_with(error)) << actual;
    }
}

TEST(WorkspaceJson, RefusesToWriteNumbersThatAreNotFinite) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
    const struct {
        std::function<void(WorkspaceSnapshot&)> spoil;
        std::string error;
    } cases[]{
        {[](auto& it) { it.masks[1].opacity = notANumber; }, "masks[1].opacity: nan is not finite"},
        {[](auto& it) { it.masks[0].frame.x = infinity; }, "masks[0].frame.x: inf is not finite"},
        {[](auto& it) { it.masks[0].frame.y = notANumber; }, "masks[0].frame.y: nan is not finite"},
        {[](auto& it) { it.presets[0].masks[0].frame.width = -infinity; },
         "presets[0].masks[0].frame.width: -inf is not finite"},
        {[](auto& it) { it.masks[1].frame.height = infinity; },
         "masks[1].frame.height: inf is not finite"},
        {[](auto& it) { it.settings.defaultOpacity = notANumber; },
         "settings.defaultOpacity: nan is not finite"}};
    for (const auto& [spoil, error] : cases) {
        WorkspaceSnapshot workspace = sampleWorkspace();
        spoil(workspace);
        EXPECT_EQ(errorOf([&workspace] { workspace.toJsonText(); }), error);
    }
}

TEST(WorkspaceJson, WritesEveryMemberAsItWasRead) {
    const QJsonArray values = QJsonDocument::fromJson(R"([false, true, 7, 0.1, -0.0, 1e-300, 5e-324,
        1.7976931348623157e308, 1e21, -9223372036854775808, "", "blackout", "frosted", "softTint",
        "a\"\\/\n\tü語'\u2028\u0001\u0000\u007f🙈", "99999999-9999-9999-9999-99999999ABCD"])")
                                  .array();
    for (const ObjectShape& shape : objectShapes) {
        for (const QString& key : valueAt(sampleDocument(), shape.path).toObject().keys()) {
            const Path path = shape.path + Path{key};
            const QJsonValue former = valueAt(sampleDocument(), path);
            if (former.isObject() || former.isArray()) continue;
            SCOPED_TRACE((shape.pathText + key).toStdString());
            int readCount = 0;
            for (const QJsonValue value : values) {
                const QByteArray text = sampleWith(path, value);
                if (!errorOfReading(text).empty()) continue;
                ++readCount;
                const WorkspaceSnapshot read = WorkspaceSnapshot::fromJsonText(text);
                const QByteArray written = read.toJsonText();
                EXPECT_EQ(QJsonDocument::fromJson(written), QJsonDocument::fromJson(text))
                    << text.constData();
                EXPECT_EQ(WorkspaceSnapshot::fromJsonText(written), read) << text.constData();
            }
            EXPECT_GT(readCount, 0);
        }
    }
    // However they are written, and also where no double holds them.
    const std::pair<QByteArray, qint64> integers[]{
        {"9007199254740993", 9007199254740993},
        {"9007199254740993.0", 9007199254740993},
        {"1e18", 1'000'000'000'000'000'000},
        {"1000E-3", 1},
        {"-9.223372036854775807e+18", -std::numeric_limits<qint64>::max()},
        {"0.0120e3", 12},
        {"-0.0", 0},
        {"0e999999999999", 0},
        {"9223372036854775807.000e0", std::numeric_limits<qint64>::max()},
    };
    for (const auto& [text, value] : integers) {
        const QByteArray document = sampleWithText(presetPath + Path{u"priority"_s}, text);
        SCOPED_TRACE(text.constData());
        ASSERT_EQ(errorOfReading(document), "");
        const auto read = WorkspaceSnapshot::fromJsonText(document);
        EXPECT_EQ(read.presets[0].priority, value);
        EXPECT_EQ(WorkspaceSnapshot::fromJsonText(read.toJsonText()), read);
    }
    // What stands in quotation marks is no number.
    WorkspaceSnapshot quoting = sampleWorkspace();
    quoting.masks[0].name = uR"(\" 1.0, \\" 1e3)"_s;
    quoting.presets[0].priority = 1000;
    const QByteArray text = quoting.toJsonText().replace("\"priority\": 1000", "\"priority\": 1e3");
    EXPECT_EQ(WorkspaceSnapshot::fromJsonText(text), quoting);
}

TEST(WorkspaceJson, KeepsToTheFormOfDocumentsThatPeopleHave) {
    const WorkspaceSnapshot sample = sampleWorkspace();
    EXPECT_EQ(sample.toJsonText(), sampleText());
    EXPECT_TRUE(sample.hasCompletedOnboarding && sample.isEditingEnabled);
    EXPECT_FALSE(sample.areMasksVisible);
    EXPECT_EQ(sample.masks[0].frame, (MaskFrame{-1280, 12.5, 320, 180}));
    EXPECT_TRUE(sample.masks[0].isVisible && sample.masks[1].isClickThrough);
    EXPECT_FALSE(sample.masks[1].isVisible || sample.masks[0].isClickThrough);
    EXPECT_TRUE(sample.groups[0].isVisible && sample.groups[0].isLocked);
    EXPECT_FALSE(sample.groups[0].isExpanded);
    EXPECT_EQ(sample.presets[0], (MaskPreset{QUuid(u"AAAAAAAA-BBBB-CCCC-DDDD-EEEEEEEEEEEE"_s),
                                             u"Demo"_s,
                                             u"Manual"_s,
                                             {sample.masks[1]},
                                             true,
                                             u"Präsentation"_s,
                                             u"org.example.Slides"_s,
                                             -3}));
    EXPECT_TRUE(sample.settings.showHelpOnLaunch && sample.settings.showDashboardOnLaunch);
    EXPECT_EQ(sample.settings.binding(u"toggleEditing"_s), (HotkeyBinding{37, 6400}));
}

}  // namespace
