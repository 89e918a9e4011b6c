#include "Platform/X11/Overlays/RenderKit.h"

#include <algorithm>
#include <numeric>
#include <string_view>
#include <utility>

namespace {

// With it came the scaling of pictures and what lies beyond their edges, in versions 0.6 and 0.10.
constexpr uint32_t neededMinorVersion = 10;

xcb_render_fixed_t toFixed(double value) {
    return static_cast<xcb_render_fixed_t>(value * 65536);
}

xcb_render_color_t premultiplied(const QColor& color) {
    const auto channel = [&](double part) {
        return static_cast<uint16_t>(part * color.alphaF() * 0xffff);
    };
    return {channel(color.redF()), channel(color.greenF()), channel(color.blueF()), channel(1)};
}

}  // namespace

int16_t serverPosition(int value) {
    return static_cast<int16_t>(std::clamp(value, -32768, 32767));
}

uint16_t serverLength(int value) {
    return static_cast<uint16_t>(std::clamp(value, 1, 65535));
}

int pixelsOf(const QRegion& region) {
    return std::accumulate(region.begin(), region.end(), 0, [](int sum, const QRect& rect) {
        return sum + rect.width() * rect.height();
    });
}

std::vector<xcb_rectangle_t> serverRectangles(const QRegion& region, QPoint offset) {
    std::vector<xcb_rectangle_t> rectangles;
    rectangles.reserve(static_cast<std::size_t>(region.rectCount()));
    for (const QRect& rect : region)
        rectangles.push_back({serverPosition(rect.x() + offset.x()),
                              serverPosition(rect.y() + offset.y()), serverLength(rect.width()),
                              serverLength(rect.height())});
    return rectangles;
}

void putImage(XcbConnection& connection, xcb_drawable_t drawable, xcb_gcontext_t context,
              uint8_t depth, const QImage& image, QPoint position) {
    constexpr qsizetype requestHeader = 64;
    const qsizetype longestRequest =
        static_cast<qsizetype>(xcb_get_maximum_request_length(connection)) * 4 - requestHeader;
    const qsizetype bytesPerLine = image.bytesPerLine();
    const int rowsPerRequest =
        static_cast<int>(std::max<qsizetype>(longestRequest / bytesPerLine, 1));
    for (int row = 0; row < image.height(); row += rowsPerRequest) {
        const int rows = std::min(rowsPerRequest, image.height() - row);
        xcb_put_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, drawable, context,
                      serverLength(image.width()), serverLength(rows), serverPosition(position.x()),
                      serverPosition(position.y() + row), 0, depth,
                      static_cast<uint32_t>(bytesPerLine * rows), image.constScanLine(row));
    }
}

RenderKit::RenderKit(XcbConnection& connection) : m_connection(connection) {
    if (!connection.hasExtension(xcb_render_id)) return;
    const auto versionCookie = xcb_render_query_version(connection, 0, neededMinorVersion);
    const auto formatsCookie = xcb_render_query_pict_formats(connection);
    const auto version = xcbReply(xcb_render_query_version_reply, connection.get(), versionCookie);
    const auto formats =
        xcbReply(xcb_render_query_pict_formats_reply, connection.get(), formatsCookie);
    if (!version || !formats) return;
    readFormats(*formats);
    m_isAvailable = (version->major_version > 0 || version->minor_version >= neededMinorVersion) &&
                    m_alphaFormat != XCB_NONE && m_argbFormat != XCB_NONE &&
                    formatOf(connection.screen().root_visual) != XCB_NONE;
}

RenderKit::~RenderKit() {
    for (const auto& [depth, context] : m_contexts)
        xcb_free_gc(m_connection, context);
    if (m_black != XCB_NONE) xcb_render_free_picture(m_connection, m_black);
}

void RenderKit::readFormats(const xcb_render_query_pict_formats_reply_t& formats) {
    for (auto format = xcb_render_query_pict_formats_formats_iterator(&formats); format.rem > 0;
         xcb_render_pictforminfo_next(&format)) {
        const xcb_render_directformat_t& direct = format.data->direct;
        if (format.data->type != XCB_RENDER_PICT_TYPE_DIRECT) continue;
        // Pixels like those of QImage::Format_Alpha8 and Format_ARGB32_Premultiplied.
        const bool isAlpha = direct.alpha_mask == 0xff;
        if (format.data->depth == alphaDepth && isAlpha && direct.red_mask == 0)
            m_alphaFormat = format.data->id;
        if (format.data->depth == argbDepth && isAlpha && direct.alpha_shift == 24 &&
            direct.red_shift == 16 && direct.green_shift == 8 && direct.blue_shift == 0)
            m_argbFormat = format.data->id;
    }
    for (auto screen = xcb_render_query_pict_formats_screens_iterator(&formats); screen.rem > 0;
         xcb_render_pictscreen_next(&screen))
        for (auto depth = xcb_render_pictscreen_depths_iterator(screen.data); depth.rem > 0;
             xcb_render_pictdepth_next(&depth))
            for (auto visual = xcb_render_pictdepth_visuals_iterator(depth.data); visual.rem > 0;
                 xcb_render_pictvisual_next(&visual))
                m_formats.emplace(visual.data->visual, visual.data->format);
}

