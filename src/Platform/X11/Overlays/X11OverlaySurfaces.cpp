#include "Platform/X11/Overlays/X11OverlaySurfaces.h"

#include "Platform/X11/Overlays/LeftoverWindows.h"
#include "Platform/X11/ServerGrab.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

X11OverlaySurfaces::X11OverlaySurfaces(const Services& services)
    : m_services(services),
      m_connection(services.connection),
      m_alphaVisual(services.connection, OverlayVisual::Alpha::wanted),
      m_plainVisual(services.connection, OverlayVisual::Alpha::useless),
      m_cursors(services.connection),
      m_input(*this),
      m_retired(services.scheduler),
      m_knownScreens(services.screens.screens()),
      m_managers(services.connection, services.log),
      m_probe(services.connection),
      m_lockers(services.screens, m_probe, services.isSessionLocked),
      m_tamperGuard(services.connection, services.scheduler, services.log, *this),
      m_guard(services.connection, services.scheduler, services.log, m_managers, *this),
      m_painter(
          services.connection, services.scheduler, [this] { return shownMasks(); },
          services.isOwnWindow) {
    m_managers.onCompositorReplaced = [this] { remakeWindows(); };
    m_subscriptions.keep(m_connection.onPointerEvent(
        [this](const xcb_generic_event_t& event) { m_input.handleEvent(event); }));
    m_subscriptions.keep(m_connection.onBurstEnd([this] { m_input.flushMotion(); }));
    m_subscriptions.keep(m_services.screens.onScreensChanged([this] { followScreens(); }));
    if (services.isSessionLocked)
        m_subscriptions.keep(services.isSessionLocked->subscribe([this](bool) {
            // What was let above the masks may have no right to it any more.
            m_guard.audit();
        }));
}

X11OverlaySurfaces::~X11OverlaySurfaces() = default;

std::unique_ptr<OverlaySurface> X11OverlaySurfaces::createSurface(
    const SurfaceDescription& description, SurfaceDelegate* delegate) {
    auto surface =
        std::make_unique<X11OverlaySurface>(*this, description, delegate, makeWindow(description));
    m_surfaces.push_back(surface.get());
    m_surfaceOfWindow.clear();
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
    const auto release = [this] {
        killLeftoverWindows(m_connection, m_services.log);
        m_connection.flush();
    };
    if (!isCompositing()) return release();
    m_leftoverRelease = after(RetiredWindows::longestAppearance, release);
}

void X11OverlaySurfaces::forget(X11OverlaySurface& surface) {
    m_input.forget(surface);
    noteBackdropChange(surface.window().rect());
    surface.giveUpWindow(m_retired);
    std::erase(m_surfaces, &surface);
    m_surfaceOfWindow.clear();
    if (m_services.accessibility) m_services.accessibility->forget(surface);
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
    window.setRect(rect);
    if (m_guard.needsToHearOfMoves())
        window.present();
    else
        m_connection.makeUnheard([&] { window.present(); });
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
        for (X11OverlaySurface* surface : m_surfaces) {
            // What is composed with what lies below is not the same among others.
            if (m_retired.hasNew() && !composesPicture(surface->isFrosted()))
                surface->reuse(m_retired, space);
            surface->prepare(space);
        }
        m_surfaceOfWindow.clear();
        showChanges();
        updateBackdrops();
    }
    if (!m_changedBackdrop.isEmpty()) m_painter.noteChange(std::exchange(m_changedBackdrop, {}));
    // What can be seen comes first.
    m_connection.flush();
    if (isChanged) tellPlaces();
}

// Pictures are painted by now. What is to be seen is there before anything that hid it goes.
void X11OverlaySurfaces::showChanges() {
    const auto shown = shownInOrder();
    std::vector<xcb_window_t> stackOfShown;
    stackOfShown.reserve(shown.size());
    for (const X11OverlaySurface* surface : shown)
        stackOfShown.push_back(surface->window().id());
    const bool isOrderNew = std::exchange(m_needsOrder, false) && stackOfShown != m_stack;
    std::size_t first = shown.size();
    if (isOrderNew) {
        m_painter.prepareOrder(shownMasks(), m_stack);
        // What went only leaves the others where they are.
        const std::unordered_set<xcb_window_t> wanted(stackOfShown.begin(), stackOfShown.end());
        std::erase_if(m_stack, [&](xcb_window_t window) { return !wanted.contains(window); });
        first = static_cast<std::size_t>(
            std::mismatch(stackOfShown.begin(), stackOfShown.end(), m_stack.begin(), m_stack.end())
                .first -
            stackOfShown.begin());
    }
    const bool isAnythingToShow =
        isOrderNew || m_retired.hasNew() ||
        std::any_of(m_surfaces.begin(), m_surfaces.end(),
                    [](const X11OverlaySurface* surface) { return surface->needsPresenting(); });
    if (!isAnythingToShow) return;

    // With the server grabbed, requests only.
    const ServerGrab grab(m_connection);
    for (X11OverlaySurface* surface : m_surfaces)
        surface->present();
    stack(shown, first, m_guard.ceiling());
    const QList<QRect> mapped = map(shown, first);
    for (std::size_t i = first; i < shown.size(); ++i)
        noteBackdropChange(shown[i]->window().rect());
    unmapHidden();
    if (shown.empty()) m_retired.clear();
    m_retired.settle(mapped, isCompositing());
    if (!mapped.isEmpty() && isCompositing())
        m_secondLook = after(RetiredWindows::longestAppearance / 2, [this] { damageShown(); });
    if (isOrderNew) m_stack = std::move(stackOfShown);
    updateCloseDownMode();
}

