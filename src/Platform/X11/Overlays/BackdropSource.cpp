#include "Platform/X11/Overlays/BackdropSource.h"

#include <algorithm>
#include <utility>
#include <xcb/composite.h>
#include <xcb/xfixes.h>

namespace {

int16_t toInt16(int value) {
    return static_cast<int16_t>(std::clamp(value, -32768, 32767));
}
uint16_t toUint16(int value) {
    return static_cast<uint16_t>(std::clamp(value, 1, 65535));
}

// A picture of a drawable, freed with this object.
class Picture {
public:
    Picture(XcbConnection& connection, xcb_drawable_t drawable, xcb_render_pictformat_t format,
            uint32_t mask = 0, const uint32_t* values = nullptr)
        : m_connection(connection), m_id(xcb_generate_id(connection)) {
        xcb_render_create_picture(connection, m_id, drawable, format, mask, values);
    }
    ~Picture() { xcb_render_free_picture(m_connection, m_id); }
    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;
    xcb_render_picture_t id() const { return m_id; }

private:
    XcbConnection& m_connection;
    xcb_render_picture_t m_id;
};

}  // namespace

BackdropSource::BackdropSource(XcbConnection& connection) : m_connection(connection) {
    m_isAvailable =
        connection.hasExtension(xcb_composite_id) && connection.hasExtension(xcb_damage_id) &&
        connection.hasExtension(xcb_render_id) && connection.hasExtension(xcb_xfixes_id);
    if (!m_isAvailable) return;
    const auto compositeCookie = xcb_composite_query_version(connection, 0, 4);
    const auto damageCookie = xcb_damage_query_version(connection, 1, 1);
    const auto formatsCookie = xcb_render_query_pict_formats(connection);
    const auto composite =
        xcbReply(xcb_composite_query_version_reply, connection.get(), compositeCookie);
    const auto damage = xcbReply(xcb_damage_query_version_reply, connection.get(), damageCookie);
    const auto formats =
        xcbReply(xcb_render_query_pict_formats_reply, connection.get(), formatsCookie);
    // Naming the pixmap of a window came with version 0.2.
    m_isAvailable = composite && damage && formats &&
                    (composite->major_version > 0 || composite->minor_version >= 2);
    if (!m_isAvailable) return;
    m_damageEvent = static_cast<uint8_t>(
        xcb_get_extension_data(connection, &xcb_damage_id)->first_event + XCB_DAMAGE_NOTIFY);
    for (auto screen = xcb_render_query_pict_formats_screens_iterator(formats.get());
         screen.rem > 0; xcb_render_pictscreen_next(&screen))
        for (auto depth = xcb_render_pictscreen_depths_iterator(screen.data); depth.rem > 0;
             xcb_render_pictdepth_next(&depth))
            for (auto visual = xcb_render_pictdepth_visuals_iterator(depth.data); visual.rem > 0;
                 xcb_render_pictvisual_next(&visual))
                m_formats.emplace(visual.data->visual, visual.data->format);
}

BackdropSource::~BackdropSource() {
    setActive(false);
}

