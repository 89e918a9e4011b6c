#include "Platform/X11/Overlays/ComposedPicture.h"

#include "Drawing/FrostedImage.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <utility>

namespace {

/// The pixels of one line, around its middle, that nothing is seen through.
struct Run {
    int left = 0;
    int right = 0;
    bool isEmpty() const { return left >= right; }
};

Run opaqueRun(const QImage& image, int y) {
    const bool isAlpha = image.format() == QImage::Format_Alpha8;
    const uchar* const line = image.constScanLine(y);
    const auto isOpaque = [&](int x) {
        constexpr int opaque = 255;
        return (isAlpha ? line[x] : qAlpha(reinterpret_cast<const QRgb*>(line)[x])) == opaque;
    };
    const int middle = image.width() / 2;
    Run run{middle, middle};
    while (run.left > 0 && isOpaque(run.left - 1))
        --run.left;
    while (run.right < image.width() && isOpaque(run.right))
        ++run.right;
    return run;
}

/// An area in which nothing is seen through the image: nearly all of a panel with round corners,
/// as two rectangles that cross each other.
QRegion opaqueArea(const QImage& image) {
    if (image.isNull()) return {};
    const int middle = image.height() / 2;
    const Run widest = opaqueRun(image, middle);
    if (widest.isEmpty()) return {};
    const auto grow = [&](int step, Run& tall, int& wideEnd) {
        bool isWide = true;
        int y = middle;
        for (; y >= 0 && y < image.height(); y += step) {
            const Run run = opaqueRun(image, y);
            const Run common{std::max(tall.left, run.left), std::min(tall.right, run.right)};
            if (common.isEmpty()) break;
            tall = common;
            isWide = isWide && run.left <= widest.left && run.right >= widest.right;
            if (isWide) wideEnd = y;
        }
        return y - step;
    };
    Run tall = widest;
    int wideTop = middle;
    int wideBottom = middle;
    const int top = grow(-1, tall, wideTop);
    const int bottom = grow(1, tall, wideBottom);
    return QRegion(QRect(QPoint(widest.left, wideTop), QPoint(widest.right - 1, wideBottom))) +
           QRect(QPoint(tall.left, top), QPoint(tall.right - 1, bottom));
}

QRegion grown(const QRegion& region, int by) {
    QRegion result;
    for (const QRect& rect : region)
        result += rect.adjusted(-by, -by, by, by);
    return result;
}

}  // namespace

ComposedPicture::ComposedPicture(RenderKit& kit, ScratchPictures& scratch,
                                 NativeOverlayWindow& window)
    : m_kit(kit), m_scratch(scratch), m_window(window) {}

void ComposedPicture::setLook(Look look, QPoint move) {
    const QSize previousSize = m_look.ink.size();
    const bool isSameGlass = m_look.glass == look.glass && m_look.deviation == look.deviation;
    m_look = std::move(look);
    m_seeThrough = QRegion(wholeRect()) - opaqueArea(m_look.ink);
    m_sharp = m_look.hasGround ? m_seeThrough - opaqueArea(m_look.glass) : QRegion();

    if (!m_ink || previousSize != m_look.ink.size())
        m_ink = std::make_unique<ServerPicture>(m_kit, m_look.ink.size(), RenderKit::argbDepth,
                                                m_kit.argbFormat());
    m_ink->put(m_look.ink, {0, 0});
    if (isSameGlass) return;
    ++m_captureNumber;
    m_glass.reset();
    if (!needsCapture()) return forgetGlass();
    m_glass = std::make_unique<ServerPicture>(m_kit, m_look.glass.size(), RenderKit::alphaDepth,
                                              m_kit.alphaFormat());
    m_glass->put(m_look.glass, {0, 0});
    if (m_below.isNull()) return;
    // What is not known yet goes on in the colours of what is.
    const QImage known = std::exchange(m_below, QImage(smallSize(), QImage::Format_RGB32));
    const QPoint shift = move / frostShrinkage;
    for (int y = 0; y < m_below.height(); ++y) {
        const auto* const from = reinterpret_cast<const QRgb*>(
            known.constScanLine(std::clamp(y - shift.y(), 0, known.height() - 1)));
        auto* const to = reinterpret_cast<QRgb*>(m_below.scanLine(y));
        for (int x = 0; x < m_below.width(); ++x)
            to[x] = from[std::clamp(x - shift.x(), 0, known.width() - 1)];
    }
    m_blurred.reset();
    blur(wholeRect());
}

