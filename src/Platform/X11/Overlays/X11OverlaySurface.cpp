#include "Platform/X11/Overlays/X11OverlaySurface.h"

#include "Platform/X11/Overlays/X11OverlaySurfaces.h"
#include "Services/ScreenPlacement.h"

#include <QPainter>
#include <utility>

X11OverlaySurface::X11OverlaySurface(X11OverlaySurfaces& owner, SurfaceDescription description,
                                     SurfaceDelegate* delegate,
                                     std::unique_ptr<NativeOverlayWindow> window)
    : m_owner(owner),
      m_description(std::move(description)),
      m_delegate(delegate),
      m_window(std::move(window)) {}

X11OverlaySurface::~X11OverlaySurface() {
    m_delegate = nullptr;
    m_owner.forget(*this);
}

void X11OverlaySurface::setFrame(const Rect& frame) {
    const bool wasAhead = takeFrameAhead().has_value();
    const Rect previous = std::exchange(m_description.frame, frame);
    if (previous == frame && !wasAhead) return;
    noteChange();
    tellDelegate(previous);
}

bool X11OverlaySurface::canMoveNow(const Rect& frame) const {
    const DesktopSpace& space = m_owner.space();
    // What has another look there must be painted first.
    return space.toNative(frame).size() == m_window->rect().size() &&
           space.scaleFactorAt(frame) == m_scaleFactor;
}

// The server, a compositor and this program tend to share a processor when one wakes the other. So
// all that is done here is to send the request and to sleep again: the model hears of many steps at
// once, and the server is not to wake this program for telling it what it knows.
void X11OverlaySurface::setFinalFrame(const Rect& frame) {
    if (frame == wantedFrame()) return;
    if (!canMoveNow(frame)) return setFrame(frame);
    if (!m_frameAhead) {
        m_pendingCatchUp = m_owner.after(X11OverlaySurfaces::displayFrame, [this] { catchUp(); });
        m_passedRect = m_window->rect();
    }
    m_frameAhead = frame;
    m_owner.moveNow(*m_window, m_owner.space().toNative(frame));
    m_passedRect |= m_window->rect();
}

std::optional<Rect> X11OverlaySurface::takeFrameAhead() {
    m_pendingCatchUp.reset();
    // The pictures of others may show it anywhere on its way.
    if (m_frameAhead) m_owner.noteBackdropChange(m_passedRect);
    return std::exchange(m_frameAhead, std::nullopt);
}

void X11OverlaySurface::catchUp() {
    const SurfaceBatch batch(m_owner);
    const auto ahead = takeFrameAhead();
    if (!ahead) return;
    const Rect previous = std::exchange(m_description.frame, *ahead);
    noteChange();
    tellDelegate(previous);
}

void X11OverlaySurface::noteChange() {
    m_needsApplying = true;
    m_owner.noteChange();
}

void X11OverlaySurface::tellDelegate(const Rect& previous) {
    if (!m_delegate) return;
    const Rect& frame = m_description.frame;
    const bool isMoved = previous.x != frame.x || previous.y != frame.y;
    const bool isResized = previous.size() != frame.size();
    if (isMoved) m_delegate->surfaceDidMove();
    if (isResized) m_delegate->surfaceDidResize();
}

void X11OverlaySurface::setContent(std::shared_ptr<const SurfaceContent> content) {
    m_content = std::move(content);
    m_needsPainting = true;
    noteChange();
}

void X11OverlaySurface::setAccessibleDescription(const AccessibleDescription& description) {
    if (m_accessible == description) return;
    m_accessible = description;
    m_owner.describe(*this, m_accessible);
}

void X11OverlaySurface::setIgnoresMouseEvents(bool ignores) {
    if (std::exchange(m_ignoresMouseEvents, ignores) != ignores) noteChange();
}

void X11OverlaySurface::setCursor(CursorShape shape) {
    if (std::exchange(m_cursor, shape) != shape) noteChange();
}

void X11OverlaySurface::orderFront() {
    m_needsApplying |= !std::exchange(m_isShown, true);
    m_raiseNumber = m_owner.nextRaiseNumber();
    m_owner.noteOrder();
}

void X11OverlaySurface::orderOut() {
    if (!std::exchange(m_isShown, false)) return;
    m_owner.endGestureOf(*this);
    m_owner.noteOrder();
}

void X11OverlaySurface::prepare(const DesktopSpace& space) {
    if (!m_needsApplying) return;
    const double scaleFactor = space.scaleFactorAt(wantedFrame());
    const QRect rect = space.toNative(wantedFrame());
    const bool isRescaled = std::exchange(m_scaleFactor, scaleFactor) != scaleFactor;
    m_needsPainting |= isRescaled || rect.size() != m_window->rect().size();

    // A hidden window is painted when it is shown.
    const bool isPaintedNow = m_needsPainting && m_isShown && m_content;
    const bool isMoved = rect != m_window->rect();
    if (isMoved || isPaintedNow) m_owner.noteBackdropChange(m_window->rect());
    if (isPaintedNow) paint(rect);
    m_window->setRect(rect);
    if (isMoved) m_owner.noteBackdropChange(rect);
    if (m_appliedCursor != m_cursor && m_isShown) {
        m_window->setCursor(m_owner.cursor(m_cursor));
        m_appliedCursor = m_cursor;
    }
}

