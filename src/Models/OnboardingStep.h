#pragma once

#include <QList>
#include <QString>
#include <QUuid>
#include <array>
#include <optional>

/// The controls that a step of the walkthrough can point at.
enum class CoachmarkAnchor { createMask, visibilityToggle, maskStyle, clickThrough, hotkeys };

inline constexpr std::array<CoachmarkAnchor, 5> allCoachmarkAnchors{
    CoachmarkAnchor::createMask, CoachmarkAnchor::visibilityToggle, CoachmarkAnchor::maskStyle,
    CoachmarkAnchor::clickThrough, CoachmarkAnchor::hotkeys};

/// The name of the enumerator.
QString coachmarkAnchorRawValue(CoachmarkAnchor anchor);
/// The anchor of that name, or nothing.
std::optional<CoachmarkAnchor> coachmarkAnchorFromRawValue(const QString& rawValue);

/// One card of the walkthrough.
struct OnboardingStep {
    QUuid id;
    CoachmarkAnchor anchor = CoachmarkAnchor::createMask;
    QString title;
    QString body;

    /// The walkthrough, made once.
    static const QList<OnboardingStep>& all();

    bool operator==(const OnboardingStep&) const = default;
};
