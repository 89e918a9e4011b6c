#include "App/AppState.h"
#include "Services/ScreenPlacement.h"

#include <algorithm>

namespace {

constexpr Point duplicateOffset{24, -24};

template <typename Masks>
auto findMask(Masks& masks, const QUuid& maskID) {
    return std::find_if(masks.begin(), masks.end(),
                        [&](const ScreenMask& mask) { return mask.id == maskID; });
}

// The visible frame of the screen that the pointer is on, else of the main screen.
std::optional<Rect> pointerScreenVisibleFrame(const Screens& screens, Point pointer) {
    for (const ScreenInfo& screen : screens.screens())
        if (screen.frame.containsPointer(pointer)) return screen.visibleFrame;
    const auto main = screens.mainScreen();
    return main ? std::optional(main->visibleFrame) : std::nullopt;
}

// Centred on the pointer and then moved into the visible frame. Where that is too small for a new
// mask, the mask's right or top edge is aligned with it.
MaskFrame newMaskFrame(const Screens& screens) {
    const Point pointer = screens.pointerLocation();
    MaskFrame frame{pointer.x - AppState::newMaskSize.width / 2,
                    pointer.y - AppState::newMaskSize.height / 2, AppState::newMaskSize.width,
                    AppState::newMaskSize.height};
    if (const auto visible = pointerScreenVisibleFrame(screens, pointer)) {
        frame.x = std::min(std::max(frame.x, visible->minX()), visible->maxX() - frame.width);
        frame.y = std::min(std::max(frame.y, visible->minY()), visible->maxY() - frame.height);
    }
    return frame;
}

}  // namespace

std::optional<ScreenMask> AppState::activeMask() const {
    const auto& selection = selectedMaskID.newest();
    if (!selection) return std::nullopt;
    const auto& all = masks.newest();
    const auto found = findMask(all, *selection);
    return found == all.end() ? std::nullopt : std::optional(*found);
}

ScreenMask AppState::newMask(const QString& name) const {
    const AppSettings& defaults = settings.newest();
    ScreenMask mask;
    mask.id = QUuid::createUuid();
    mask.name = name;
    mask.frame = newMaskFrame(m_platform.screens);
    mask.opacity = defaults.defaultOpacity;
    mask.colorHex = defaults.defaultColorHex;
    mask.isClickThrough = defaults.defaultClickThrough;
    mask.style = defaults.defaultStyle;
    return mask;
}

void AppState::createMask() {
    const ScreenMask mask = newMask(QStringLiteral("Mask %1").arg(masks.newest().size() + 1));
    masks.update([&](QList<ScreenMask>& all) { all.append(mask); });
    selectedMaskID.set(mask.id);
    announce(QStringLiteral("Created ") + mask.name);
}

void AppState::selectMask(const QUuid& maskID) {
    selectedMaskID.set(maskID);
    m_overlayManager.focusMask(maskID);
    const auto& all = masks.newest();
    const auto found = findMask(all, maskID);
    if (found != all.end()) announce(QStringLiteral("Selected ") + found->name);
}

void AppState::toggleVisibilityForAllMasks() {
    const bool areShown = !areMasksVisible.newest();
    areMasksVisible.set(areShown);
    announce(areShown ? QStringLiteral("All masks shown") : QStringLiteral("All masks hidden"));
}

void AppState::toggleEditing() {
    const bool isEnabled = !isEditingEnabled.newest();
    isEditingEnabled.set(isEnabled);
    announce(isEnabled ? QStringLiteral("Editing unlocked") : QStringLiteral("Editing locked"));
}

void AppState::seedDemoMaskForOnboarding() {
    if (masks.newest().isEmpty()) {
        const ScreenMask mask = newMask(QStringLiteral("Mask 1"));
        masks.update([&](QList<ScreenMask>& all) { all.append(mask); });
    }
    selectedMaskID.set(masks.newest().first().id);
}

