#include "Platform/X11/Overlays/BackdropSource.h"

#include <algorithm>
#include <array>
#include <utility>
#include <xcb/composite.h>
#include <xcb/xfixes.h>

namespace {

// More parts than this are not worth being told apart.
constexpr int mostDamageParts = 32;

QRegion regionOf(const xcb_xfixes_fetch_region_reply_t& reply) {
    const auto toRect = [](const xcb_rectangle_t& rect) {
        return QRect(rect.x, rect.y, rect.width, rect.height);
    };
    const xcb_rectangle_t* const parts = xcb_xfixes_fetch_region_rectangles(&reply);
    const int count = xcb_xfixes_fetch_region_rectangles_length(&reply);
    if (count > mostDamageParts) return toRect(reply.extents);
    QRegion region;
    std::for_each(parts, parts + count,
                  [&](const xcb_rectangle_t& rect) { region += toRect(rect); });
    return region;
}

}  // namespace

/// The pixmap in which the server keeps a window, and the picture to draw from it.
class BackdropSource::NamedPicture {
public:
    NamedPicture(XcbConnection& connection, xcb_window_t window, xcb_render_pictformat_t format)
        : m_connection(connection),
          m_pixmap(xcb_generate_id(connection)),
          m_picture(xcb_generate_id(connection)) {
        xcb_composite_name_window_pixmap(connection, window, m_pixmap);
        xcb_render_create_picture(connection, m_picture, m_pixmap, format, 0, nullptr);
    }
    ~NamedPicture() {
        xcb_render_free_picture(m_connection, m_picture);
        xcb_free_pixmap(m_connection, m_pixmap);
    }
    NamedPicture(const NamedPicture&) = delete;
    NamedPicture& operator=(const NamedPicture&) = delete;
    xcb_render_picture_t picture() const { return m_picture; }

private:
    XcbConnection& m_connection;
    xcb_pixmap_t m_pixmap;
    xcb_render_picture_t m_picture;
};

/// Gathers the answers about several windows.
struct BackdropSource::DamageAnswers {
    QRegion changed;
    int awaited = 0;
    std::function<void(const QRegion& changed)> take;

    void add(const QRegion& region) {
        changed += region;
        if (--awaited == 0) take(changed);
    }
};

BackdropSource::BackdropSource(RenderKit& kit, IsOwnWindow isOwnWindow)
    : m_kit(kit),
      m_connection(kit.connection()),
      m_isOwnWindow(std::move(isOwnWindow)),
      m_windows(m_connection) {
    m_windows.onChanged = [this](const QRegion& region) {
        if (m_wallpaper == XCB_NONE) readRootColor();
        if (onChanged) onChanged(region);
    };
    m_windows.onNewPixmap = [this](const TopLevelWindows::Entry& entry) { watch(entry); };
    // The damage object went with its window, if that is destroyed.
    m_windows.onGone = [this](xcb_window_t window) {
        const auto watched = m_watched.find(window);
        if (watched == m_watched.end()) return;
        xcb_damage_destroy(m_connection, watched->second.damage);
        m_watched.erase(watched);
    };

    if (!kit.isAvailable() || !m_connection.hasExtension(xcb_composite_id) ||
        !m_connection.hasExtension(xcb_damage_id) || !m_connection.hasExtension(xcb_xfixes_id))
        return;
    const auto compositeCookie = xcb_composite_query_version(m_connection, 0, 4);
    const auto damageCookie = xcb_damage_query_version(m_connection, 1, 1);
    const auto composite =
        xcbReply(xcb_composite_query_version_reply, m_connection.get(), compositeCookie);
    const auto damage = xcbReply(xcb_damage_query_version_reply, m_connection.get(), damageCookie);
    // Naming the pixmap of a window came with version 0.2.
    m_isAvailable =
        composite && damage && (composite->major_version > 0 || composite->minor_version >= 2);
    m_damageEvent = static_cast<uint8_t>(
        xcb_get_extension_data(m_connection, &xcb_damage_id)->first_event + XCB_DAMAGE_NOTIFY);
}

