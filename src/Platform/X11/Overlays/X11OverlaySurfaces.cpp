#include "Platform/X11/Overlays/X11OverlaySurfaces.h"

#include "Platform/X11/Overlays/LeftoverWindows.h"

#include <algorithm>
#include <utility>

X11OverlaySurfaces::X11OverlaySurfaces(const Services& services)
    : m_services(services),
      m_connection(services.connection),
      m_alphaVisual(services.connection, OverlayVisual::Alpha::wanted),
      m_plainVisual(services.connection, OverlayVisual::Alpha::useless),
      m_cursors(services.connection),
      m_input(*this),
      m_knownScreens(services.screens.screens()),
      m_managers(services.connection, services.log),
      m_guard(services.connection, services.scheduler, services.log, *this),
      m_painter(
          services.connection, services.scheduler, [this] { return shownMasks(); },
          services.isOwnWindow) {
    m_managers.onReplaced = [this] { remakeWindows(); };
    m_subscriptions.keep(m_connection.onPointerEvent(
        [this](const xcb_generic_event_t& event) { m_input.handleEvent(event); }));
    m_subscriptions.keep(
        m_connection.onEvent([this](const xcb_generic_event_t& event) { handleEvent(event); }));
    m_subscriptions.keep(m_connection.onBurstEnd([this] { m_input.flushMotion(); }));
    m_subscriptions.keep(m_services.screens.onScreensChanged([this] { followScreens(); }));
}

X11OverlaySurfaces::~X11OverlaySurfaces() = default;

std::unique_ptr<OverlaySurface> X11OverlaySurfaces::createSurface(
    const SurfaceDescription& description, SurfaceDelegate* delegate) {
    auto surface =
        std::make_unique<X11OverlaySurface>(*this, description, delegate, makeWindow(description));
    m_surfaces.push_back(surface.get());
    return surface;
}

std::unique_ptr<NativeOverlayWindow> X11OverlaySurfaces::makeWindow(
    const SurfaceDescription& description) {
    auto window = std::make_unique<NativeOverlayWindow>(
        m_connection, visual(), m_services.screens.space().toNative(description.frame),
        description.title, description.maskID);
    m_painter.leaveOut(*window);
    return window;
}

void X11OverlaySurfaces::endBatch() {
    if (--m_openBatches == 0) commit();
}

void X11OverlaySurfaces::releaseLeftovers() {
    killLeftoverWindows(m_connection, m_services.log);
    m_connection.flush();
}

void X11OverlaySurfaces::forget(X11OverlaySurface& surface) {
    m_input.forget(surface);
    noteBackdropChange(surface.window().rect());
    std::erase(m_surfaces, &surface);
    std::erase(m_stack, surface.window().id());
    if (m_services.accessibility) m_services.accessibility->forget(surface);
    // The window itself goes at the end of the surface's destructor.
    noteOrder();
}

void X11OverlaySurfaces::noteChange() {
    m_needsApply = true;
    commitUnlessBatched();
}

void X11OverlaySurfaces::noteOrder() {
    m_needsApply = true;
    m_needsOrder = true;
    commitUnlessBatched();
}

void X11OverlaySurfaces::describe(X11OverlaySurface& surface,
                                  const AccessibleDescription& description) {
    if (m_services.accessibility) m_services.accessibility->describe(surface, description);
}

void X11OverlaySurfaces::endGestureOf(X11OverlaySurface& surface) {
    m_input.endGestureOf(surface);
}

void X11OverlaySurfaces::moveNow(NativeOverlayWindow& window, const QRect& rect) {
    if (m_guard.needsToHearOfMoves())
        window.setRect(rect);
    else
        m_connection.makeUnheard([&] { window.setRect(rect); });
    m_connection.flush();
}

QImage::Format X11OverlaySurfaces::imageFormat() const {
    return visual().hasAlpha() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
}

void X11OverlaySurfaces::commitUnlessBatched() {
    if (m_openBatches == 0) commit();
}

void X11OverlaySurfaces::commit() {
    const bool isChanged = std::exchange(m_needsApply, false);
    if (isChanged) {
        const DesktopSpace& space = m_services.screens.space();
        for (X11OverlaySurface* surface : m_surfaces)
            surface->apply(space);
    }
    if (std::exchange(m_needsOrder, false)) {
        applyOrder();
        updateCloseDownMode();
    }
    if (isChanged) updateBackdrops();
    // What can be seen comes first.
    m_connection.flush();
    if (isChanged) tellPlaces();
}

void X11OverlaySurfaces::tellPlaces() {
    if (!m_services.accessibility) return;
    for (X11OverlaySurface* surface : m_surfaces)
        if (surface->isPlacedAnew())
            m_services.accessibility->place(*surface, surface->window().rect(), surface->isShown());
}

std::vector<X11OverlaySurface*> X11OverlaySurfaces::shownInOrder() const {
    std::vector<X11OverlaySurface*> shown;
    std::copy_if(m_surfaces.begin(), m_surfaces.end(), std::back_inserter(shown),
                 [](const X11OverlaySurface* surface) { return surface->isShown(); });
    const auto isLower = [](const X11OverlaySurface* a, const X11OverlaySurface* b) {
        return a->raiseNumber() < b->raiseNumber();
    };
    // They are made in the order that they usually keep.
    if (!std::is_sorted(shown.begin(), shown.end(), isLower))
        std::sort(shown.begin(), shown.end(), isLower);
    return shown;
}

