#include "Platform/X11/Overlays/ScreenLockers.h"

#include <algorithm>

ScreenLockers::ScreenLockers(const X11Screens& screens, const UnmappedWindow& probe,
                             const Published<bool>* isSessionLocked)
    : m_screens(screens), m_probe(probe), m_isSessionLocked(isSessionLocked) {}

bool ScreenLockers::isLocker(const StackingGuard::Neighbour& neighbour, bool isCompositing) const {
    const auto& monitors = m_screens.space().nativeScreens();
    const bool coversMonitor = std::any_of(
        monitors.begin(), monitors.end(),
        [&](const NativeScreen& monitor) { return neighbour.rect.contains(monitor.frame); });
    const bool hidesAll = neighbour.isOpaque || !isCompositing;
    if (!coversMonitor || !hidesAll || !neighbour.isOverrideRedirect) return false;
    return (m_isSessionLocked && m_isSessionLocked->newest()) || m_probe.isKeyboardHeldByAnother();
}
