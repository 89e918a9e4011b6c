#pragma once

#include "Models/HotkeyBinding.h"
#include "Models/ScreenMask.h"

#include <QJsonObject>
#include <QMap>
#include <QString>
#include <cstddef>
#include <optional>

/// The user's settings.
struct AppSettings {
    // What a new mask receives.
    double defaultOpacity = 0.86;
    QString defaultColorHex = QStringLiteral("#101114");
    ScreenMask::Style defaultStyle = ScreenMask::Style::blackout;
    bool defaultClickThrough = false;

    bool showHelpOnLaunch = true;
    /// Prefer running as a menu-bar utility rather than as a regular application.
    bool menuBarOnlyMode = false;
    bool showDashboardOnLaunch = true;
    /// By binding key. Entries under keys that name no action are kept and otherwise unused.
    QMap<QString, HotkeyBinding> hotkeyBindings = HotkeyBinding::defaults();
    /// The application version that the last launch recorded.
    std::optional<QString> lastSeenVersion;
    /// Whether masks are shown when screen sharing is detected; absent counts as false.
    std::optional<bool> autoShowMasksOnScreenShare = false;

    /// The settings of a new workspace.
    static const AppSettings& defaults();

    /// The user's binding under that key, else the default one, else nothing.
    std::optional<HotkeyBinding> binding(const QString& bindingKey) const;

    /// Throws JsonError when a required member is missing, or any has the wrong type or value.
    static AppSettings fromJson(const JsonObjectReader& reader);
    /// Throws JsonError, naming the member below `path`, when a number is not finite.
    QJsonObject toJson(const JsonPath& path) const;

    bool operator==(const AppSettings&) const = default;
};

std::size_t qHash(const AppSettings& settings, std::size_t seed = 0) noexcept;
