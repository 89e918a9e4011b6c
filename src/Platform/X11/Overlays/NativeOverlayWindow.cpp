#include "Platform/X11/Overlays/NativeOverlayWindow.h"

#include "Models/ScreenMask.h"
#include "Platform/X11/Overlays/RenderKit.h"

#include <QCoreApplication>
#include <QSysInfo>
#include <array>
#include <utility>
#include <xcb/shape.h>

namespace {

constexpr uint8_t alphaDepth = 32;
// The depth of pixels that are laid out like those with alpha.
constexpr uint8_t colorDepth = 24;

// The visual whose pixels are those of QImage::Format_ARGB32_Premultiplied.
std::optional<xcb_visualid_t> findAlphaVisual(const xcb_screen_t& screen) {
    for (auto depth = xcb_screen_allowed_depths_iterator(&screen); depth.rem > 0;
         xcb_depth_next(&depth)) {
        if (depth.data->depth != alphaDepth) continue;
        for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem > 0;
             xcb_visualtype_next(&visual)) {
            const auto& type = *visual.data;
            if (type._class == XCB_VISUAL_CLASS_TRUE_COLOR && type.red_mask == 0xff0000 &&
                type.green_mask == 0x00ff00 && type.blue_mask == 0x0000ff)
                return type.visual_id;
        }
    }
    return std::nullopt;
}

// Sequence numbers wrap around; what counts is their distance.
bool isNotBefore(const xcb_generic_event_t& event, uint32_t sequence) {
    return static_cast<int32_t>(event.full_sequence - sequence) >= 0;
}

}  // namespace

OverlayVisual::OverlayVisual(XcbConnection& connection, Alpha alpha)
    : m_connection(connection),
      m_depth(connection.screen().root_depth),
      m_visual(connection.screen().root_visual) {
    const auto alphaVisual = findAlphaVisual(connection.screen());
    if (alphaVisual && (alpha == Alpha::wanted || m_depth != colorDepth)) {
        m_depth = alphaDepth;
        m_visual = *alphaVisual;
    }
    m_colormap = xcb_generate_id(connection);
    xcb_create_colormap(connection, XCB_COLORMAP_ALLOC_NONE, m_colormap, connection.root(),
                        m_visual);
    const xcb_pixmap_t pixmap = xcb_generate_id(connection);
    xcb_create_pixmap(connection, m_depth, pixmap, connection.root(), 1, 1);
    m_graphicsContext = xcb_generate_id(connection);
    const uint32_t noExposures = 0;
    xcb_create_gc(connection, m_graphicsContext, pixmap, XCB_GC_GRAPHICS_EXPOSURES, &noExposures);
    xcb_free_pixmap(connection, pixmap);
}

OverlayVisual::~OverlayVisual() {
    xcb_free_gc(m_connection, m_graphicsContext);
    xcb_free_colormap(m_connection, m_colormap);
}

NativeOverlayWindow::NativeOverlayWindow(XcbConnection& connection, const OverlayVisual& visual,
                                         const QRect& rect, const QString& title,
                                         const std::optional<QUuid>& maskID)
    : m_connection(connection),
      m_visual(visual),
      m_id(xcb_generate_id(connection)),
      m_rect(rect),
      m_presentedSize(rect.size()) {
    // What happens to the window itself is told through the root, as for every other one.
    const uint32_t eventMask = XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE |
                               XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_LEAVE_WINDOW;
    const std::array<uint32_t, 5> values{0, 0, 1, eventMask, visual.colormap()};
    xcb_create_window(connection, visual.depth(), m_id, connection.root(), serverPosition(rect.x()),
                      serverPosition(rect.y()), serverLength(rect.width()),
                      serverLength(rect.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      visual.visual(),
                      XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT |
                          XCB_CW_EVENT_MASK | XCB_CW_COLORMAP,
                      values.data());
    setProperties(title, maskID);
    // Only from here on: what others change.
    const uint32_t fullEventMask = eventMask | XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(connection, m_id, XCB_CW_EVENT_MASK, &fullEventMask);
    xcb_shape_select_input(connection, m_id, 1);
}

NativeOverlayWindow::~NativeOverlayWindow() {
    xcb_destroy_window(m_connection, m_id);
    for (const xcb_pixmap_t picture : {m_picture, m_formerPicture.value_or(XCB_NONE)})
        if (picture != XCB_NONE) xcb_free_pixmap(m_connection, picture);
}

void NativeOverlayWindow::setProperties(const QString& title, const std::optional<QUuid>& maskID) {
    const X11Atoms& atoms = m_connection.atoms();
    const auto setText = [&](xcb_atom_t property, xcb_atom_t type, const QByteArray& text) {
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_id, property, type, 8,
                            static_cast<uint32_t>(text.size()), text.constData());
    };
    setText(XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, QByteArray("veyla\0Veyla", 12));
    setText(XCB_ATOM_WM_NAME, XCB_ATOM_STRING, title.toLatin1());
    setText(atoms.netWmName, atoms.utf8String, title.toUtf8());
    setText(XCB_ATOM_WM_CLIENT_MACHINE, XCB_ATOM_STRING, QSysInfo::machineHostName().toUtf8());
    setMaskID(maskID);

    const auto pid = static_cast<uint32_t>(QCoreApplication::applicationPid());
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_id, atoms.netWmPid,
                        XCB_ATOM_CARDINAL, 32, 1, &pid);
    // Compositors give docks no shadow and no effects of their own.
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_id, atoms.netWmWindowType,
                        XCB_ATOM_ATOM, 32, 1, &atoms.netWmWindowTypeDock);
}

