#include "App/AppState.h"
#include "Models/ApplicationIdentifier.h"

#include <QCollator>
#include <QSet>
#include <algorithm>
#include <limits>

namespace {

/// The trigger of a preset that no event applies.
QString manualTrigger() {
    return QStringLiteral("Manual");
}

qsizetype indexOf(const QUuid& presetID, const QList<MaskPreset>& presets) {
    const auto found = std::find_if(presets.begin(), presets.end(), [&](const MaskPreset& preset) {
        return preset.id == presetID;
    });
    return found == presets.end() ? -1 : found - presets.begin();
}

QString triggerOrManual(const QString& trigger) {
    return trigger.trimmed().isEmpty() ? manualTrigger() : trigger;
}

// In the order in which they are preferred.
QList<MaskPreset> presetsBoundTo(const QString& bundleIdentifier,
                                 const QList<MaskPreset>& presets) {
    QList<MaskPreset> bound;
    std::copy_if(presets.begin(), presets.end(), std::back_inserter(bound),
                 [&](const MaskPreset& preset) {
                     return preset.autoApply && preset.targetBundleIdentifier == bundleIdentifier;
                 });
    QCollator collator;
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::stable_sort(bound.begin(), bound.end(),
                     [&](const MaskPreset& left, const MaskPreset& right) {
                         if (left.priority != right.priority) return left.priority > right.priority;
                         return collator.compare(left.name, right.name) < 0;
                     });
    return bound;
}

}  // namespace

void AppState::beginSavePresetFlow() {
    presetDraftName.set(suggestedPresetName(presets.newest().size() + 1));
    presetDraftTrigger.set(manualTrigger());
    presetDraftAutoApply.set(false);
    presetDraftTarget.set(std::nullopt);
    isSavePresetPresented.set(true);
}

QString AppState::suggestedPresetName(qsizetype index) const {
    const auto& all = masks.newest();
    if (all.size() == 1) return all.first().name + QStringLiteral(" Layout");
    return QStringLiteral("Preset %1").arg(index);
}

void AppState::cancelSavePresetFlow() {
    isSavePresetPresented.set(false);
    presetDraftName.set(QString());
    presetDraftTrigger.set(manualTrigger());
    presetDraftAutoApply.set(false);
    presetDraftTarget.set(std::nullopt);
}

void AppState::confirmSavePreset() {
    MaskPreset preset;
    preset.name = presetDraftName.newest().trimmed();
    if (preset.name.isEmpty()) return;
    preset.id = QUuid::createUuid();
    preset.trigger = triggerOrManual(presetDraftTrigger.newest());
    preset.masks = masks.newest();
    preset.autoApply = presetDraftAutoApply.newest();
    if (preset.autoApply) {
        const auto application = presetDraftApplication();
        if (!application) return;
        preset.targetAppName = application->localizedName;
        preset.targetBundleIdentifier = application->bundleIdentifier;
    }
    preset.priority = nextPresetPriority();
    presets.update([&](QList<MaskPreset>& all) { all.prepend(preset); });
    cancelSavePresetFlow();
}

qint64 AppState::nextPresetPriority() const {
    const auto& all = presets.newest();
    const auto highest = std::max_element(all.begin(), all.end(),
                                          [](const MaskPreset& left, const MaskPreset& right) {
                                              return left.priority < right.priority;
                                          });
    if (highest == all.end()) return 0;
    // A file may hold the largest number there is.
    return highest->priority == std::numeric_limits<qint64>::max() ? highest->priority
                                                                   : highest->priority + 1;
}

void AppState::applyPreset(const MaskPreset& preset) {
    loadPreset(preset, LoadedBy::user);
}

void AppState::loadPreset(const MaskPreset& preset, LoadedBy loadedBy) {
    const QString name = preset.name;
    const QList<ScreenMask> former = masks.newest();
    const auto formerSelection = selectedMaskID.newest();
    QList<ScreenMask> copies = preset.masks;
    for (ScreenMask& copy : copies) {
        copy.id = QUuid::createUuid();
        copy.groupID.reset();
    }
    const auto firstID = copies.isEmpty() ? std::nullopt : std::optional(copies.first().id);
    masks.set(std::move(copies));
    selectedMaskID.set(firstID);
    areMasksVisible.set(true);
    noteLoad(name, loadedBy, former, formerSelection);
}

