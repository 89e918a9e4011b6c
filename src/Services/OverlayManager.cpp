#include "Services/OverlayManager.h"

#include "Services/ScreenPlacement.h"

#include <algorithm>
#include <utility>

OverlayManager::OverlayManager(MainLoop& mainLoop, Screens& screens, OverlaySurfaces& surfaces)
    : m_screens(screens), m_surfaces(surfaces) {
    m_screenObserver = m_screens.onScreensChanged([this, &mainLoop] {
        m_needsRecovery = true;
        mainLoop.post(m_lifetime.guard([this] { recoverWindowsForCurrentScreens(); }));
    });
}

OverlayManager::~OverlayManager() = default;

void OverlayManager::sync(const QList<ScreenMask>& masks, bool areMasksVisible,
                          bool isEditingEnabled, const std::optional<QUuid>& selectedMaskID,
                          FrameChanged onMaskFrameChanged, MaskSelected onMaskSelected) {
    if (m_isSyncing) return;
    m_onMaskFrameChanged = std::move(onMaskFrameChanged);
    m_onMaskSelected = std::move(onMaskSelected);
    const QList<ScreenMask> current = m_needsRecovery ? recovered(masks) : masks;
    m_isSyncing = true;

    {
        const SurfaceBatch batch(m_surfaces);
        const std::vector<Entry*> entries = entriesOf(current);
        const QList<Rect> frames = visibleFrames(m_screens);
        auto entry = entries.begin();
        for (const ScreenMask& mask : current)
            syncWindow(**entry++, mask, areMasksVisible && mask.isVisible, isEditingEnabled,
                       selectedMaskID == mask.id, frames);
    }

    const auto visibleCount = std::count_if(current.begin(), current.end(),
                                            [](const ScreenMask& mask) { return mask.isVisible; });
    activeOverlayCount.set(areMasksVisible ? static_cast<int>(visibleCount) : 0);
    m_isSyncing = false;
}

void OverlayManager::setSelectedMask(const std::optional<QUuid>& maskID) {
    const SurfaceBatch batch(m_surfaces);
    for (const auto& [id, entry] : m_windows) {
        if (!entry.window->contentView()) continue;
        OverlayMaskView view = *entry.window->contentView();
        view.isSelected = maskID == id;
        entry.window->setContentView(view);
    }
}

void OverlayManager::focusMask(const QUuid& maskID) {
    const auto found = m_windows.find(maskID);
    if (found == m_windows.end() || !found->second.window->isVisible()) return;
    found->second.window->orderFront();
}

const OverlayWindow* OverlayManager::windowFor(const QUuid& maskID) const {
    const auto found = m_windows.find(maskID);
    return found == m_windows.end() ? nullptr : found->second.window.get();
}

void OverlayManager::windowDidMove(OverlayWindow& window) {
    reportFrame(window);
}

void OverlayManager::windowDidResize(OverlayWindow& window) {
    reportFrame(window);
}

void OverlayManager::makeWindow(Entry& entry, const ScreenMask& mask) {
    entry.window = std::make_unique<OverlayWindow>(mask.id, mask.frame, m_surfaces, m_screens,
                                                   static_cast<OverlayWindowDelegate&>(*this));
    entry.window->onMaskSelected = m_lifetime.guard([this, id = mask.id] {
        if (m_onMaskSelected) m_onMaskSelected(id);
    });
}

std::vector<OverlayManager::Entry*> OverlayManager::entriesOf(const QList<ScreenMask>& masks) {
    ++m_syncNumber;
    std::vector<Entry*> entries;
    entries.reserve(static_cast<std::size_t>(masks.size()));
    for (const ScreenMask& mask : masks) {
        Entry& entry = m_windows[mask.id];
        entry.lastSync = m_syncNumber;
        entries.push_back(&entry);
    }
    std::erase_if(m_windows,
                  [this](const auto& entry) { return entry.second.lastSync != m_syncNumber; });
    for (qsizetype i = 0; i < masks.size(); ++i) {
        Entry& entry = *entries[static_cast<std::size_t>(i)];
        if (!entry.window) makeWindow(entry, masks.at(i));
    }
    return entries;
}

void OverlayManager::syncWindow(Entry& entry, const ScreenMask& mask, bool isShown,
                                bool isEditingEnabled, bool isSelected, const QList<Rect>& frames) {
    entry.modelFrame = mask.frame;
    OverlayWindow& window = *entry.window;
    const Rect target = resolvedFrame(mask.frame, frames);
    if (window.frame() != target) {
        window.setFrame(target);
        reportFrame(window);
    }
    window.setContentView({mask, isSelected, isEditingEnabled});
    window.setIgnoresMouseEvents(!isEditingEnabled || mask.isClickThrough);
    if (isShown)
        window.orderFront();
    else
        window.orderOut();
}

void OverlayManager::recoverWindowsForCurrentScreens() {
    // Every report makes the model sync, with frames that for the windows not yet reported are
    // still those of the old screens. So all reports are made before any sync runs.
    if (m_isSyncing || !std::exchange(m_needsRecovery, false)) return;
    m_isSyncing = true;
    {
        const SurfaceBatch batch(m_surfaces);
        const QList<Rect> frames = visibleFrames(m_screens);
        for (auto& [id, entry] : m_windows) {
            OverlayWindow& window = *entry.window;
            window.catchUp();
            const Rect target = resolvedFrame(window.frame(), frames);
            if (window.frame() != target) window.setFrame(target);
            if (window.frame() != entry.modelFrame) reportFrame(window);
            window.restartGesture();
        }
    }
    m_isSyncing = false;
}

QList<ScreenMask> OverlayManager::recovered(QList<ScreenMask> masks) {
    std::vector<std::pair<ScreenMask*, const Entry*>> untouched;
    for (ScreenMask& mask : masks) {
        const auto entry = m_windows.find(mask.id);
        if (entry != m_windows.end() && entry->second.modelFrame == mask.frame)
            untouched.emplace_back(&mask, &entry->second);
    }
    recoverWindowsForCurrentScreens();
    for (const auto& [mask, entry] : untouched)
        mask->frame = entry->window->frame();
    return masks;
}

void OverlayManager::reportFrame(const OverlayWindow& window) {
    // By copy: the model may answer with a sync, which replaces the callback.
    const FrameChanged callback = m_onMaskFrameChanged;
    if (!callback) return;
    const auto entry = m_windows.find(window.maskID());
    if (entry != m_windows.end()) entry->second.modelFrame = window.frame();
    callback(window.maskID(), window.frame());
}