void AppState::duplicateSelectedMask() {
    auto copy = activeMask();
    if (!copy) return;
    copy->id = QUuid::createUuid();
    copy->name += QStringLiteral(" Copy");
    copy->frame.x += duplicateOffset.x;
    copy->frame.y += duplicateOffset.y;
    copy->groupID.reset();

    masks.update([&](QList<ScreenMask>& all) { all.append(*copy); });
    selectedMaskID.set(copy->id);
    announce(QStringLiteral("Duplicated as ") + copy->name);
}

void AppState::toggleSelectedMaskVisibility() {
    const auto mask = activeMask();
    if (!mask) return;
    setVisibility(mask->id, !mask->isVisible);
    announce(mask->name + (mask->isVisible ? QStringLiteral(" hidden") : QStringLiteral(" shown")));
}

void AppState::deleteSelectedMask() {
    const auto selection = selectedMaskID.newest();
    if (!selection) return;
    const auto mask = activeMask();
    const QString name = mask ? mask->name : QStringLiteral("Mask");

    RemovedItems<ScreenMask> removed;
    masks.update(
        [&](QList<ScreenMask>& all) { removed = RemovedItems<ScreenMask>::take(*selection, all); });
    const auto& remaining = masks.newest();
    selectedMaskID.set(remaining.isEmpty() ? std::nullopt : std::optional(remaining.first().id));
    if (mask)
        becomeUndoable({UndoableAct::Kind::deletedMask, name},
                       [this, removed] { restoreMask(removed); });
    announce(QStringLiteral("Deleted ") + name);
}

void AppState::updateMask(const QUuid& maskID, const std::function<void(ScreenMask&)>& mutate) {
    const auto& all = masks.newest();
    const auto index = findMask(all, maskID) - all.begin();
    if (index == all.size()) return;
    masks.update([&](QList<ScreenMask>& changed) { mutate(changed[index]); });
}

void AppState::setOpacity(const QUuid& maskID, double opacity) {
    updateMask(maskID, [&](ScreenMask& mask) { mask.opacity = opacity; });
}

void AppState::setStyle(const QUuid& maskID, ScreenMask::Style style) {
    updateMask(maskID, [&](ScreenMask& mask) { mask.style = style; });
}

void AppState::setColorHex(const QUuid& maskID, const QString& colorHex) {
    updateMask(maskID, [&](ScreenMask& mask) { mask.colorHex = colorHex; });
}

void AppState::setClickThrough(const QUuid& maskID, bool isClickThrough) {
    updateMask(maskID, [&](ScreenMask& mask) { mask.isClickThrough = isClickThrough; });
}

void AppState::setVisibility(const QUuid& maskID, bool isVisible) {
    updateMask(maskID, [&](ScreenMask& mask) { mask.isVisible = isVisible; });
}

void AppState::setMaskName(const QUuid& maskID, const QString& name) {
    const QString trimmed = name.trimmed();
    if (trimmed.isEmpty()) return;
    updateMask(maskID, [&](ScreenMask& mask) { mask.name = trimmed; });
}

void AppState::updateMaskFrame(const QUuid& maskID, const MaskFrame& frame) {
    updateMask(maskID, [&](ScreenMask& mask) { mask.frame = frame; });
}

void AppState::nudgeSelectedMask(double dx, double dy) {
    const auto mask = activeMask();
    if (!mask) return;
    const MaskFrame& frame = mask->frame;
    updateMaskFrame(mask->id, {frame.x + dx, frame.y + dy, frame.width, frame.height});
}

void AppState::resizeSelectedMask(double widthDelta, double heightDelta) {
    const auto mask = activeMask();
    if (!mask) return;
    const MaskFrame& frame = mask->frame;
    updateMaskFrame(mask->id,
                    {frame.x, frame.y, std::max(frame.width + widthDelta, minimumMaskSize.width),
                     std::max(frame.height + heightDelta, minimumMaskSize.height)});
}