template <typename Mutate>
void AppState::mutatePreset(const QUuid& presetID, Mutate mutate) {
    const qsizetype index = indexOf(presetID, presets.newest());
    if (index < 0) return;
    presets.update([&](QList<MaskPreset>& changed) { mutate(changed[index]); });
}

void AppState::updatePreset(const QUuid& presetID, const QString& name, const QString& trigger) {
    const QString trimmed = name.trimmed();
    if (trimmed.isEmpty()) return;
    mutatePreset(presetID, [&](MaskPreset& preset) {
        preset.name = trimmed;
        preset.trigger = triggerOrManual(trigger.trimmed());
    });
}

void AppState::bindPresetToCurrentApp(const QUuid& presetID) {
    if (const auto application = applicationInFront()) bindPreset(presetID, *application);
}

// Whoever binds in the dashboard has the dashboard in front. Bound to Veyla, a preset would
// replace the masks each time that its own windows come to the front.
std::optional<RunningApplication> AppState::applicationInFront() const {
    if (currentFrontmostBundleIdentifier.newest() == QString(applicationIdentifier))
        return std::nullopt;
    return RunningApplication{currentFrontmostAppName.newest(),
                              currentFrontmostBundleIdentifier.newest()};
}

std::optional<RunningApplication> AppState::presetDraftApplication() const {
    return presetDraftTarget.newest() ? presetDraftTarget.newest() : applicationInFront();
}

QList<RunningApplication> AppState::applicationsToBind() const {
    QList<RunningApplication> applications = m_platform.workspace.runningApplications();
    applications.removeIf([](const RunningApplication& each) {
        return !each.localizedName || !each.bundleIdentifier ||
               *each.bundleIdentifier == applicationIdentifier;
    });
    const QCollator collator;
    std::sort(applications.begin(), applications.end(), [&](const auto& a, const auto& b) {
        return collator.compare(a.localizedName.value_or(QString()),
                                b.localizedName.value_or(QString())) < 0;
    });
    // A program that runs twice is one to be bound to.
    QSet<QString> known;
    applications.removeIf([&](const RunningApplication& each) {
        const bool isRepeated = known.contains(*each.bundleIdentifier);
        known.insert(*each.bundleIdentifier);
        return isRepeated;
    });
    return applications;
}

void AppState::bindPreset(const QUuid& presetID, const RunningApplication& application) {
    mutatePreset(presetID, [&](MaskPreset& preset) {
        preset.autoApply = true;
        preset.targetAppName = application.localizedName;
        preset.targetBundleIdentifier = application.bundleIdentifier;
    });
}

void AppState::clearPresetAppBinding(const QUuid& presetID) {
    mutatePreset(presetID, [](MaskPreset& preset) {
        preset.autoApply = false;
        preset.targetAppName.reset();
        preset.targetBundleIdentifier.reset();
    });
}

void AppState::movePresetUp(const QUuid& presetID) {
    movePreset(presetID, -1);
}

void AppState::movePresetDown(const QUuid& presetID) {
    movePreset(presetID, 1);
}

void AppState::movePreset(const QUuid& presetID, qsizetype offset) {
    const auto& all = presets.newest();
    const qsizetype from = indexOf(presetID, all);
    const qsizetype to = from + offset;
    if (from < 0 || to < 0 || to >= all.size()) return;
    presets.update([&](QList<MaskPreset>& changed) {
        changed.swapItemsAt(from, to);
        for (qsizetype index = 0; index < changed.size(); ++index)
            changed[index].priority = changed.size() - 1 - index;
    });
}

void AppState::deletePreset(const QUuid& presetID) {
    RemovedItems<MaskPreset> removed;
    presets.update(
        [&](QList<MaskPreset>& all) { removed = RemovedItems<MaskPreset>::take(presetID, all); });
    if (removed.items().isEmpty()) return;
    becomeUndoable(
        {UndoableAct::Kind::deletedPreset, removed.items().first().name},
        [this, removed] { presets.update([&](QList<MaskPreset>& all) { removed.putBack(all); }); });
}

void AppState::applyMatchingAutoProfile(const std::optional<QString>& bundleIdentifier) {
    const auto bound = bundleIdentifier ? presetsBoundTo(*bundleIdentifier, presets.newest())
                                        : QList<MaskPreset>();
    if (bound.isEmpty()) {
        m_lastAutoAppliedPresetID.reset();
        return;
    }
    const MaskPreset& best = bound.first();
    if (m_lastAutoAppliedPresetID == best.id) return;
    m_lastAutoAppliedPresetID = best.id;
    loadPreset(best, LoadedBy::itself);
}
