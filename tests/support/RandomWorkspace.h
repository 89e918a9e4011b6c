#pragma once

#include "Models/WorkspaceSnapshot.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <optional>
#include <random>
#include <type_traits>

/// Values of every field drawn at random, the awkward ones often.
class RandomWorkspace {
public:
    /// Equal seeds give equal workspaces.
    explicit RandomWorkspace(std::uint64_t seed) : m_random(seed) {}

    /// The next workspace; no two need be alike.
    WorkspaceSnapshot snapshot() {
        WorkspaceSnapshot workspace;
        workspace.masks = list([this] { return mask(); });
        workspace.presets = list([this] { return preset(); });
        workspace.groups = list([this] {
            return MaskGroup{.id = uuid(),
                             .name = text(),
                             .isExpanded = flag(),
                             .isVisible = flag(),
                             .isLocked = flag()};
        });
        workspace.selectedMaskID = optional(uuid());
        workspace.areMasksVisible = flag();
        workspace.isEditingEnabled = flag();
        workspace.hasCompletedOnboarding = flag();
        workspace.settings = settings();
        return workspace;
    }

private:
    int below(int limit) { return std::uniform_int_distribution(0, limit - 1)(m_random); }
    bool flag() { return below(2) == 0; }
    quint64 bits() { return m_random(); }

    template <typename Make>
    QList<std::invoke_result_t<Make>> list(Make make) {
        QList<std::invoke_result_t<Make>> values;
        for (int left = below(5); left > 0; --left)
            values.append(make());
        return values;
    }

    template <typename Value>
    std::optional<Value> optional(const Value& value) {
        return flag() ? std::optional(value) : std::nullopt;
    }

    QUuid uuid() {
        const quint64 halves[]{bits(), bits()};
        return QUuid::fromRfc4122(QByteArrayView(reinterpret_cast<const char*>(halves), 16));
    }

    double number() {
        static constexpr std::array awkward{
            0.1, -0.0, 0.86, 1e-300, 5e-324, 1.7976931348623157e308, 0x1p53, 0x1p63, 1e21, -320.0};
        if (flag()) return awkward.at(static_cast<std::size_t>(below(int{awkward.size()})));
        const auto any = std::bit_cast<double>(bits());
        return std::isfinite(any) ? any : 0.5;
    }

    QString text() {
        static const QString characters =
            QStringLiteral("a\"\\/\n\tü語'\u2028\u0001\x7f\uFFFF") + QChar(0);
        const auto count = static_cast<int>(characters.size());
        QString text = flag() ? QStringLiteral("🙈") : QString();
        for (int left = below(5); left > 0; --left)
            text += characters.at(below(count));
        return text;
    }

    ScreenMask::Style style() { return ScreenMask::allStyles.at(static_cast<unsigned>(below(3))); }

    ScreenMask mask() {
        return {.id = uuid(),
                .name = text(),
                .frame = {.x = number(), .y = number(), .width = number(), .height = number()},
                .opacity = number(),
                .colorHex = text(),
                .isVisible = flag(),
                .isClickThrough = flag(),
                .style = style(),
                .groupID = optional(uuid())};
    }

    MaskPreset preset() {
        return {.id = uuid(),
                .name = text(),
                .trigger = text(),
                .masks = list([this] { return mask(); }),
                .autoApply = flag(),
                .targetAppName = optional(text()),
                .targetBundleIdentifier = optional(text()),
                .priority = static_cast<qint64>(bits() >> below(64))};
    }

    AppSettings settings() {
        AppSettings settings;
        settings.defaultOpacity = number();
        settings.defaultColorHex = text();
        settings.defaultStyle = style();
        settings.defaultClickThrough = flag();
        settings.showHelpOnLaunch = flag();
        settings.menuBarOnlyMode = flag();
        settings.showDashboardOnLaunch = flag();
        for (int left = below(4); left > 0; --left) {
            settings.hotkeyBindings.insert(text(), {.keyCode = static_cast<quint32>(bits()),
                                                    .modifiers = static_cast<quint32>(bits())});
        }
        settings.lastSeenVersion = optional(text());
        settings.autoShowMasksOnScreenShare = optional(flag());
        return settings;
    }

    std::mt19937_64 m_random;
};
