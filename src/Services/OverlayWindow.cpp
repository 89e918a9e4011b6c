#include "Services/OverlayWindow.h"

#include "Services/ScreenPlacement.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

class MaskContent final : public SurfaceContent {
public:
    explicit MaskContent(OverlayMaskView view) : m_view(std::move(view)) {}
    void paint(QPainter& painter, Size size) const override { m_view.paint(painter, size); }
    bool looksLike(const SurfaceContent& other) const override {
        const auto* const mask = dynamic_cast<const MaskContent*>(&other);
        return mask && m_view.paintsLike(mask->m_view);
    }
    double backdropBlur() const override { return m_view.backdropBlur(); }
    QPainterPath blurredShape(Size size, double scale) const override {
        return m_view.blurredShape(size, scale);
    }

private:
    OverlayMaskView m_view;
};

// One axis of a snap: where the frame starts, and the line it snapped to.
struct SnappedAxis {
    double start = 0;
    std::optional<double> guide;
};

SnappedAxis snapAxis(double start, double length, double screenStart, double screenLength) {
    const double screenEnd = screenStart + screenLength;
    const double screenMiddle = screenStart + screenLength / 2;
    const auto isNear = [](double a, double b) {
        return std::abs(a - b) <= OverlayWindow::snapThreshold;
    };
    if (isNear(start, screenStart)) return {screenStart, screenStart};
    if (isNear(start + length, screenEnd)) return {screenEnd - length, screenEnd};
    if (isNear(start + length / 2, screenMiddle)) return {screenMiddle - length / 2, screenMiddle};
    return {start, std::nullopt};
}

bool isOneOf(ResizeRegion region, std::initializer_list<ResizeRegion> regions) {
    return std::find(regions.begin(), regions.end(), region) != regions.end();
}

CursorShape cursorFor(std::optional<ResizeRegion> region) {
    using enum ResizeRegion;
    if (!region) return CursorShape::openHand;
    if (isOneOf(*region, {top, bottom})) return CursorShape::resizeUpDown;
    if (isOneOf(*region, {left, right})) return CursorShape::resizeLeftRight;
    return CursorShape::crosshair;
}

}  // namespace

OverlayWindow::OverlayWindow(const QUuid& maskID, const MaskFrame& frame, OverlaySurfaces& surfaces,
                             const Screens& screens, OverlayWindowDelegate& delegate)
    : m_maskID(maskID),
      m_surfaces(surfaces),
      m_screens(screens),
      m_delegate(delegate),
      m_surface(
          surfaces.createSurface({QStringLiteral("Veyla overlay mask"), maskID, frame}, this)) {}

Rect OverlayWindow::frame() const {
    return m_surface->frame();
}

void OverlayWindow::setFrame(const Rect& frame) {
    m_surface->setFrame(frame);
}

void OverlayWindow::setContentView(const OverlayMaskView& view) {
    if (m_contentView == view) return;
    const bool needsPainting = !m_contentView || !view.paintsLike(*m_contentView);
    const bool needsDescription = !m_contentView || !view.isDescribedLike(*m_contentView);
    m_contentView = view;
    if (needsPainting) m_surface->setContent(std::make_shared<MaskContent>(view));
    if (needsDescription) m_surface->setAccessibleDescription(view.accessibleDescription());
}

void OverlayWindow::setIgnoresMouseEvents(bool ignores) {
    m_surface->setIgnoresMouseEvents(ignores);
}

void OverlayWindow::orderFront() {
    m_isVisible = true;
    m_surface->orderFront();
}

void OverlayWindow::orderOut() {
    m_isVisible = false;
    m_surface->orderOut();
}

std::optional<ResizeRegion> OverlayWindow::resizeRegion(Point inWindow) const {
    const auto [x, y] = inWindow;
    const auto [width, height] = frame().size();

    const bool isNearLeft = x <= resizeHandleSize;
    const bool isNearSide = isNearLeft || x >= width - resizeHandleSize;
    if (isNearSide && y >= height - resizeHandleSize)
        return isNearLeft ? ResizeRegion::topLeft : ResizeRegion::topRight;
    if (isNearSide && y <= resizeHandleSize)
        return isNearLeft ? ResizeRegion::bottomLeft : ResizeRegion::bottomRight;
    if (x <= resizeEdgeInset) return ResizeRegion::left;
    if (x >= width - resizeEdgeInset) return ResizeRegion::right;
    if (y <= resizeEdgeInset) return ResizeRegion::bottom;
    if (y >= height - resizeEdgeInset) return ResizeRegion::top;
    return std::nullopt;
}

