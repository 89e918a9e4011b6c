#include "App/VeylaCommands.h"

#include <utility>

using namespace Qt::Literals::StringLiterals;

VeylaCommands::VeylaCommands(AppState& state, std::function<void()> openSettings)
    : m_state(state), m_openSettings(std::move(openSettings)) {}

std::vector<MenuCommand> VeylaCommands::editItems() const {
    AppState& state = m_state;
    const auto act = state.undoableAct.value();
    return {{act ? u"Undo "_s + act->title() : u"Undo"_s,
             {QKeySequence(Qt::CTRL | Qt::Key_Z)},
             act.has_value(),
             [&state] { state.undo(); },
             true}};
}

std::vector<MenuCommand> VeylaCommands::items() const {
    AppState& state = m_state;
    const bool hasMask = state.activeMask().has_value();
    const auto keys = [](Qt::Key key) {
        return QList<QKeySequence>{QKeySequence(Qt::CTRL | Qt::ALT | key)};
    };
    const MenuCommand separator;
    return {
        {u"New Mask"_s, keys(Qt::Key_N), true, [&state] { state.createMask(); }},
        {state.areMasksVisible.value() ? u"Hide All Masks"_s : u"Show All Masks"_s, keys(Qt::Key_H),
         true, [&state] { state.toggleVisibilityForAllMasks(); }},
        {state.isEditingEnabled.value() ? u"Lock Editing"_s : u"Unlock Editing"_s, keys(Qt::Key_L),
         true, [&state] { state.toggleEditing(); }},
        separator,
        {u"Duplicate Selected Mask"_s, keys(Qt::Key_D), hasMask,
         [&state] { state.duplicateSelectedMask(); }, true},
        {u"Toggle Selected Visibility"_s, keys(Qt::Key_V), hasMask,
         [&state] { state.toggleSelectedMaskVisibility(); }, true},
        // The key that deletes bears either name.
        {u"Delete Selected Mask"_s,
         {QKeySequence(Qt::CTRL | Qt::Key_Delete), QKeySequence(Qt::CTRL | Qt::Key_Backspace)},
         hasMask,
         [&state] { state.deleteSelectedMask(); },
         true},
        separator,
        {u"Save Current Layout as Preset"_s, keys(Qt::Key_S), true,
         [&state] { state.beginSavePresetFlow(); }},
        {u"Check for Updates…"_s,
         {},
         state.updaterManager().canCheckForUpdates().value(),
         [&state] { state.updaterManager().checkForUpdates(); }},
        {u"Show Walkthrough"_s, {}, true, [&state] { state.replayOnboarding(); }},
        {u"What's New"_s, {}, true, [&state] { state.presentWhatsNew(); }},
        {u"Open Settings"_s,
         {QKeySequence(Qt::CTRL | Qt::Key_Comma)},
         m_openSettings != nullptr,
         m_openSettings ? m_openSettings : [] {}},
    };
}