BackdropSource::~BackdropSource() {
    setActive(false);
}

void BackdropSource::setActive(bool isActive) {
    const bool shouldBeActive = isActive && m_isAvailable;
    if (std::exchange(m_isActive, shouldBeActive) == shouldBeActive) return;
    if (m_isActive) {
        m_lifetime.emplace();
        m_isRootColorAwaited = false;
        m_connection.selectRootEvents(XCB_EVENT_MASK_PROPERTY_CHANGE);
        m_events =
            m_connection.onEvent([this](const xcb_generic_event_t& event) { handleEvent(event); });
        xcb_composite_redirect_subwindows(m_connection, m_connection.root(),
                                          XCB_COMPOSITE_REDIRECT_AUTOMATIC);
        readWallpaper();
        m_windows.start();
    } else {
        m_windows.stop();
        m_events.reset();
        m_lifetime.reset();
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

QRect BackdropSource::screenRect() const {
    const xcb_screen_t& screen = m_connection.screen();
    return {0, 0, screen.width_in_pixels, screen.height_in_pixels};
}

void BackdropSource::handleEvent(const xcb_generic_event_t& event) {
    if (event.response_type == m_damageEvent) {
        const auto& damage = reinterpret_cast<const xcb_damage_notify_event_t&>(event);
        const auto watched = m_watched.find(damage.drawable);
        if (watched == m_watched.end()) return;
        watched->second.isDamaged = true;
        if (onDamaged) onDamaged();
    } else if (event.response_type == XCB_PROPERTY_NOTIFY) {
        const auto& property = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (property.window == m_connection.root() &&
            property.atom == m_connection.atoms().rootPixmap)
            readWallpaper();
    }
}

void BackdropSource::watch(const TopLevelWindows::Entry& entry) {
    Watched& watched = m_watched[entry.window];
    watched.picture.reset();
    if (watched.damage != XCB_NONE) return;
    watched.damage = xcb_generate_id(m_connection);
    xcb_damage_create(m_connection, watched.damage, entry.window,
                      XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
}

void BackdropSource::readWallpaper() {
    m_connection.whenReplied<xcb_get_property_reply_t>(
        xcb_get_property(m_connection, 0, m_connection.root(), m_connection.atoms().rootPixmap,
                         XCB_GET_PROPERTY_TYPE_ANY, 0, 1),
        m_lifetime->guard([this](const XcbReply<xcb_get_property_reply_t>& reply) {
            const bool isThere = reply && reply->format == 32 && reply->value_len > 0;
            m_wallpaper = isThere
                              ? *static_cast<const uint32_t*>(xcb_get_property_value(reply.get()))
                              : xcb_pixmap_t{XCB_NONE};
            if (m_wallpaper == XCB_NONE) readRootColor();
            if (onChanged) onChanged(screenRect());
        }));
}

void BackdropSource::readRootColor() {
    if (!m_windows.isKnown() || std::exchange(m_isRootColorAwaited, true)) return;
    // The server does not tell the background of the root; a pixel of it that is in sight does.
    constexpr int pointsPerSide = 8;
    const QRect screen = screenRect();
    QRegion covered = ownRegion();
    for (const TopLevelWindows::Entry& entry : m_windows.bottomToTop())
        if (!m_connection.owns(entry.window) && entry.isVisible()) covered += entry.rect;
    for (int i = 0; i < pointsPerSide * pointsPerSide; ++i) {
        const QPoint point((i % pointsPerSide) * screen.right() / (pointsPerSide - 1),
                           (i / pointsPerSide) * screen.bottom() / (pointsPerSide - 1));
        if (covered.contains(point)) continue;
        m_connection.whenReplied<xcb_get_image_reply_t>(
            xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_connection.root(),
                          serverPosition(point.x()), serverPosition(point.y()), 1, 1, ~0U),
            m_lifetime->guard([this](const XcbReply<xcb_get_image_reply_t>& reply) {
                m_isRootColorAwaited = false;
                if (!reply || xcb_get_image_data_length(reply.get()) < 4) return;
                const uint8_t* const bytes = xcb_get_image_data(reply.get());
                const QColor color(bytes[2], bytes[1], bytes[0]);
                if (std::exchange(m_rootColor, color) != color && onChanged)
                    onChanged(screenRect());
            }));
        return;
    }
    m_isRootColorAwaited = false;
}

void BackdropSource::draw(ServerPicture& target, QPoint origin, const QRegion& area,
                          const std::vector<OwnLayer>& ownBelow, xcb_window_t above) {
    drawRoot(target, origin, area);
    const auto& windows = m_windows.bottomToTop();
    auto end =
        std::find_if(windows.begin(), windows.end(),
                     [&](const TopLevelWindows::Entry& entry) { return entry.window == above; });
    // One that is not among them is new, and goes above them. But what a compositor paints on is a
    // window too, and the topmost.
    if (end == windows.end() && m_isBlending) end = windows.begin();
    // A window of another program may be found above a mask, but not for long. What a mask is to
    // hide again in a moment must not be seen through another one then.
    std::for_each(windows.begin(), end, [&](const TopLevelWindows::Entry& entry) {
        if (!m_connection.owns(entry.window) && !m_isOwnWindow(entry.window))
            drawForeign(target, origin, area, entry);
    });
    // The windows of this program have their places among the masks. Where the order on the server
    // is not yet what is wanted, a mask is rather drawn over such a window than left out.
    std::vector<OwnLayer> left = ownBelow;
    std::for_each(windows.begin(), end, [&](const TopLevelWindows::Entry& entry) {
        const auto own = std::find_if(left.begin(), left.end(), [&](const OwnLayer& layer) {
            return layer.window == entry.window;
        });
        if (own != left.end()) {
            std::for_each(left.begin(), std::next(own),
                          [&](const OwnLayer& layer) { drawOwn(target, origin, area, layer); });
            left.erase(left.begin(), std::next(own));
        } else if (!m_connection.owns(entry.window) && m_isOwnWindow(entry.window)) {
            drawForeign(target, origin, area, entry);
        }
    });
    for (const OwnLayer& layer : left)
        drawOwn(target, origin, area, layer);
    target.setClip(QRect(QPoint(0, 0), target.size()));
}

void BackdropSource::drawRoot(ServerPicture& target, QPoint origin, const QRegion& area) {
    target.fill(m_rootColor, area.translated(-origin));
    if (m_wallpaper == XCB_NONE) return;
    const uint32_t repeat = XCB_RENDER_REPEAT_NORMAL;
    const xcb_render_picture_t wallpaper = xcb_generate_id(m_connection);
    xcb_render_create_picture(m_connection, wallpaper, m_wallpaper,
                              m_kit.formatOf(m_connection.screen().root_visual),
                              XCB_RENDER_CP_REPEAT, &repeat);
    for (const QRect& part : area) {
        const QPoint place = part.topLeft() - origin;
        xcb_render_composite(m_connection, XCB_RENDER_PICT_OP_SRC, wallpaper, XCB_NONE,
                             target.picture(), serverPosition(part.x()), serverPosition(part.y()),
                             0, 0, serverPosition(place.x()), serverPosition(place.y()),
                             serverLength(part.width()), serverLength(part.height()));
    }
    xcb_render_free_picture(m_connection, wallpaper);
}

void BackdropSource::drawForeign(ServerPicture& target, QPoint origin, const QRegion& area,
                                 const TopLevelWindows::Entry& entry) {
    if (!entry.isVisible() || !area.intersects(entry.rect)) return;
    const auto format = m_kit.formatOf(entry.visual);
    const auto watched = m_watched.find(entry.window);
    if (format == XCB_NONE || watched == m_watched.end()) return;
    std::unique_ptr<NamedPicture>& named = watched->second.picture;
    if (!named) named = std::make_unique<NamedPicture>(m_connection, entry.window, format);
    drawLayer(target, origin, area, {entry.window, named->picture(), entry.rect, entry.border});
}

void BackdropSource::drawOwn(ServerPicture& target, QPoint origin, const QRegion& area,
                             const OwnLayer& layer) {
    const auto format = m_kit.formatOf(layer.visual);
    if (format == XCB_NONE || !area.intersects(layer.rect)) return;
    if (layer.picture == XCB_NONE) {
        target.setClip(QRect(QPoint(0, 0), target.size()));
        target.fill(Qt::black, area.intersected(layer.rect).translated(-origin));
        return;
    }
    const xcb_render_picture_t picture = xcb_generate_id(m_connection);
    xcb_render_create_picture(m_connection, picture, layer.picture, format, 0, nullptr);
    drawLayer(target, origin, area, {layer.window, picture, layer.rect, 0});
    xcb_render_free_picture(m_connection, picture);
}

void BackdropSource::drawLayer(ServerPicture& target, QPoint origin, const QRegion& area,
                               const Layer& layer) {
    const QPoint inner = layer.rect.topLeft() + QPoint(layer.border, layer.border) - origin;
    const xcb_xfixes_region_t shape = xcb_generate_id(m_connection);
    xcb_xfixes_create_region_from_window(m_connection, shape, layer.window, XCB_SHAPE_SK_BOUNDING);
    xcb_xfixes_set_picture_clip_region(m_connection, target.picture(), shape,
                                       serverPosition(inner.x()), serverPosition(inner.y()));
    xcb_xfixes_destroy_region(m_connection, shape);
    const auto operation =
        static_cast<uint8_t>(m_isBlending ? XCB_RENDER_PICT_OP_OVER : XCB_RENDER_PICT_OP_SRC);
    for (const QRect& part : area.intersected(layer.rect)) {
        const QPoint source = part.topLeft() - layer.rect.topLeft();
        const QPoint place = part.topLeft() - origin;
        xcb_render_composite(m_connection, operation, layer.picture, XCB_NONE, target.picture(),
                             serverPosition(source.x()), serverPosition(source.y()), 0, 0,
                             serverPosition(place.x()), serverPosition(place.y()),
                             serverLength(part.width()), serverLength(part.height()));
    }
}

bool BackdropSource::isDamaged(const QRegion& interest) const {
    const auto& windows = m_windows.bottomToTop();
    return std::any_of(windows.begin(), windows.end(), [&](const TopLevelWindows::Entry& entry) {
        const auto watched = m_watched.find(entry.window);
        return watched != m_watched.end() && watched->second.isDamaged &&
               interest.intersects(entry.rect);
    });
}

void BackdropSource::takeDamage(const QRegion& interest,
                                std::function<void(const QRegion& changed)> take) {
    const auto answers = std::make_shared<DamageAnswers>();
    answers->take = std::move(take);
    answers->awaited = 1;
    for (const TopLevelWindows::Entry& entry : m_windows.bottomToTop()) {
        const auto watched = m_watched.find(entry.window);
        if (watched == m_watched.end() || !watched->second.isDamaged ||
            !interest.intersects(entry.rect))
            continue;
        watched->second.isDamaged = false;
        ++answers->awaited;
        const xcb_xfixes_region_t parts = xcb_generate_id(m_connection);
        xcb_xfixes_create_region(m_connection, parts, 0, nullptr);
        xcb_damage_subtract(m_connection, watched->second.damage, XCB_NONE, parts);
        const auto cookie = xcb_xfixes_fetch_region(m_connection, parts);
        xcb_xfixes_destroy_region(m_connection, parts);
        const QPoint inner = entry.rect.topLeft() + QPoint(entry.border, entry.border);
        m_connection.whenReplied<xcb_xfixes_fetch_region_reply_t>(
            cookie, m_lifetime->guard(
                        [answers, inner](const XcbReply<xcb_xfixes_fetch_region_reply_t>& reply) {
                            QRegion changed;
                            if (reply) changed = regionOf(*reply);
                            answers->add(changed.translated(inner));
                        }));
    }
    // The answer comes after the events that the requests so far have brought about.
    m_connection.whenReplied<xcb_get_input_focus_reply_t>(
        xcb_get_input_focus(m_connection),
        m_lifetime->guard(
            [answers](const XcbReply<xcb_get_input_focus_reply_t>&) { answers->add({}); }));
}