xcb_render_pictformat_t RenderKit::formatOf(xcb_visualid_t visual) const {
    const auto found = m_formats.find(visual);
    return found == m_formats.end() ? xcb_render_pictformat_t{XCB_NONE} : found->second;
}

xcb_gcontext_t RenderKit::contextOf(uint8_t depth) {
    xcb_gcontext_t& context = m_contexts[depth];
    if (context != XCB_NONE) return context;
    const xcb_pixmap_t pixmap = xcb_generate_id(m_connection);
    xcb_create_pixmap(m_connection, depth, pixmap, m_connection.root(), 1, 1);
    context = xcb_generate_id(m_connection);
    const uint32_t noExposures = 0;
    xcb_create_gc(m_connection, context, pixmap, XCB_GC_GRAPHICS_EXPOSURES, &noExposures);
    xcb_free_pixmap(m_connection, pixmap);
    return context;
}

xcb_render_picture_t RenderKit::black() {
    if (m_black != XCB_NONE) return m_black;
    m_black = xcb_generate_id(m_connection);
    xcb_render_create_solid_fill(m_connection, m_black, premultiplied(Qt::black));
    return m_black;
}

ServerPicture::ServerPicture(RenderKit& kit, QSize size, uint8_t depth,
                             xcb_render_pictformat_t format)
    : m_kit(kit),
      m_size(size),
      m_depth(depth),
      m_format(format),
      m_pixmap(xcb_generate_id(kit.connection())),
      m_picture(xcb_generate_id(kit.connection())) {
    xcb_create_pixmap(kit.connection(), depth, m_pixmap, kit.connection().root(),
                      serverLength(size.width()), serverLength(size.height()));
    xcb_render_create_picture(kit.connection(), m_picture, m_pixmap, format, 0, nullptr);
}

ServerPicture::~ServerPicture() {
    if (m_scaled != XCB_NONE) xcb_render_free_picture(m_kit.connection(), m_scaled);
    xcb_render_free_picture(m_kit.connection(), m_picture);
    xcb_free_pixmap(m_kit.connection(), m_pixmap);
}

xcb_render_picture_t ServerPicture::scaled(double factor) {
    if (m_scaled == XCB_NONE) {
        m_scaled = xcb_generate_id(m_kit.connection());
        const uint32_t beyond = XCB_RENDER_REPEAT_PAD;
        xcb_render_create_picture(m_kit.connection(), m_scaled, m_pixmap, m_format,
                                  XCB_RENDER_CP_REPEAT, &beyond);
        constexpr std::string_view filter = "bilinear";
        xcb_render_set_picture_filter(m_kit.connection(), m_scaled,
                                      static_cast<uint16_t>(filter.size()), filter.data(), 0,
                                      nullptr);
        const xcb_render_fixed_t scale = toFixed(factor);
        xcb_render_set_picture_transform(m_kit.connection(), m_scaled,
                                         {scale, 0, 0, 0, scale, 0, 0, 0, toFixed(1)});
    }
    return m_scaled;
}

void ServerPicture::put(const QImage& image, QPoint position) {
    putImage(m_kit.connection(), m_pixmap, m_kit.contextOf(m_depth), m_depth, image, position);
}

void ServerPicture::fill(const QColor& color, const QRegion& region) {
    const auto rectangles = serverRectangles(region);
    xcb_render_fill_rectangles(m_kit.connection(), XCB_RENDER_PICT_OP_SRC, m_picture,
                               premultiplied(color), static_cast<uint32_t>(rectangles.size()),
                               rectangles.data());
}

void ServerPicture::setClip(const QRegion& region) {
    const auto rectangles = serverRectangles(region);
    xcb_render_set_picture_clip_rectangles(m_kit.connection(), m_picture, 0, 0,
                                           static_cast<uint32_t>(rectangles.size()),
                                           rectangles.data());
}

ServerPicture& ScratchPictures::take(Purpose purpose, QSize size, uint8_t depth,
                                     xcb_render_pictformat_t format) {
    Entry& entry = m_pictures[purpose];
    const bool isLargeEnough = entry.picture && entry.picture->size().width() >= size.width() &&
                               entry.picture->size().height() >= size.height();
    if (!isLargeEnough || entry.format != format) {
        const QSize known = entry.picture ? entry.picture->size() : QSize(0, 0);
        entry.picture =
            std::make_unique<ServerPicture>(m_kit, size.expandedTo(known), depth, format);
        entry.format = format;
    }
    return *entry.picture;
}

void ScratchPictures::trim(int mostPixels) {
    std::erase_if(m_pictures, [&](const auto& each) {
        const QSize size = each.second.picture->size();
        return size.width() * size.height() > mostPixels;
    });
}