void BackdropSource::setActive(bool isActive) {
    const bool shouldBeActive = isActive && m_isAvailable;
    if (std::exchange(m_isActive, shouldBeActive) == shouldBeActive) return;
    if (m_isActive) {
        m_connection.selectRootEvents(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY |
                                      XCB_EVENT_MASK_PROPERTY_CHANGE);
        m_events =
            m_connection.onEvent([this](const xcb_generic_event_t& event) { handleEvent(event); });
        xcb_composite_redirect_subwindows(m_connection, m_connection.root(),
                                          XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    } else {
        m_events.reset();
        for (const auto& [window, watched] : m_watched)
            xcb_damage_destroy(m_connection, watched.damage);
        m_watched.clear();
        xcb_composite_unredirect_subwindows(m_connection, m_connection.root(),
                                            XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    }
}

void BackdropSource::leaveOut(xcb_window_t ownWindow) {
    if (!m_isActive) return;
    xcb_composite_unredirect_window(m_connection, ownWindow, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
}

void BackdropSource::handleEvent(const xcb_generic_event_t& event) {
    const uint8_t type = event.response_type & 0x7f;
    if (type == m_damageEvent) {
        const auto& damage = reinterpret_cast<const xcb_damage_notify_event_t&>(event);
        const auto watched = m_watched.find(damage.drawable);
        if (watched == m_watched.end()) return;
        watched->second.isDamaged = true;
        tell(watched->second.rect);
    } else {
        handleTopLevelEvent(event);
    }
}

void BackdropSource::handleTopLevelEvent(const xcb_generic_event_t& event) {
    const auto changed = [&](xcb_window_t window) {
        const auto watched = m_watched.find(window);
        if (watched != m_watched.end()) tell(watched->second.rect);
        return watched;
    };
    switch (event.response_type & 0x7f) {
        case XCB_CONFIGURE_NOTIFY: {
            const auto& configure = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
            if (configure.event != m_connection.root() || m_connection.owns(configure.window))
                return;
            const int border = 2 * configure.border_width;
            const QRect rect(configure.x, configure.y, configure.width + border,
                             configure.height + border);
            const auto watched = changed(configure.window);
            if (watched != m_watched.end()) watched->second.rect = rect;
            tell(rect);
            break;
        }
        case XCB_MAP_NOTIFY: {
            const auto& map = reinterpret_cast<const xcb_map_notify_event_t&>(event);
            if (map.event != m_connection.root() || m_connection.owns(map.window)) return;
            const auto geometry = xcbReply(xcb_get_geometry_reply, m_connection.get(),
                                           xcb_get_geometry(m_connection, map.window));
            if (geometry) tell(QRect(geometry->x, geometry->y, geometry->width, geometry->height));
            break;
        }
        case XCB_REPARENT_NOTIFY: {
            // A window that a manager put into a frame is a top-level window no more.
            const auto& reparent = reinterpret_cast<const xcb_reparent_notify_event_t&>(event);
            const auto watched = changed(reparent.window);
            if (watched == m_watched.end() || reparent.parent == m_connection.root()) return;
            xcb_damage_destroy(m_connection, watched->second.damage);
            m_watched.erase(watched);
            break;
        }
        case XCB_PROPERTY_NOTIFY: {
            const auto& property = reinterpret_cast<const xcb_property_notify_event_t&>(event);
            const xcb_screen_t& screen = m_connection.screen();
            if (property.window == m_connection.root() &&
                property.atom == m_connection.atoms().rootPixmap)
                tell(QRect(0, 0, screen.width_in_pixels, screen.height_in_pixels));
            break;
        }
        case XCB_UNMAP_NOTIFY:
            changed(reinterpret_cast<const xcb_unmap_notify_event_t&>(event).window);
            break;
        case XCB_DESTROY_NOTIFY:
            // The damage object goes with its window.
            changed(reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window);
            m_watched.erase(reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window);
            break;
        default:
            break;
    }
}

void BackdropSource::tell(const QRect& rect) const {
    if (onChanged) onChanged(rect);
}

std::vector<BackdropSource::Layer> BackdropSource::readLayers() {
    std::vector<Layer> layers;
    const auto tree = xcbReply(xcb_query_tree_reply, m_connection.get(),
                               xcb_query_tree(m_connection, m_connection.root()));
    if (!tree) return layers;
    const xcb_window_t* const children = xcb_query_tree_children(tree.get());
    const auto count = static_cast<std::size_t>(xcb_query_tree_children_length(tree.get()));
    std::vector<std::pair<xcb_get_window_attributes_cookie_t, xcb_get_geometry_cookie_t>> cookies;
    cookies.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
        cookies.emplace_back(xcb_get_window_attributes(m_connection, children[i]),
                             xcb_get_geometry(m_connection, children[i]));
    for (std::size_t i = 0; i < count; ++i) {
        const auto attributes =
            xcbReply(xcb_get_window_attributes_reply, m_connection.get(), cookies[i].first);
        const auto geometry =
            xcbReply(xcb_get_geometry_reply, m_connection.get(), cookies[i].second);
        if (!attributes || !geometry || attributes->map_state != XCB_MAP_STATE_VIEWABLE ||
            attributes->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT)
            continue;
        const int border = geometry->border_width;
        const QRect rect(geometry->x, geometry->y, geometry->width + 2 * border,
                         geometry->height + 2 * border);
        layers.push_back({children[i], attributes->visual, rect, border});
        if (!m_connection.owns(children[i])) watch(layers.back());
    }
    return layers;
}

void BackdropSource::watch(const Layer& layer) {
    Watched& watched = m_watched[layer.window];
    watched.rect = layer.rect;
    if (watched.damage == XCB_NONE) {
        watched.damage = xcb_generate_id(m_connection);
        xcb_damage_create(m_connection, watched.damage, layer.window,
                          XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
    } else if (std::exchange(watched.isDamaged, false)) {
        // From here on the next change is told again.
        xcb_damage_subtract(m_connection, watched.damage, XCB_NONE, XCB_NONE);
    }
}

std::optional<QImage> BackdropSource::capture(const QRect& rect, xcb_window_t window,
                                              const std::vector<Layer>& layers) {
    const auto own = std::find_if(layers.begin(), layers.end(),
                                  [&](const Layer& layer) { return layer.window == window; });
    const auto rootFormat = formatOf(m_connection.screen().root_visual);
    if (!m_isActive || own == layers.end() || rootFormat == XCB_NONE) return std::nullopt;

    const xcb_pixmap_t pixmap = xcb_generate_id(m_connection);
    xcb_create_pixmap(m_connection, m_connection.screen().root_depth, pixmap, m_connection.root(),
                      toUint16(rect.width()), toUint16(rect.height()));
    {
        const Picture target(m_connection, pixmap, rootFormat);
        drawRoot(target.id(), rect, layers);
        std::for_each(layers.begin(), own, [&](const Layer& layer) {
            if (layer.rect.intersects(rect)) drawLayer(target.id(), rect, layer);
        });
    }
    const auto reply =
        xcbReply(xcb_get_image_reply, m_connection.get(),
                 xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, 0, 0,
                               toUint16(rect.width()), toUint16(rect.height()), ~0U));
    xcb_free_pixmap(m_connection, pixmap);
    const qsizetype expectedBytes = qsizetype{4} * rect.width() * rect.height();
    if (!reply || xcb_get_image_data_length(reply.get()) < expectedBytes) return std::nullopt;
    return QImage(xcb_get_image_data(reply.get()), rect.width(), rect.height(),
                  qsizetype{4} * rect.width(), QImage::Format_RGB32)
        .copy();
}

void BackdropSource::drawRoot(xcb_render_picture_t target, const QRect& rect,
                              const std::vector<Layer>& layers) {
    // The picture that desktops and wallpaper programs leave on the root, which may be gone. So
    // there is a colour below it in any case.
    const auto wallpaper =
        m_connection.property32(m_connection.root(), m_connection.atoms().rootPixmap);
    const bool hasWallpaper = !wallpaper.empty() && wallpaper.front() != XCB_NONE;
    if (!hasWallpaper) learnRootColor(layers);
    const auto channel = [](int eightBits) { return static_cast<uint16_t>(eightBits * 0x101); };
    const xcb_render_color_t color{channel(m_rootColor.red()), channel(m_rootColor.green()),
                                   channel(m_rootColor.blue()), 0xffff};
    const xcb_rectangle_t whole{0, 0, toUint16(rect.width()), toUint16(rect.height())};
    xcb_render_fill_rectangles(m_connection, XCB_RENDER_PICT_OP_SRC, target, color, 1, &whole);
    if (!hasWallpaper) return;

    const uint32_t repeat = XCB_RENDER_REPEAT_NORMAL;
    const Picture source(m_connection, wallpaper.front(),
                         formatOf(m_connection.screen().root_visual), XCB_RENDER_CP_REPEAT,
                         &repeat);
    xcb_render_composite(m_connection, XCB_RENDER_PICT_OP_SRC, source.id(), XCB_NONE, target,
                         toInt16(rect.x()), toInt16(rect.y()), 0, 0, 0, 0, toUint16(rect.width()),
                         toUint16(rect.height()));
}

void BackdropSource::learnRootColor(const std::vector<Layer>& layers) {
    // The server does not tell the background of the root; a pixel of it that is in sight does.
    constexpr int pointsPerSide = 8;
    const xcb_screen_t& screen = m_connection.screen();
    for (int i = 0; i < pointsPerSide * pointsPerSide; ++i) {
        const QPoint point(
            (i % pointsPerSide) * (screen.width_in_pixels - 1) / (pointsPerSide - 1),
            (i / pointsPerSide) * (screen.height_in_pixels - 1) / (pointsPerSide - 1));
        const bool isCovered = std::any_of(layers.begin(), layers.end(), [&](const Layer& layer) {
            return layer.rect.contains(point);
        });
        if (isCovered) continue;
        const auto reply =
            xcbReply(xcb_get_image_reply, m_connection.get(),
                     xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_connection.root(),
                                   toInt16(point.x()), toInt16(point.y()), 1, 1, ~0U));
        if (!reply || xcb_get_image_data_length(reply.get()) < 4) return;
        const uint8_t* const bytes = xcb_get_image_data(reply.get());
        m_rootColor = QColor(bytes[2], bytes[1], bytes[0]);
        return;
    }
}

void BackdropSource::drawLayer(xcb_render_picture_t target, const QRect& rect, const Layer& layer) {
    const auto format = formatOf(layer.visual);
    if (format == XCB_NONE) return;
    const bool isOwn = m_connection.owns(layer.window);
    const xcb_pixmap_t pixmap = isOwn ? pictureOf(layer.window) : xcb_generate_id(m_connection);
    if (pixmap == XCB_NONE) return;
    if (!isOwn) xcb_composite_name_window_pixmap(m_connection, layer.window, pixmap);
    {
        const Picture source(m_connection, pixmap, format);
        const QPoint position = layer.rect.topLeft() - rect.topLeft();
        const xcb_xfixes_region_t shape = xcb_generate_id(m_connection);
        xcb_xfixes_create_region_from_window(m_connection, shape, layer.window,
                                             XCB_SHAPE_SK_BOUNDING);
        xcb_xfixes_set_picture_clip_region(m_connection, target, shape,
                                           toInt16(position.x() + layer.border),
                                           toInt16(position.y() + layer.border));
        const auto operation =
            static_cast<uint8_t>(m_isBlending ? XCB_RENDER_PICT_OP_OVER : XCB_RENDER_PICT_OP_SRC);
        xcb_render_composite(m_connection, operation, source.id(), XCB_NONE, target, 0, 0, 0, 0,
                             toInt16(position.x()), toInt16(position.y()),
                             toUint16(layer.rect.width()), toUint16(layer.rect.height()));
        xcb_xfixes_set_picture_clip_region(m_connection, target, XCB_NONE, 0, 0);
        xcb_xfixes_destroy_region(m_connection, shape);
    }
    if (!isOwn) xcb_free_pixmap(m_connection, pixmap);
}

xcb_render_pictformat_t BackdropSource::formatOf(xcb_visualid_t visual) const {
    const auto found = m_formats.find(visual);
    return found == m_formats.end() ? xcb_render_pictformat_t{XCB_NONE} : found->second;
}
