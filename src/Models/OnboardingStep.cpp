#include "Models/OnboardingStep.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

QString coachmarkAnchorRawValue(CoachmarkAnchor anchor) {
    switch (anchor) {
        case CoachmarkAnchor::createMask:
            return u"createMask"_s;
        case CoachmarkAnchor::visibilityToggle:
            return u"visibilityToggle"_s;
        case CoachmarkAnchor::maskStyle:
            return u"maskStyle"_s;
        case CoachmarkAnchor::clickThrough:
            return u"clickThrough"_s;
        case CoachmarkAnchor::hotkeys:
            return u"hotkeys"_s;
    }
    return {};
}

std::optional<CoachmarkAnchor> coachmarkAnchorFromRawValue(const QString& rawValue) {
    const auto found =
        std::find_if(allCoachmarkAnchors.begin(), allCoachmarkAnchors.end(),
                     [&](auto anchor) { return coachmarkAnchorRawValue(anchor) == rawValue; });
    return found == allCoachmarkAnchors.end() ? std::nullopt : std::optional(*found);
}

const QList<OnboardingStep>& OnboardingStep::all() {
    static const QList<OnboardingStep> steps{
        {QUuid::createUuid(), CoachmarkAnchor::createMask, u"Create a mask"_s,
         u"Click here to drop a floating mask anywhere on screen. It stays above every window."_s},
        {QUuid::createUuid(), CoachmarkAnchor::visibilityToggle, u"Show or hide everything"_s,
         u"Toggle all masks at once — perfect right before you start sharing your screen."_s},
        {QUuid::createUuid(), CoachmarkAnchor::maskStyle, u"Pick a style"_s,
         u"Choose blackout, frosted glass, or a soft tint, then fine-tune opacity and color."_s},
        {QUuid::createUuid(), CoachmarkAnchor::clickThrough, u"Click-through mode"_s,
         u"Let clicks pass through a mask so you can keep working underneath while it stays visible."_s},
        {QUuid::createUuid(), CoachmarkAnchor::hotkeys, u"Make it yours"_s,
         u"Rebind global hotkeys to create masks and toggle visibility without leaving your app."_s},
    };
    return steps;
}
