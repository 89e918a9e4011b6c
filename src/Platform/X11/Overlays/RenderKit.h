#pragma once

#include "Platform/X11/XcbConnection.h"

#include <QColor>
#include <QImage>
#include <QRect>
#include <QRegion>
#include <QSize>
#include <memory>
#include <unordered_map>
#include <xcb/render.h>

int pixelsOf(const QRegion& region);
/// The parts of a region as the server takes them, moved by `offset`.
std::vector<xcb_rectangle_t> serverRectangles(const QRegion& region, QPoint offset = {});
/// Brings a number into the range of the protocol.
int16_t serverPosition(int value);
uint16_t serverLength(int value);

/// Puts an image into a drawable of 8, 24 or 32 bits a pixel, in requests that the server accepts.
void putImage(XcbConnection& connection, xcb_drawable_t drawable, xcb_gcontext_t context,
              uint8_t depth, const QImage& image, QPoint position);

/// What it takes to draw with the server's RENDER extension.
class RenderKit {
public:
    static constexpr uint8_t alphaDepth = 8;
    static constexpr uint8_t argbDepth = 32;

    /// `connection` must outlive the kit.
    explicit RenderKit(XcbConnection& connection);
    ~RenderKit();
    RenderKit(const RenderKit&) = delete;
    RenderKit& operator=(const RenderKit&) = delete;

    XcbConnection& connection() const { return m_connection; }
    /// Whether the server can scale pictures and keeps them with alpha.
    bool isAvailable() const { return m_isAvailable; }
    /// XCB_NONE for a visual that cannot be drawn with.
    xcb_render_pictformat_t formatOf(xcb_visualid_t visual) const;
    /// Of pixels that are alpha alone, and of those with colour and alpha.
    xcb_render_pictformat_t alphaFormat() const { return m_alphaFormat; }
    xcb_render_pictformat_t argbFormat() const { return m_argbFormat; }
    /// A context to copy and to put images of a depth with.
    xcb_gcontext_t contextOf(uint8_t depth);
    /// Black without end.
    xcb_render_picture_t black();

private:
    void readFormats(const xcb_render_query_pict_formats_reply_t& formats);

    XcbConnection& m_connection;
    bool m_isAvailable = false;
    std::unordered_map<xcb_visualid_t, xcb_render_pictformat_t> m_formats;
    xcb_render_pictformat_t m_alphaFormat = XCB_NONE;
    xcb_render_pictformat_t m_argbFormat = XCB_NONE;
    std::unordered_map<uint8_t, xcb_gcontext_t> m_contexts;
    xcb_render_picture_t m_black = XCB_NONE;
};

/// A pixmap on the server and the picture to draw it with, both freed with this object.
class ServerPicture {
public:
    /// The content is undefined. `kit` must outlive the picture.
    ServerPicture(RenderKit& kit, QSize size, uint8_t depth, xcb_render_pictformat_t format);
    ~ServerPicture();
    ServerPicture(const ServerPicture&) = delete;
    ServerPicture& operator=(const ServerPicture&) = delete;

    QSize size() const { return m_size; }
    xcb_pixmap_t pixmap() const { return m_pixmap; }
    xcb_render_picture_t picture() const { return m_picture; }
    /// The same pixels for drawing from, smoothly, with `factor` of them to one that is drawn,
    /// which is the same at every call. Beyond its edges it goes on in their colours.
    xcb_render_picture_t scaled(double factor);

    void put(const QImage& image, QPoint position);
    void fill(const QColor& color, const QRegion& region);
    /// Only there is it drawn on from now on.
    void setClip(const QRegion& region);

private:
    RenderKit& m_kit;
    QSize m_size;
    uint8_t m_depth;
    xcb_render_pictformat_t m_format;
    xcb_pixmap_t m_pixmap;
    xcb_render_picture_t m_picture;
    xcb_render_picture_t m_scaled = XCB_NONE;
};

/// Pictures to work in, of any size and kept until `clear`.
class ScratchPictures {
public:
    explicit ScratchPictures(RenderKit& kit) : m_kit(kit) {}
    /// One that is at least that large. There is one for each purpose.
    enum class Purpose { result, ground, half, quarter };
    ServerPicture& take(Purpose purpose, QSize size, uint8_t depth, xcb_render_pictformat_t format);
    /// Gives up those that have more pixels than this.
    void trim(int mostPixels);
    void clear() { m_pictures.clear(); }

private:
    struct Entry {
        std::unique_ptr<ServerPicture> picture;
        xcb_render_pictformat_t format = XCB_NONE;
    };
    RenderKit& m_kit;
    std::unordered_map<Purpose, Entry> m_pictures;
};
