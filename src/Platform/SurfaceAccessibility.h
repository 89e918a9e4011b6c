#pragma once

#include "Platform/OverlaySurfaces.h"

#include <QRect>

/// Makes what surfaces show known to assistive technology, for back ends whose surfaces are not
/// windows of the toolkit. A surface is known by its address.
class SurfaceAccessibility {
public:
    virtual ~SurfaceAccessibility() = default;

    /// Tells or replaces what is known of a surface.
    virtual void describe(const OverlaySurface& surface,
                          const AccessibleDescription& description) = 0;
    /// The surface is on screen in that rectangle (pixels of the root window, y downward), or not
    /// on screen.
    virtual void place(const OverlaySurface& surface, const QRect& rect, bool isShown) = 0;
    virtual void forget(const OverlaySurface& surface) = 0;
};