// A busy picom 9.1 can miss that a window was mapped again, and paints it when it is damaged.
void X11OverlaySurfaces::damageShown() {
    for (X11OverlaySurface* surface : m_surfaces)
        if (surface->isShown()) xcb_clear_area(m_connection, 0, surface->window().id(), 0, 0, 0, 0);
    m_connection.flush();
}

// From the top down: no mask comes to lie above one that is to hide it.
void X11OverlaySurfaces::stack(const std::vector<X11OverlaySurface*>& shown, std::size_t first,
                               std::optional<xcb_window_t> ceiling) {
    for (std::size_t i = shown.size(); i-- > first;) {
        NativeOverlayWindow& window = shown[i]->window();
        ceiling ? window.stackBelow(*ceiling) : window.raise();
        ceiling = window.id();
    }
}

// From the bottom up, because some managers paint in the order of mapping. Returns where something
// new has come.
QList<QRect> X11OverlaySurfaces::map(const std::vector<X11OverlaySurface*>& shown,
                                     std::size_t first) {
    QList<QRect> mapped;
    const PaintOrder paintOrder = m_managers.paintOrder();
    for (std::size_t i = first; i < shown.size(); ++i) {
        NativeOverlayWindow& window = shown[i]->window();
        if (!window.isMapped())
            mapped.append(window.rect());
        else if (paintOrder == PaintOrder::mapped && !mapped.isEmpty())
            window.unmap();
        window.map();
    }
    if (!mapped.isEmpty() && paintOrder == PaintOrder::stackedUntilMapped) m_probe.stirStacking();
    return mapped;
}

void X11OverlaySurfaces::unmapHidden() {
    for (X11OverlaySurface* surface : m_surfaces) {
        if (surface->isShown() || !surface->window().isMapped()) continue;
        surface->window().unmap();
        noteBackdropChange(surface->window().rect());
    }
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

void X11OverlaySurfaces::updateCloseDownMode() {
    const bool shouldBeRetained = !m_stack.empty();
    if (std::exchange(m_isRetained, shouldBeRetained) == shouldBeRetained) return;
    xcb_set_close_down_mode(m_connection, shouldBeRetained ? XCB_CLOSE_DOWN_RETAIN_PERMANENT
                                                           : XCB_CLOSE_DOWN_DESTROY_ALL);
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
    for (X11OverlaySurface* surface : m_surfaces)
        m_retired.add(surface->replaceWindow(makeWindow(surface->description())), nullptr);
    m_surfaceOfWindow.clear();
    noteOrder();
}

X11OverlaySurface* X11OverlaySurfaces::surfaceOf(xcb_window_t window) const {
    if (m_surfaceOfWindow.empty())
        for (X11OverlaySurface* surface : m_surfaces)
            m_surfaceOfWindow.emplace(surface->window().id(), surface);
    const auto found = m_surfaceOfWindow.find(window);
    return found == m_surfaceOfWindow.end() ? nullptr : found->second;
}

std::vector<xcb_window_t> X11OverlaySurfaces::shownWindows() const {
    return m_stack;
}

bool X11OverlaySurfaces::isOwnWindow(xcb_window_t window) const {
    return m_services.isOwnWindow(window);
}

bool X11OverlaySurfaces::isScreenLocker(const StackingGuard::Neighbour& neighbour) const {
    return m_lockers.isLocker(neighbour, isCompositing());
}

void X11OverlaySurfaces::raiseShownWindows(std::optional<xcb_window_t> ceiling) {
    const auto shown = shownInOrder();
    const PaintOrder paintOrder = m_managers.paintOrder();
    {
        const ServerGrab grab(m_connection);
        stack(shown, 0, ceiling);
        if (paintOrder == PaintOrder::mapped) mapAnew(shown);
        if (paintOrder == PaintOrder::stackedUntilMapped) m_probe.stirStacking();
    }
    m_connection.flush();
}

// In one step, so that nothing shows in between.
void X11OverlaySurfaces::mapAnew(const std::vector<X11OverlaySurface*>& shown) {
    for (X11OverlaySurface* surface : shown) {
        NativeOverlayWindow& window = surface->window();
        window.unmap();
        window.map();
    }
}

NativeOverlayWindow* X11OverlaySurfaces::guardedWindow(xcb_window_t window) {
    X11OverlaySurface* const surface = surfaceOf(window);
    return surface ? &surface->window() : nullptr;
}

void X11OverlaySurfaces::windowWasHidden(xcb_window_t window) {
    // The server has ended its hold on the pointer.
    m_input.endGestureOf(*surfaceOf(window));
    std::erase(m_stack, window);
}

void X11OverlaySurfaces::replaceLostWindow(xcb_window_t window) {
    X11OverlaySurface& surface = *surfaceOf(window);
    m_input.endGestureOf(surface);
    std::erase(m_stack, window);
    m_retired.add(surface.replaceWindow(makeWindow(surface.description())), nullptr);
    m_surfaceOfWindow.clear();
}

void X11OverlaySurfaces::showMendedWindows() {
    for (X11OverlaySurface* surface : m_surfaces)
        surface->window().present();
    noteOrder();
}