SnappedFrame OverlayWindow::snappedFrame(const Rect& proposed) const {
    return snappedFrame(proposed, visibleFrames(m_screens));
}

SnappedFrame OverlayWindow::snappedFrame(const Rect& proposed, const QList<Rect>& screens) {
    const Rect visible = bestScreenFrame(proposed, screens).value_or(proposed);
    const SnappedAxis x = snapAxis(proposed.x, proposed.width, visible.x, visible.width);
    const SnappedAxis y = snapAxis(proposed.y, proposed.height, visible.y, visible.height);

    SnappedFrame snapped{{x.start, y.start, proposed.width, proposed.height}, {}};
    if (x.guide) snapped.guides.append(GuideLine::vertical(*x.guide));
    if (y.guide) snapped.guides.append(GuideLine::horizontal(*y.guide));
    return snapped;
}

Rect OverlayWindow::screenVisibleFrame(const Rect& frame) const {
    return bestScreenFrame(frame, visibleFrames(m_screens)).value_or(frame);
}

void OverlayWindow::restartGesture() {
    if (auto* move = std::get_if<Move>(&m_gesture)) {
        move->startFrame = frame();
        move->startPointer = m_screens.pointerLocation();
    } else if (auto* resize = std::get_if<Resize>(&m_gesture)) {
        resize->startFrame = frame();
        resize->startPointer = m_screens.pointerLocation();
    }
}

void OverlayWindow::surfaceDidMove() {
    m_delegate.windowDidMove(*this);
    // The sync that followed has ordered all masks to the front.
    if (const auto* move = std::get_if<Move>(&m_gesture)) move->guideWindow->bringToFront();
}

void OverlayWindow::surfaceDidResize() {
    m_delegate.windowDidResize(*this);
}

void OverlayWindow::mouseDown(Point inSurface, Point global) {
    if (onMaskSelected) onMaskSelected();

    if (const auto region = resizeRegion(inSurface))
        m_gesture = Resize{frame(), global, *region};
    else
        m_gesture = Move{frame(), global, std::make_unique<GuideOverlayWindow>(m_surfaces)};
}

void OverlayWindow::mouseDragged(Point global) {
    if (auto* move = std::get_if<Move>(&m_gesture))
        performMove(*move, global);
    else if (const auto* resize = std::get_if<Resize>(&m_gesture))
        performResize(*resize, global);
}

void OverlayWindow::mouseUp() {
    m_gesture = std::monostate{};
}

void OverlayWindow::mouseMoved(Point inSurface) {
    updateCursor(inSurface);
}

void OverlayWindow::mouseExited() {
    m_surface->setCursor(CursorShape::arrow);
}

void OverlayWindow::performMove(Move& move, Point pointer) {
    const Rect& start = move.startFrame;
    const QList<Rect> screens = visibleFrames(m_screens);
    const SnappedFrame snapped =
        snappedFrame({start.x + pointer.x - move.startPointer.x,
                      start.y + pointer.y - move.startPointer.y, start.width, start.height},
                     screens);
    // A frame that is told is brought into its screen. One that is already there stays.
    if (resolvedFrame(snapped.frame, screens) == snapped.frame)
        m_surface->setFinalFrame(snapped.frame);
    else
        m_surface->setFrame(snapped.frame);
    move.guideWindow->show(snapped.guides,
                           bestScreenFrame(snapped.frame, screens).value_or(snapped.frame));
}

void OverlayWindow::performResize(const Resize& resize, Point pointer) {
    using enum ResizeRegion;
    const ResizeRegion region = resize.region;
    const double dx = pointer.x - resize.startPointer.x;
    const double dy = pointer.y - resize.startPointer.y;
    const Rect& start = resize.startFrame;
    double minX = start.minX();
    double minY = start.minY();
    double maxX = start.maxX();
    double maxY = start.maxY();

    if (isOneOf(region, {left, topLeft, bottomLeft}))
        minX = std::min(start.minX() + dx, start.maxX() - minimumMaskSize.width);
    if (isOneOf(region, {right, topRight, bottomRight}))
        maxX = std::max(start.minX() + minimumMaskSize.width, start.maxX() + dx);
    if (isOneOf(region, {bottom, bottomLeft, bottomRight}))
        minY = std::min(start.minY() + dy, start.maxY() - minimumMaskSize.height);
    if (isOneOf(region, {top, topLeft, topRight}))
        maxY = std::max(start.minY() + minimumMaskSize.height, start.maxY() + dy);

    setFrame({minX, minY, maxX - minX, maxY - minY});
}

void OverlayWindow::updateCursor(Point inWindow) {
    m_surface->setCursor(cursorFor(resizeRegion(inWindow)));
}