void ComposedPicture::renew(const DrawGround& ground) {
    const xcb_pixmap_t pixmap = xcb_generate_id(m_kit.connection());
    const QSize size = m_look.ink.size();
    xcb_create_pixmap(m_kit.connection(), m_window.visual().depth(), pixmap, m_window.id(),
                      serverLength(size.width()), serverLength(size.height()));
    composeInto(pixmap, wholeRect(), ground);
    m_window.setPicture(pixmap);
    uncaptured = {};
    uncomposed = {};
}

void ComposedPicture::forgetGlass() {
    ++m_captureNumber;
    m_below = {};
    m_blurred.reset();
}

QSize ComposedPicture::smallSize() const {
    return (m_look.ink.size() / frostShrinkage).expandedTo({1, 1});
}

QRect ComposedPicture::smallPart(const QRect& part) const {
    const auto up = [](int value) { return (value + frostShrinkage - 1) / frostShrinkage; };
    const QPoint start(part.left() / frostShrinkage, part.top() / frostShrinkage);
    const QPoint end(up(part.right() + 1), up(part.bottom() + 1));
    return QRect(start, QSize(end.x() - start.x(), end.y() - start.y())) &
           QRect(QPoint(0, 0), smallSize());
}

QRegion ComposedPicture::spread(const QRegion& area) const {
    if (!needsCapture()) return area & m_seeThrough;
    // One pixel more for those between which it is made larger again.
    return grown(area, frostShrinkage * (frostReach(m_look.deviation) + 2)) & m_seeThrough;
}

void ComposedPicture::capture(const QRegion& area, const DrawGround& ground,
                              const std::function<void()>& done) {
    XcbConnection& connection = m_kit.connection();
    const auto awaited = std::make_shared<int>(area.rectCount());
    for (const QRect& rect : area) {
        const QRect part = smallPart(rect);
        if (part.isEmpty()) {
            if (--*awaited == 0) done();
            continue;
        }
        const QPoint origin = part.topLeft() * frostShrinkage;
        const QSize size = part.size() * frostShrinkage;
        const xcb_screen_t& screen = connection.screen();
        ServerPicture& whole =
            m_scratch.take(ScratchPictures::Purpose::ground, size, screen.root_depth,
                           m_kit.formatOf(screen.root_visual));
        ground(whole, origin, QRect(origin, size));
        // Twice by half is the exact mean, which one step of a bilinear filter is not.
        ServerPicture& half = m_scratch.take(ScratchPictures::Purpose::half, size / 2,
                                             RenderKit::argbDepth, m_kit.argbFormat());
        ServerPicture& quarter = m_scratch.take(ScratchPictures::Purpose::quarter, part.size(),
                                                RenderKit::argbDepth, m_kit.argbFormat());
        const auto shrink = [&](ServerPicture& from, ServerPicture& to, QSize target) {
            xcb_render_composite(connection, XCB_RENDER_PICT_OP_SRC, from.scaled(2), XCB_NONE,
                                 to.picture(), 0, 0, 0, 0, 0, 0, serverLength(target.width()),
                                 serverLength(target.height()));
        };
        shrink(whole, half, size / 2);
        shrink(half, quarter, part.size());
        const auto cookie =
            xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, quarter.pixmap(), 0, 0,
                          serverLength(part.width()), serverLength(part.height()), ~0U);
        // Told even when the picture is gone, for then there is something else to do.
        connection.whenReplied<xcb_get_image_reply_t>(
            cookie, [take = m_lifetime.guard([this, part, number = m_captureNumber](
                                                 const xcb_get_image_reply_t* reply) {
                takeCaptured(reply, part, number);
            }),
                     awaited, done](const XcbReply<xcb_get_image_reply_t>& reply) {
                take(reply.get());
                if (--*awaited == 0) done();
            });
    }
}

void ComposedPicture::takeCaptured(const xcb_get_image_reply_t* reply, const QRect& part,
                                   int number) {
    const qsizetype bytesPerLine = qsizetype{4} * part.width();
    if (!reply || xcb_get_image_data_length(reply) < bytesPerLine * part.height()) return;
    if (number != m_captureNumber) {
        uncaptured += QRect(part.topLeft() * frostShrinkage, part.size() * frostShrinkage);
        return;
    }
    if (m_below.isNull()) {
        m_below = QImage(smallSize(), QImage::Format_RGB32);
        m_below.fill(Qt::black);
    }
    const uint8_t* const pixels = xcb_get_image_data(reply);
    for (int y = 0; y < part.height(); ++y)
        std::memcpy(m_below.scanLine(part.y() + y) + qsizetype{4} * part.x(),
                    pixels + bytesPerLine * y, static_cast<std::size_t>(bytesPerLine));
}