void NativeOverlayWindow::setMaskID(const std::optional<QUuid>& maskID) {
    if (!maskID) return;
    const QByteArray text = uuidText(*maskID).toUtf8();
    const X11Atoms& atoms = m_connection.atoms();
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_id, atoms.veylaMaskID,
                        atoms.utf8String, 8, static_cast<uint32_t>(text.size()), text.constData());
}

void NativeOverlayWindow::setRect(const QRect& rect) {
    m_isPlaced &= rect == m_rect;
    m_rect = rect;
}

void NativeOverlayWindow::setPicture(QSize size, const QList<Part>& parts) {
    const xcb_pixmap_t pixmap = xcb_generate_id(m_connection);
    xcb_create_pixmap(m_connection, m_visual.depth(), pixmap, m_id, serverLength(size.width()),
                      serverLength(size.height()));
    for (const Part& part : parts)
        putImage(m_connection, pixmap, m_visual.graphicsContext(), m_visual.depth(), part.image,
                 part.position);
    setPicture(pixmap);
}

void NativeOverlayWindow::setPicture(xcb_pixmap_t pixmap) {
    const xcb_pixmap_t previous = std::exchange(m_picture, pixmap);
    if (!m_formerPicture)
        m_formerPicture = previous;
    else
        xcb_free_pixmap(m_connection, previous);
}

void NativeOverlayWindow::present() {
    if (m_formerPicture) {
        xcb_change_window_attributes(m_connection, m_id, XCB_CW_BACK_PIXMAP, &m_picture);
        if (*m_formerPicture != XCB_NONE) xcb_free_pixmap(m_connection, *m_formerPicture);
        m_formerPicture.reset();
        // A resize repaints the window by itself.
        if (m_rect.size() == m_presentedSize) xcb_clear_area(m_connection, 0, m_id, 0, 0, 0, 0);
    }
    if (std::exchange(m_isPlaced, true)) return;
    m_presentedSize = m_rect.size();
    // Nobody gives it a border, other programs excepted.
    const std::array<uint32_t, 5> values{static_cast<uint32_t>(serverPosition(m_rect.x())),
                                         static_cast<uint32_t>(serverPosition(m_rect.y())),
                                         serverLength(m_rect.width()),
                                         serverLength(m_rect.height()), 0};
    m_placeSequence =
        xcb_configure_window(m_connection, m_id,
                             XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                                 XCB_CONFIG_WINDOW_HEIGHT | XCB_CONFIG_WINDOW_BORDER_WIDTH,
                             values.data())
            .sequence;
}

void NativeOverlayWindow::showPictureAgain(const QRegion& region) {
    // A newer picture is shown whole.
    if (m_formerPicture) return;
    // Only with this does the protocol promise that the changed pixels count.
    xcb_change_window_attributes(m_connection, m_id, XCB_CW_BACK_PIXMAP, &m_picture);
    for (const QRect& rect : region)
        xcb_clear_area(m_connection, 0, m_id, serverPosition(rect.x()), serverPosition(rect.y()),
                       serverLength(rect.width()), serverLength(rect.height()));
}

void NativeOverlayWindow::setBoundingAreas(const std::optional<QList<QRect>>& areas) {
    m_boundingAreas = areas;
    if (!areas) {
        xcb_shape_mask(m_connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, m_id, 0, 0, XCB_NONE);
        return;
    }
    std::vector<xcb_rectangle_t> rectangles;
    rectangles.reserve(static_cast<std::size_t>(areas->size()));
    for (const QRect& area : *areas)
        rectangles.push_back({serverPosition(area.x()), serverPosition(area.y()),
                              serverLength(area.width()), serverLength(area.height())});
    xcb_shape_rectangles(m_connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING,
                         XCB_CLIP_ORDERING_UNSORTED, m_id, 0, 0,
                         static_cast<uint32_t>(rectangles.size()), rectangles.data());
}

void NativeOverlayWindow::setInputPassThrough(bool isPassThrough) {
    if (std::exchange(m_isPassThrough, isPassThrough) != isPassThrough) applyInputShape();
}

void NativeOverlayWindow::applyInputShape() {
    if (m_isPassThrough)
        xcb_shape_rectangles(m_connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT,
                             XCB_CLIP_ORDERING_UNSORTED, m_id, 0, 0, 0, nullptr);
    else
        xcb_shape_mask(m_connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, m_id, 0, 0, XCB_NONE);
}

void NativeOverlayWindow::restoreShapes() {
    // A copy, because setting them replaces what is kept.
    setBoundingAreas(std::optional(m_boundingAreas));
    applyInputShape();
    xcb_shape_mask(m_connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_CLIP, m_id, 0, 0, XCB_NONE);
}

void NativeOverlayWindow::setCursor(xcb_cursor_t cursor) {
    xcb_change_window_attributes(m_connection, m_id, XCB_CW_CURSOR, &cursor);
}

void NativeOverlayWindow::map() {
    if (std::exchange(m_isMapped, true)) return;
    m_mapSequence = xcb_map_window(m_connection, m_id).sequence;
}

void NativeOverlayWindow::unmap() {
    if (!std::exchange(m_isMapped, false)) return;
    m_mapSequence = xcb_unmap_window(m_connection, m_id).sequence;
}

void NativeOverlayWindow::raise() {
    const uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(m_connection, m_id, XCB_CONFIG_WINDOW_STACK_MODE, &above);
}

void NativeOverlayWindow::stackBelow(xcb_window_t sibling) {
    const std::array<uint32_t, 2> values{sibling, XCB_STACK_MODE_BELOW};
    xcb_configure_window(m_connection, m_id,
                         XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE, values.data());
}

bool NativeOverlayWindow::knowsMapping(const xcb_generic_event_t& event) const {
    return isNotBefore(event, m_mapSequence);
}

bool NativeOverlayWindow::knowsPlace(const xcb_generic_event_t& event) const {
    return isNotBefore(event, m_placeSequence);
}