void X11OverlaySurface::present() {
    m_window->present();
    if (!std::exchange(m_needsApplying, false)) return;
    m_window->setInputPassThrough(m_ignoresMouseEvents);
}

void X11OverlaySurface::reuse(RetiredWindows& retired, const DesktopSpace& space) {
    if (!m_isShown || !m_content || m_window->isMapped()) return;
    auto window = retired.take(space.toNative(wantedFrame()), *m_content, m_window->visual());
    if (!window) return;
    m_composed.reset();
    m_appliedCursor.reset();
    m_window = std::move(window);
    m_window->setMaskID(m_description.maskID);
    m_needsPainting = false;
}

void X11OverlaySurface::giveUpWindow(RetiredWindows& retired) {
    m_composed.reset();
    // What has not been painted yet is not what the window shows.
    retired.add(std::move(m_window), m_needsPainting ? nullptr : std::move(m_content));
}

bool X11OverlaySurface::isPlacedAnew() {
    const bool isElsewhere = std::exchange(m_toldRect, m_window->rect()) != m_window->rect();
    const bool isShownAnew = std::exchange(m_hasToldShown, m_isShown) != m_isShown;
    return isElsewhere || isShownAnew;
}

void X11OverlaySurface::paint(const QRect& rect) {
    m_needsPainting = false;
    const QSize size = rect.size();
    const Size points{size.width() / m_scaleFactor, size.height() / m_scaleFactor};
    const auto paintedPixels = m_content->paintedPixels(points, m_scaleFactor);
    if (m_window->hasBoundingAreas() && !paintedPixels) m_window->setBoundingAreas(std::nullopt);
    if (!paintedPixels && m_owner.composesPicture(isFrosted())) return paintToCompose(rect, points);

    m_composed.reset();
    QList<QRect> areas = paintedPixels.value_or(QList<QRect>{QRect(QPoint(0, 0), size)});
    QList<NativeOverlayWindow::Part> parts;
    for (QRect& area : areas) {
        area &= QRect(QPoint(0, 0), size);
        if (!area.isEmpty())
            parts.append({area.topLeft(), paintPart(area, points, m_owner.imageFormat())});
    }
    areas.removeIf([](const QRect& area) { return area.isEmpty(); });
    m_window->setPicture(size, parts);
    if (paintedPixels) m_window->setBoundingAreas(areas);
}

void X11OverlaySurface::paintToCompose(const QRect& rect, Size points) {
    if (!m_composed) m_composed = m_owner.makePicture(*m_window);
    ComposedPicture::Look look;
    look.ink =
        paintPart(QRect(QPoint(0, 0), rect.size()), points, QImage::Format_ARGB32_Premultiplied);
    look.hasGround = !m_owner.isCompositing();
    if (isFrosted()) {
        look.deviation = m_content->backdropBlur() * m_scaleFactor;
        look.glass = QImage(rect.size(), QImage::Format_Alpha8);
        look.glass.fill(0);
        QPainter painter(&look.glass);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.fillPath(m_content->blurredShape(points, m_scaleFactor), Qt::black);
    }
    m_composed->setLook(std::move(look), m_window->rect().topLeft() - rect.topLeft());
    // At once, since it may hide more than before. One that is to be mapped gets its picture then.
    if (m_window->isMapped()) m_owner.renewPicture(*m_composed);
}

QImage X11OverlaySurface::paintPart(const QRect& part, Size points, QImage::Format format) const {
    QImage image(part.size(), format);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(-part.topLeft());
    // Without the server's help nothing below is seen.
    if (isFrosted() && !m_composed)
        painter.fillPath(m_content->blurredShape(points, m_scaleFactor), Qt::black);
    painter.scale(m_scaleFactor, m_scaleFactor);
    m_content->paint(painter, points);
    painter.end();
    return image;
}

void X11OverlaySurface::followScreens(const QList<ScreenInfo>& oldScreens,
                                      const DesktopSpace& space) {
    m_needsApplying = true;
    m_description.frame = takeFrameAhead().value_or(m_description.frame);
    // Where the screen itself is gone, the window is still where it was in pixels.
    m_description.frame = rectFollowingItsScreen(m_description.frame, oldScreens, space.screens())
                              .value_or(space.toGlobal(m_window->rect()));
}

std::unique_ptr<NativeOverlayWindow> X11OverlaySurface::replaceWindow(
    std::unique_ptr<NativeOverlayWindow> window) {
    m_needsApplying = true;
    m_needsPainting = true;
    m_composed.reset();
    m_appliedCursor.reset();
    return std::exchange(m_window, std::move(window));
}