void ComposedPicture::blur(const QRegion& area) {
    if (m_below.isNull()) return;
    const bool isNew = !m_blurred;
    if (isNew)
        m_blurred = std::make_unique<ServerPicture>(m_kit, smallSize(), RenderKit::argbDepth,
                                                    m_kit.argbFormat());
    const QRegion parts = isNew ? QRegion(wholeRect()) : area;
    for (const QRect& rect : parts) {
        // One pixel more for those between which it is made larger again.
        const QRect part = smallPart(rect).adjusted(-1, -1, 1, 1) & m_below.rect();
        if (!part.isEmpty())
            m_blurred->put(frosted(m_below, part, m_look.deviation), part.topLeft());
    }
}

xcb_render_pictformat_t ComposedPicture::windowFormat() const {
    return m_kit.formatOf(m_window.visual().visual());
}

void ComposedPicture::compose(const QRegion& area, const DrawGround& ground) {
    const QRegion inside = area & wholeRect();
    if (inside.isEmpty() || m_window.picture() == XCB_NONE) return;
    // The parts of a rim are far from each other; what lies between them need not be worked on.
    const QRect bounds = inside.boundingRect();
    if (pixelsOf(bounds) > 2 * pixelsOf(inside))
        for (const QRect& part : inside)
            composeInto(m_window.picture(), part, ground);
    else
        composeInto(m_window.picture(), inside, ground);
    m_window.showPictureAgain(inside);
}

void ComposedPicture::composeInto(xcb_pixmap_t pixmap, const QRegion& area,
                                  const DrawGround& ground) {
    XcbConnection& connection = m_kit.connection();
    const QRect bounds = area.boundingRect();
    const QPoint origin = bounds.topLeft();
    const uint8_t depth = m_window.visual().depth();
    ServerPicture& result =
        m_scratch.take(ScratchPictures::Purpose::result, bounds.size(), depth, windowFormat());
    const QRegion groundless = ground ? area - m_sharp : area;
    if (!groundless.isEmpty())
        result.fill(m_look.hasGround ? Qt::black : Qt::transparent, groundless.translated(-origin));
    if (const QRegion sharp = area & m_sharp; ground && !sharp.isEmpty())
        ground(result, origin, sharp);
    result.setClip(area.translated(-origin));
    if (needsCapture()) drawGlass(result, bounds);
    xcb_render_composite(connection, XCB_RENDER_PICT_OP_OVER, m_ink->picture(), XCB_NONE,
                         result.picture(), serverPosition(origin.x()), serverPosition(origin.y()),
                         0, 0, 0, 0, serverLength(bounds.width()), serverLength(bounds.height()));
    result.setClip(QRect(QPoint(0, 0), result.size()));
    for (const QRect& rect : area)
        xcb_copy_area(connection, result.pixmap(), pixmap, m_kit.contextOf(depth),
                      serverPosition(rect.x() - origin.x()), serverPosition(rect.y() - origin.y()),
                      serverPosition(rect.x()), serverPosition(rect.y()),
                      serverLength(rect.width()), serverLength(rect.height()));
}

void ComposedPicture::drawGlass(ServerPicture& target, const QRect& bounds) {
    const xcb_render_picture_t source =
        m_blurred ? m_blurred->scaled(1.0 / frostShrinkage) : m_kit.black();
    xcb_render_composite(m_kit.connection(), XCB_RENDER_PICT_OP_OVER, source, m_glass->picture(),
                         target.picture(), serverPosition(bounds.x()), serverPosition(bounds.y()),
                         serverPosition(bounds.x()), serverPosition(bounds.y()), 0, 0,
                         serverLength(bounds.width()), serverLength(bounds.height()));
}

void ComposedPicture::blacken(const QRegion& area, const DrawGround& ground) {
    ++m_captureNumber;
    if (m_blurred) {
        // All that it has spread to, too.
        const int reach = frostReach(m_look.deviation);
        for (const QRect& rect : area) {
            const QRect part = smallPart(rect);
            for (int y = part.top(); y <= part.bottom(); ++y)
                std::fill_n(reinterpret_cast<QRgb*>(m_below.scanLine(y)) + part.left(),
                            part.width(), qRgb(0, 0, 0));
            m_blurred->fill(Qt::black,
                            QRegion(part.adjusted(-reach, -reach, reach, reach)) & m_below.rect());
        }
    }
    compose(spread(area), ground);
}
