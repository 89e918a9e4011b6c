#pragma once

#include "Models/ScreenMask.h"
#include "Platform/MainLoop.h"
#include "Platform/OverlaySurfaces.h"
#include "Platform/Screens.h"
#include "Reactive/Lifetime.h"
#include "Reactive/Published.h"
#include "Services/OverlayWindow.h"

#include <QList>
#include <QUuid>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

/// Keeps exactly one overlay window for every mask of the model and keeps its frame, visibility,
/// click-through state and look in step. Reports moved frames and clicks back, and repairs the
/// windows when the screens change.
class OverlayManager final : private OverlayWindowDelegate {
public:
    using FrameChanged = std::function<void(const QUuid& maskID, const MaskFrame& frame)>;
    using MaskSelected = std::function<void(const QUuid& maskID)>;

    /// All references must outlive the manager.
    OverlayManager(MainLoop& mainLoop, Screens& screens, OverlaySurfaces& surfaces);
    ~OverlayManager() override;
    OverlayManager(const OverlayManager&) = delete;
    OverlayManager& operator=(const OverlayManager&) = delete;

    /// The number of masks that are on screen.
    Published<int> activeOverlayCount{0};

    /// Brings the windows in step with the model. Windows of shown masks end up in list order,
    /// the last on top. A call during a running sync is dropped without effect.
    void sync(const QList<ScreenMask>& masks, bool areMasksVisible, bool isEditingEnabled,
              const std::optional<QUuid>& selectedMaskID, FrameChanged onMaskFrameChanged,
              MaskSelected onMaskSelected);

    /// Shows the mask, if any, as the only selected one; changes nothing else.
    void setSelectedMask(const std::optional<QUuid>& maskID);

    /// Brings the mask's window to the front; does nothing for an unknown mask. One that is hidden
    /// stays so: choosing a mask in a list must not put it on a screen that was cleared.
    void focusMask(const QUuid& maskID);

    /// The window of a mask, null when it has none. For inspection.
    const OverlayWindow* windowFor(const QUuid& maskID) const;

private:
    struct UuidHash {
        std::size_t operator()(const QUuid& id) const noexcept { return qHash(id); }
    };

    void windowDidMove(OverlayWindow& window) override;
    void windowDidResize(OverlayWindow& window) override;

    struct Entry {
        std::unique_ptr<OverlayWindow> window;
        /// The frame that the model holds, as far as is known here.
        MaskFrame modelFrame;
        /// The number of the last sync that had the mask.
        std::uint64_t lastSync = 0;
    };

    /// The entries of the masks, in their order, each with its window. Those of other masks, and
    /// their windows, go.
    std::vector<Entry*> entriesOf(const QList<ScreenMask>& masks);
    void makeWindow(Entry& entry, const ScreenMask& mask);
    void syncWindow(Entry& entry, const ScreenMask& mask, bool isShown, bool isEditingEnabled,
                    bool isSelected, const QList<Rect>& frames);
    void recoverWindowsForCurrentScreens();
    /// Does so, for masks whose frames are still those of the former screens. Returns them with
    /// the frames of the new ones, those excepted that the model has just changed.
    QList<ScreenMask> recovered(QList<ScreenMask> masks);
    void reportFrame(const OverlayWindow& window);

    Screens& m_screens;
    OverlaySurfaces& m_surfaces;
    FrameChanged m_onMaskFrameChanged;
    MaskSelected m_onMaskSelected;
    bool m_isSyncing = false;
    // The screens have changed, and the model still has the frames of the former ones.
    bool m_needsRecovery = false;
    std::uint64_t m_syncNumber = 0;
    std::unordered_map<QUuid, Entry, UuidHash> m_windows;
    Lifetime m_lifetime;
    Subscription m_screenObserver;
};
