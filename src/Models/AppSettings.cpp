#include "Models/AppSettings.h"

#include "Models/Json.h"

#include <QHashFunctions>

using namespace Qt::Literals::StringLiterals;

const AppSettings& AppSettings::defaults() {
    static const AppSettings settings;
    return settings;
}

std::optional<HotkeyBinding> AppSettings::binding(const QString& bindingKey) const {
    for (const auto* bindings : {&hotkeyBindings, &HotkeyBinding::defaults()}) {
        const auto entry = bindings->constFind(bindingKey);
        if (entry != bindings->constEnd()) return *entry;
    }
    return std::nullopt;
}

AppSettings AppSettings::fromJson(const JsonObjectReader& reader) {
    return {.defaultOpacity = reader.number("defaultOpacity"_L1),
            .defaultColorHex = reader.string("defaultColorHex"_L1),
            .defaultStyle =
                reader.parsed("defaultStyle"_L1, "style"_L1, ScreenMask::styleFromStoredText),
            .defaultClickThrough = reader.boolean("defaultClickThrough"_L1),
            .showHelpOnLaunch = reader.boolean("showHelpOnLaunch"_L1),
            .menuBarOnlyMode = reader.boolean("menuBarOnlyMode"_L1),
            .showDashboardOnLaunch = reader.boolean("showDashboardOnLaunch"_L1),
            .hotkeyBindings = reader.map<HotkeyBinding>("hotkeyBindings"_L1),
            .lastSeenVersion = reader.optionalString("lastSeenVersion"_L1),
            .autoShowMasksOnScreenShare = reader.optionalBoolean("autoShowMasksOnScreenShare"_L1)};
}

QJsonObject AppSettings::toJson(const JsonPath& path) const {
    QJsonObject bindings;
    for (auto binding = hotkeyBindings.begin(); binding != hotkeyBindings.end(); ++binding) {
        bindings.insert(binding.key(), binding->toJson());
    }

    QJsonObject object;
    if (autoShowMasksOnScreenShare) {
        object.insert("autoShowMasksOnScreenShare"_L1, *autoShowMasksOnScreenShare);
    }
    object.insert("defaultClickThrough"_L1, defaultClickThrough);
    object.insert("defaultColorHex"_L1, defaultColorHex);
    object.insert("defaultOpacity"_L1, finiteJsonNumber(defaultOpacity, path, "defaultOpacity"_L1));
    object.insert("defaultStyle"_L1, ScreenMask::storedText(defaultStyle));
    object.insert("hotkeyBindings"_L1, bindings);
    if (lastSeenVersion) object.insert("lastSeenVersion"_L1, *lastSeenVersion);
    object.insert("menuBarOnlyMode"_L1, menuBarOnlyMode);
    object.insert("showDashboardOnLaunch"_L1, showDashboardOnLaunch);
    object.insert("showHelpOnLaunch"_L1, showHelpOnLaunch);
    return object;
}

std::size_t qHash(const AppSettings& settings, std::size_t seed) noexcept {
    std::size_t hash = qHashMulti(
        seed, settings.defaultOpacity, settings.defaultColorHex,
        static_cast<int>(settings.defaultStyle), settings.defaultClickThrough,
        settings.showHelpOnLaunch, settings.menuBarOnlyMode, settings.showDashboardOnLaunch,
        settings.lastSeenVersion.has_value(), settings.lastSeenVersion.value_or(QString()),
        settings.autoShowMasksOnScreenShare.has_value(),
        settings.autoShowMasksOnScreenShare.value_or(false));
    for (auto binding = settings.hotkeyBindings.begin(); binding != settings.hotkeyBindings.end();
         ++binding) {
        hash = qHashMulti(hash, binding.key(), *binding);
    }
    return hash;
}
