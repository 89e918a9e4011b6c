#include "App/AppState.h"

#include <algorithm>

namespace {

template <typename IsWanted>
QList<ScreenMask> masksThat(IsWanted isWanted, const QList<ScreenMask>& masks) {
    QList<ScreenMask> wanted;
    std::copy_if(masks.begin(), masks.end(), std::back_inserter(wanted), isWanted);
    return wanted;
}

}  // namespace

QList<ScreenMask> AppState::ungroupedMasks() const {
    return masksThat([](const ScreenMask& mask) { return !mask.groupID; }, masks.newest());
}

QList<ScreenMask> AppState::masksInGroup(const QUuid& groupID) const {
    return masksThat([&](const ScreenMask& mask) { return mask.groupID == groupID; },
                     masks.newest());
}

template <typename Mutate>
bool AppState::updateGroup(const QUuid& groupID, Mutate mutate) {
    const auto& all = groups.newest();
    const auto found = std::find_if(all.begin(), all.end(),
                                    [&](const MaskGroup& group) { return group.id == groupID; });
    if (found == all.end()) return false;
    const auto index = found - all.begin();
    groups.update([&](QList<MaskGroup>& changed) { mutate(changed[index]); });
    return true;
}

template <typename Mutate>
void AppState::updateMasksInGroup(const QUuid& groupID, Mutate mutate) {
    if (masksInGroup(groupID).isEmpty()) return;
    masks.update([&](QList<ScreenMask>& changed) {
        for (ScreenMask& mask : changed)
            if (mask.groupID == groupID) mutate(mask);
    });
}

void AppState::createGroup(const QString& name) {
    MaskGroup group;
    group.id = QUuid::createUuid();
    group.name = name;
    groups.update([&](QList<MaskGroup>& all) { all.append(group); });
    if (const auto selection = selectedMaskID.newest()) addMaskToGroup(*selection, group.id);
}

void AppState::addMaskToGroup(const QUuid& maskID, const QUuid& groupID) {
    updateMask(maskID, [&](ScreenMask& mask) { mask.groupID = groupID; });
}

void AppState::toggleGroupVisibility(const QUuid& groupID) {
    bool isShown = false;
    if (!updateGroup(groupID,
                     [&](MaskGroup& group) { isShown = group.isVisible = !group.isVisible; }))
        return;
    updateMasksInGroup(groupID, [&](ScreenMask& mask) { mask.isVisible = isShown; });
    announce(isShown ? QStringLiteral("Group shown") : QStringLiteral("Group hidden"));
}

void AppState::toggleGroupLock(const QUuid& groupID) {
    bool isLocked = false;
    if (!updateGroup(groupID,
                     [&](MaskGroup& group) { isLocked = group.isLocked = !group.isLocked; }))
        return;
    updateMasksInGroup(groupID, [&](ScreenMask& mask) { mask.isClickThrough = isLocked; });
    announce(isLocked ? QStringLiteral("Group locked") : QStringLiteral("Group unlocked"));
}

void AppState::toggleGroupExpanded(const QUuid& groupID) {
    updateGroup(groupID, [](MaskGroup& group) { group.isExpanded = !group.isExpanded; });
}

void AppState::renameGroup(const QUuid& groupID, const QString& name) {
    const QString trimmed = name.trimmed();
    if (trimmed.isEmpty()) return;
    updateGroup(groupID, [&](MaskGroup& group) { group.name = trimmed; });
}

void AppState::deleteGroup(const QUuid& groupID) {
    QSet<QUuid> members;
    updateMasksInGroup(groupID, [&](ScreenMask& mask) {
        members.insert(mask.id);
        mask.groupID.reset();
    });
    RemovedItems<MaskGroup> removed;
    groups.update(
        [&](QList<MaskGroup>& all) { removed = RemovedItems<MaskGroup>::take(groupID, all); });
    if (removed.items().isEmpty()) return;
    becomeUndoable({UndoableAct::Kind::deletedGroup, removed.items().first().name},
                   [this, removed, members] { restoreGroup(removed, members); });
}
