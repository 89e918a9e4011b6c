#include "App/StatusReport.h"

#include "App/AppState.h"
#include "App/CommandLine.h"
#include "Models/Json.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QStringList>
#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

template <typename T, typename Convert>
QJsonValue nullable(const std::optional<T>& value, Convert convert) {
    return value ? QJsonValue(convert(*value)) : QJsonValue(QJsonValue::Null);
}

QJsonArray masksJson(const AppState& state) {
    QJsonArray array = recordsToJson(state.masks.value(), JsonPath(), "masks"_L1);
    for (qsizetype index = 0; index < array.size(); ++index) {
        QJsonObject mask = array.at(index).toObject();
        mask.insert("groupID"_L1, nullable(state.masks.value().at(index).groupID, uuidText));
        array.replace(index, mask);
    }
    return array;
}

QJsonArray presetsJson(const AppState& state) {
    QJsonArray array;
    for (const MaskPreset& preset : state.presets.value()) {
        array.append(QJsonObject{{"id"_L1, uuidText(preset.id)},
                                 {"name"_L1, preset.name},
                                 {"priority"_L1, preset.priority}});
    }
    return array;
}

QJsonArray groupsJson(const AppState& state) {
    QJsonArray array;
    for (const MaskGroup& group : state.groups.value())
        array.append(group.toJson());
    return array;
}

QJsonObject frontmostJson(const AppState& state) {
    return {{"name"_L1, state.currentFrontmostAppName.value()},
            {"bundleIdentifier"_L1, nullable(state.currentFrontmostBundleIdentifier.value(),
                                             [](const QString& text) { return text; })}};
}

QString displayOf(HotkeyAction action, const AppState& state) {
    const auto binding = state.settings.value().binding(hotkeyBindingKey(action));
    return binding.value_or(HotkeyBinding{}).displayString();
}

QJsonArray hotkeysJson(const AppState& state) {
    QJsonArray array;
    for (const HotkeyAction action : allHotkeyActions) {
        array.append(QJsonObject{{"action"_L1, hotkeyBindingKey(action)},
                                 {"display"_L1, displayOf(action, state)},
                                 {"isRegistered"_L1, state.hotkeyManager().isRegistered(action)}});
    }
    return array;
}

QString numberText(double number) {
    return QString::number(number, 'g', 7);
}

QString yesOrNo(bool value) {
    return value ? u"yes"_s : u"no"_s;
}

qsizetype characterCount(const QString& text) {
    return text.toUcs4().size();
}

// The last column is not padded, so that it may hold text of any width.
QStringList alignedLines(const QList<QStringList>& rows) {
    QList<qsizetype> widths(rows.first().size(), 0);
    for (const QStringList& row : rows) {
        for (qsizetype column = 0; column + 1 < row.size(); ++column)
            widths[column] = std::max(widths[column], characterCount(row.at(column)));
    }
    QStringList lines;
    for (const QStringList& row : rows) {
        QString line;
        for (qsizetype column = 0; column < row.size(); ++column) {
            const QString& cell = row.at(column);
            line += cell;
            if (column + 1 < row.size())
                line += QString(widths[column] - characterCount(cell) + 2, u' ');
        }
        lines.append(line);
    }
    return lines;
}

QStringList summaryLines(const AppState& state) {
    const auto selected = state.activeMask();
    const auto& identifier = state.currentFrontmostBundleIdentifier.value();
    const QString application = state.currentFrontmostAppName.value();
    return alignedLines({
        {u"Masks"_s, state.areMasksVisible.value() ? u"shown"_s : u"hidden"_s},
        {u"On screen"_s, QString::number(state.activeOverlayCount.value())},
        {u"Editing"_s, state.isEditingEnabled.value() ? u"unlocked"_s : u"locked"_s},
        {u"Selected"_s, selected ? quotedForMessage(selected->name) : u"none"_s},
        {u"Frontmost"_s, quotedForMessage(application) +
                             (identifier ? u" "_s + quotedForMessage(*identifier) : QString())},
        {u"Screen sharing"_s,
         state.screenShareMonitor().isLikelyScreenSharing().value() ? u"likely"_s : u"no"_s},
        {u"Dashboard"_s, state.isDashboardWindowVisible() ? u"shown"_s : u"hidden"_s},
    });
}