void X11OverlaySurfaces::applyOrder() {
    const auto shown = shownInOrder();
    std::vector<xcb_window_t> stack;
    stack.reserve(shown.size());
    for (const X11OverlaySurface* surface : shown)
        stack.push_back(surface->window().id());
    m_painter.prepareOrder(shownMasks(), m_stack);

    // What went only leaves the others where they are.
    if (stack != m_stack)
        std::erase_if(m_stack, [&](xcb_window_t window) {
            return std::find(stack.begin(), stack.end(), window) == stack.end();
        });
    const auto firstDifference =
        std::mismatch(stack.begin(), stack.end(), m_stack.begin(), m_stack.end()).first;
    for (auto i = firstDifference - stack.begin(); i < static_cast<std::ptrdiff_t>(shown.size());
         ++i) {
        NativeOverlayWindow& window = shown[static_cast<std::size_t>(i)]->window();
        window.raise();
        window.map();
        noteBackdropChange(window.rect());
    }
    for (X11OverlaySurface* surface : m_surfaces) {
        if (surface->isShown() || !surface->window().isMapped()) continue;
        surface->window().unmap();
        noteBackdropChange(surface->window().rect());
    }
    m_stack = std::move(stack);
}

void X11OverlaySurfaces::updateCloseDownMode() {
    const bool shouldBeRetained = !m_stack.empty();
    if (std::exchange(m_isRetained, shouldBeRetained) == shouldBeRetained) return;
    xcb_set_close_down_mode(m_connection, shouldBeRetained ? XCB_CLOSE_DOWN_RETAIN_PERMANENT
                                                           : XCB_CLOSE_DOWN_DESTROY_ALL);
}

void X11OverlaySurfaces::handleEvent(const xcb_generic_event_t& event) {
    const uint8_t type = event.response_type & 0x7f;
    if (type == XCB_CONFIGURE_NOTIFY) {
        handleForeignConfigure(event);
    } else if (type == XCB_UNMAP_NOTIFY) {
        const auto& unmap = reinterpret_cast<const xcb_unmap_notify_event_t&>(event);
        auto* const surface = surfaceOf(unmap.window);
        if (!surface || !surface->window().isMapped() || !surface->window().isUpToDate(event))
            return;
        // Hiding a mask is not for other programs. The server has ended its hold on the pointer.
        m_input.endGestureOf(*surface);
        surface->window().noteForeignUnmap();
        std::erase(m_stack, unmap.window);
        noteOrder();
    } else if (type == XCB_DESTROY_NOTIFY) {
        const auto& destroy = reinterpret_cast<const xcb_destroy_notify_event_t&>(event);
        if (auto* const surface = surfaceOf(destroy.window)) {
            m_input.endGestureOf(*surface);
            surface->replaceWindow(makeWindow(surface->description()))->noteForeignDestruction();
            noteOrder();
        }
    }
}

void X11OverlaySurfaces::handleForeignConfigure(const xcb_generic_event_t& event) {
    const auto& configure = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
    if (configure.event != m_connection.root()) return;
    auto* const surface = surfaceOf(configure.window);
    const QRect rect(configure.x, configure.y, configure.width, configure.height);
    if (!surface || surface->window().rect() == rect || !surface->window().isUpToDate(event))
        return;
    const SurfaceBatch batch(*this);
    surface->adoptForeignRect(rect, m_services.screens.space());
}

void X11OverlaySurfaces::followScreens() {
    const SurfaceBatch batch(*this);
    const DesktopSpace& space = m_services.screens.space();
    const QList<ScreenInfo> oldScreens = std::exchange(m_knownScreens, space.screens());
    for (X11OverlaySurface* surface : m_surfaces)
        surface->followScreens(oldScreens, space);
    m_needsApply = true;
}

void X11OverlaySurfaces::remakeWindows() {
    const SurfaceBatch batch(*this);
    updateBackdrops();
    // First, because it takes the guides, which are surfaces too, away.
    m_input.endGesture();
    std::vector<std::unique_ptr<NativeOverlayWindow>> oldWindows;
    for (X11OverlaySurface* surface : m_surfaces)
        oldWindows.push_back(surface->replaceWindow(makeWindow(surface->description())));
    m_needsApply = true;
    m_needsOrder = true;
    // The new windows are mapped before the old ones go, so that nothing shows in between.
    commit();
}

X11OverlaySurface* X11OverlaySurfaces::surfaceOf(xcb_window_t window) const {
    const auto found = std::find_if(
        m_surfaces.begin(), m_surfaces.end(),
        [&](const X11OverlaySurface* surface) { return surface->window().id() == window; });
    return found == m_surfaces.end() ? nullptr : *found;
}

std::vector<xcb_window_t> X11OverlaySurfaces::shownWindows() const {
    return m_stack;
}

bool X11OverlaySurfaces::isOwnWindow(xcb_window_t window) const {
    return m_services.isOwnWindow(window);
}

void X11OverlaySurfaces::raiseShownWindows() {
    for (X11OverlaySurface* surface : shownInOrder()) {
        NativeOverlayWindow& window = surface->window();
        // Mapped anew in the same step, nothing shows in between.
        if (m_managers.isOrderedByMapping()) window.unmap();
        window.raise();
        window.map();
    }
    m_connection.flush();
}
