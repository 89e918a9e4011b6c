#include "App/AppState.h"

#include <algorithm>
#include <utility>

void AppState::becomeUndoable(UndoableAct act, std::function<void()> restore) {
    m_restore = std::move(restore);
    undoableAct.set(std::move(act));
}

void AppState::undo() {
    const auto act = undoableAct.newest();
    if (!act) return;
    const auto restore = std::exchange(m_restore, nullptr);
    undoableAct.set(std::nullopt);
    restore();
    announce(act->restoredNotice());
}

// A mask that is in no group is better found than one in a group that is gone.
ScreenMask AppState::withoutLostGroup(ScreenMask mask) const {
    const auto& all = groups.newest();
    const bool isThere = std::any_of(
        all.begin(), all.end(), [&](const MaskGroup& group) { return group.id == mask.groupID; });
    if (!isThere) mask.groupID.reset();
    return mask;
}

void AppState::restoreMask(const RemovedItems<ScreenMask>& removed) {
    const QUuid id = removed.items().first().id;
    masks.update([&](QList<ScreenMask>& all) {
        removed.putBack(all);
        for (ScreenMask& mask : all)
            if (mask.id == id) mask = withoutLostGroup(mask);
    });
    selectedMaskID.set(id);
}

void AppState::restoreGroup(const RemovedItems<MaskGroup>& removed, const QSet<QUuid>& members) {
    const QUuid id = removed.items().first().id;
    groups.update([&](QList<MaskGroup>& all) { removed.putBack(all); });
    if (members.isEmpty()) return;
    masks.update([&](QList<ScreenMask>& all) {
        for (ScreenMask& mask : all)
            if (!mask.groupID && members.contains(mask.id)) mask.groupID = id;
    });
}

// An automatic load over masks that nobody has touched since the last load takes nothing that the
// presets do not hold: what was there before all of them must not be forgotten for that.
void AppState::noteLoad(const QString& presetName, LoadedBy loadedBy,
                        const QList<ScreenMask>& former,
                        const std::optional<QUuid>& formerSelection) {
    const bool isUntouched = loadedBy == LoadedBy::itself && former == m_loadedMasks;
    m_loadedMasks = masks.newest();
    const UndoableAct act{UndoableAct::Kind::loadedPreset, presetName};
    if (!former.isEmpty() && !isUntouched) {
        becomeUndoable(act, [this, former, formerSelection] { undoLoad(former, formerSelection); });
    } else if (const auto pending = undoableAct.newest(); pending && pending->kind == act.kind) {
        undoableAct.set(act);
    }
}

void AppState::undoLoad(const QList<ScreenMask>& former,
                        const std::optional<QUuid>& formerSelection) {
    QSet<QUuid> loaded;
    for (const ScreenMask& mask : std::exchange(m_loadedMasks, {}))
        loaded.insert(mask.id);
    masks.update([&](QList<ScreenMask>& all) {
        const auto isLoaded = [&](const ScreenMask& mask) { return loaded.contains(mask.id); };
        const auto first = std::find_if(all.begin(), all.end(), isLoaded);
        // Whatever is there without them came later, and lies above.
        qsizetype index = first == all.end() ? 0 : first - all.begin();
        all.removeIf(isLoaded);
        for (const ScreenMask& mask : former)
            all.insert(index++, withoutLostGroup(mask));
    });
    if (formerSelection || !activeMask()) selectedMaskID.set(formerSelection);
}