template <typename Record, typename MakeRow>
QStringList section(const QString& title, const QStringList& headings, const QList<Record>& records,
                    MakeRow makeRow) {
    const QString count = u"%1 (%2)"_s.arg(title, QString::number(records.size()));
    if (records.isEmpty()) return {QString(), count};
    QList<QStringList> rows{headings};
    for (const Record& record : records)
        rows.append(makeRow(record));
    QStringList lines{QString(), count};
    for (const QString& line : alignedLines(rows))
        lines.append(u"  "_s + line);
    return lines;
}

QStringList maskRow(const ScreenMask& mask) {
    const MaskFrame& frame = mask.frame;
    return {yesOrNo(mask.isVisible),
            yesOrNo(mask.isClickThrough),
            ScreenMask::displayName(mask.style),
            u"%1 %"_s.arg(numberText(mask.opacity * 100)),
            quotedForMessage(mask.colorHex),
            u"%1 x %2"_s.arg(numberText(frame.width), numberText(frame.height)),
            u"%1, %2"_s.arg(numberText(frame.x), numberText(frame.y)),
            quotedForMessage(mask.name)};
}

}  // namespace

QJsonObject statusJson(const AppState& state) {
    return {
        {"version"_L1, QStringLiteral(VEYLA_VERSION)},
        {"pid"_L1, QCoreApplication::applicationPid()},
        {"masks"_L1, masksJson(state)},
        {"presets"_L1, presetsJson(state)},
        {"groups"_L1, groupsJson(state)},
        {"selectedMaskID"_L1, nullable(state.selectedMaskID.value(), uuidText)},
        {"areMasksVisible"_L1, state.areMasksVisible.value()},
        {"isEditingEnabled"_L1, state.isEditingEnabled.value()},
        {"activeOverlayCount"_L1, state.activeOverlayCount.value()},
        {"isLikelyScreenSharing"_L1, state.screenShareMonitor().isLikelyScreenSharing().value()},
        {"frontmost"_L1, frontmostJson(state)},
        {"dashboardVisible"_L1, state.isDashboardWindowVisible()},
        {"hotkeys"_L1, hotkeysJson(state)},
    };
}

QString statusText(const AppState& state) {
    QStringList lines{u"%1 (pid %2)"_s.arg(commandLineVersion(),
                                           QString::number(QCoreApplication::applicationPid())),
                      QString()};
    lines += summaryLines(state);
    lines += section(u"Masks"_s,
                     {u"Visible"_s, u"Click-through"_s, u"Style"_s, u"Opacity"_s, u"Colour"_s,
                      u"Size"_s, u"Position"_s, u"Name"_s},
                     state.masks.value(), maskRow);
    lines += section(u"Presets"_s, {u"Priority"_s, u"Name"_s}, state.presets.value(),
                     [](const MaskPreset& preset) -> QStringList {
                         return {QString::number(preset.priority), quotedForMessage(preset.name)};
                     });
    lines += section(u"Groups"_s, {u"Visible"_s, u"Locked"_s, u"Name"_s}, state.groups.value(),
                     [](const MaskGroup& group) -> QStringList {
                         return {yesOrNo(group.isVisible), yesOrNo(group.isLocked),
                                 quotedForMessage(group.name)};
                     });
    lines += section(u"Hot keys"_s, {u"Works"_s, u"Keys"_s, u"Action"_s},
                     QList<HotkeyAction>(allHotkeyActions.begin(), allHotkeyActions.end()),
                     [&](HotkeyAction action) -> QStringList {
                         return {yesOrNo(state.hotkeyManager().isRegistered(action)),
                                 displayOf(action, state), hotkeyActionTitle(action)};
                     });
    return lines.join(u'\n');
}
