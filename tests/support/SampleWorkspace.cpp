#include "support/SampleWorkspace.h"

using namespace Qt::Literals::StringLiterals;

WorkspaceSnapshot sampleWorkspace() {
    const MaskGroup group{.id = QUuid(u"6f9619ff-8b86-d011-b42d-00cf4fc964ff"_s),
                          .name = u"Banking \"north\"\n"_s,
                          .isExpanded = false,
                          .isVisible = true,
                          .isLocked = true};
    const ScreenMask plain{.id = QUuid(u"00000000-0000-0000-0000-0000000000ab"_s),
                           .name = u"Mask 1"_s,
                           .frame = {.x = -1280, .y = 12.5, .width = 320, .height = 180},
                           .opacity = 0.86,
                           .colorHex = u"#101114"_s,
                           .groupID = {}};
    ScreenMask grouped = plain;
    grouped.id = QUuid(u"11111111-2222-3333-4444-555555555555"_s);
    grouped.name = u"Übersicht 🙈"_s;
    grouped.frame = {.x = 0.1, .y = 1e-300, .width = 1920, .height = 1080};
    grouped.isVisible = false;
    grouped.isClickThrough = true;
    grouped.style = ScreenMask::Style::softTint;
    grouped.groupID = group.id;

    WorkspaceSnapshot workspace;
    workspace.masks = {plain, grouped};
    workspace.groups = {group};
    workspace.presets = {{.id = QUuid(u"aaaaaaaa-bbbb-cccc-dddd-eeeeeeeeeeee"_s),
                          .name = u"Demo"_s,
                          .trigger = u"Manual"_s,
                          .masks = {grouped},
                          .autoApply = true,
                          .targetAppName = u"Präsentation"_s,
                          .targetBundleIdentifier = u"org.example.Slides"_s,
                          .priority = -3}};
    workspace.selectedMaskID = plain.id;
    workspace.areMasksVisible = false;
    workspace.hasCompletedOnboarding = true;
    workspace.settings.defaultStyle = ScreenMask::Style::frosted;
    workspace.settings.hotkeyBindings.insert(u"no action, kept"_s, {.keyCode = 7, .modifiers = 0});
    workspace.settings.lastSeenVersion = u"1.2"_s;
    return workspace;
}
