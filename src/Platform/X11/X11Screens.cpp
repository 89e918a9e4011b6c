#include "Platform/X11/X11Screens.h"

#include <algorithm>
#include <utility>
#include <xcb/randr.h>

namespace {

QRect geometryOf(const XcbReply<xcb_get_geometry_reply_t>& geometry,
                 const XcbReply<xcb_translate_coordinates_reply_t>& inRoot) {
    return {inRoot->dst_x, inRoot->dst_y, geometry->width, geometry->height};
}

// The twelve numbers of a partial strut, or the four of the older hint.
PanelStrut strutFrom(const std::vector<uint32_t>& values, const QRect& window, QSize root) {
    const auto at = [&](std::size_t i) { return static_cast<int>(std::min(values[i], 1U << 20)); };
    PanelStrut strut{.left = at(0),
                     .right = at(1),
                     .top = at(2),
                     .bottom = at(3),
                     .leftStart = 0,
                     .leftEnd = root.height(),
                     .rightStart = 0,
                     .rightEnd = root.height(),
                     .topStart = 0,
                     .topEnd = root.width(),
                     .bottomStart = 0,
                     .bottomEnd = root.width(),
                     .window = window};
    if (values.size() < 12) return strut;
    strut.leftStart = at(4);
    strut.leftEnd = at(5);
    strut.rightStart = at(6);
    strut.rightEnd = at(7);
    strut.topStart = at(8);
    strut.topEnd = at(9);
    strut.bottomStart = at(10);
    strut.bottomEnd = at(11);
    return strut;
}

}  // namespace

X11Screens::X11Screens(XcbConnection& connection, ScaleFactor scaleFactor)
    : m_connection(connection), m_scaleFactor(std::move(scaleFactor)) {
    if (m_connection.hasExtension(xcb_randr_id)) {
        const auto version = xcbReply(xcb_randr_query_version_reply, m_connection.get(),
                                      xcb_randr_query_version(m_connection, 1, 5));
        m_hasMonitors = version && (version->major_version > 1 || version->minor_version >= 5);
        m_firstRandrEvent = xcb_get_extension_data(m_connection, &xcb_randr_id)->first_event;
        xcb_randr_select_input(
            m_connection, m_connection.root(),
            XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE | XCB_RANDR_NOTIFY_MASK_OUTPUT_PROPERTY);
    }
    m_connection.selectRootEvents(XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    m_subscriptions.keep(
        m_connection.onEvent([this](const xcb_generic_event_t& event) { handleEvent(event); }));
    m_subscriptions.keep(m_connection.onBurstEnd([this] {
        if (std::exchange(m_needsRefresh, false)) refresh();
    }));
    refresh();
}

std::optional<ScreenInfo> X11Screens::mainScreen() const {
    const auto& all = m_space.screens();
    return all.isEmpty() ? std::nullopt : std::optional(all.first());
}

Point X11Screens::pointerLocation() const {
    const auto pointer = xcbReply(xcb_query_pointer_reply, m_connection.get(),
                                  xcb_query_pointer(m_connection, m_connection.root()));
    return pointer ? m_space.toGlobal(QPoint(pointer->root_x, pointer->root_y)) : Point();
}

Subscription X11Screens::onScreensChanged(std::function<void()> callback) {
    return m_changed.subscribe(std::move(callback));
}

void X11Screens::refresh() {
    const QSize root = rootSize();
    QList<NativeScreen> monitors = readMonitors();
    const QList<PanelStrut> panels = readPanels(root);
    const QList<QRect> workAreas = readWorkAreas(monitors.size());
    for (NativeScreen& monitor : monitors) {
        monitor.visibleFrame = visibleFrameBesidePanels(monitor.frame, panels, root);
        for (const QRect& area : workAreas)
            if (area.intersects(monitor.visibleFrame)) monitor.visibleFrame &= area;
    }

    DesktopSpace space(std::move(monitors), root);
    if (space == m_space) return;
    m_space = std::move(space);
    m_changed.notify();
}

void X11Screens::handleEvent(const xcb_generic_event_t& event) {
    const uint8_t type = event.response_type & 0x7f;
    const X11Atoms& atoms = m_connection.atoms();
    if (m_hasMonitors && (type == m_firstRandrEvent + XCB_RANDR_SCREEN_CHANGE_NOTIFY ||
                          type == m_firstRandrEvent + XCB_RANDR_NOTIFY)) {
        m_needsRefresh = true;
    } else if (type == XCB_CONFIGURE_NOTIFY) {
        // A monitor made by a client shows only as a ConfigureNotify of the root on some servers.
        const auto& configure = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
        const bool isPanel = std::find(m_panelWindows.begin(), m_panelWindows.end(),
                                       configure.window) != m_panelWindows.end();
        m_needsRefresh |= configure.window == m_connection.root() || isPanel;
    } else if (type == XCB_PROPERTY_NOTIFY) {
        const auto& property = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        const bool isRoot = property.window == m_connection.root();
        m_needsRefresh |=
            isRoot && (property.atom == atoms.netClientList || property.atom == atoms.netWorkarea ||
                       property.atom == atoms.netCurrentDesktop ||
                       property.atom == atoms.netSupportingWmCheck);
        m_needsRefresh |= !isRoot && (property.atom == atoms.netWmStrut ||
                                      property.atom == atoms.netWmStrutPartial);
    }
}

QList<NativeScreen> X11Screens::readMonitors() const {
    QList<NativeScreen> monitors;
    if (m_hasMonitors) {
        const auto reply = xcbReply(xcb_randr_get_monitors_reply, m_connection.get(),
                                    xcb_randr_get_monitors(m_connection, m_connection.root(), 1));
        if (!reply) return {};
        std::vector<xcb_get_atom_name_cookie_t> names;
        for (auto i = xcb_randr_get_monitors_monitors_iterator(reply.get()); i.rem > 0;
             xcb_randr_monitor_info_next(&i))
            names.push_back(xcb_get_atom_name(m_connection, i.data->name));
        auto nameRequest = names.begin();
        for (auto i = xcb_randr_get_monitors_monitors_iterator(reply.get()); i.rem > 0;
             xcb_randr_monitor_info_next(&i)) {
            const auto atomName =
                xcbReply(xcb_get_atom_name_reply, m_connection.get(), *nameRequest++);
            if (i.data->width == 0 || i.data->height == 0) continue;
            const QString name =
                atomName ? QString::fromUtf8(xcb_get_atom_name_name(atomName.get()),
                                             xcb_get_atom_name_name_length(atomName.get()))
                         : QString();
            const QRect frame(i.data->x, i.data->y, i.data->width, i.data->height);
            const NativeScreen monitor{name, frame, frame, std::max(m_scaleFactor(name), 0.1)};
            if (i.data->primary)
                monitors.prepend(monitor);
            else
                monitors.append(monitor);
        }
    } else {
        const QRect frame(QPoint(0, 0), rootSize());
        monitors.append({QStringLiteral("screen"), frame, frame, m_scaleFactor(QString())});
    }
    return monitors;
}

QList<PanelStrut> X11Screens::readPanels(QSize root) {
    struct Panel {
        xcb_window_t window;
        std::vector<uint32_t> strut;
        xcb_get_geometry_cookie_t geometry;
        xcb_translate_coordinates_cookie_t inRoot;
    };
    std::vector<Panel> found;
    for (auto& [window, strut] : readPanelHints()) {
        const uint32_t eventMask = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        xcb_change_window_attributes(m_connection, window, XCB_CW_EVENT_MASK, &eventMask);
        found.push_back(
            {window, std::move(strut), xcb_get_geometry(m_connection, window),
             xcb_translate_coordinates(m_connection, window, m_connection.root(), 0, 0)});
    }

    m_panelWindows.clear();
    QList<PanelStrut> panels;
    for (const Panel& panel : found) {
        m_panelWindows.push_back(panel.window);
        const auto geometry = xcbReply(xcb_get_geometry_reply, m_connection.get(), panel.geometry);
        const auto inRoot =
            xcbReply(xcb_translate_coordinates_reply, m_connection.get(), panel.inRoot);
        if (geometry && inRoot && panel.strut.size() >= 4)
            panels.append(strutFrom(panel.strut, geometryOf(geometry, inRoot), root));
    }
    return panels;
}

std::vector<X11Screens::PanelHints> X11Screens::readPanelHints() const {
    struct Request {
        xcb_window_t window;
        xcb_get_property_cookie_t partialStrut;
        xcb_get_property_cookie_t strut;
        xcb_get_property_cookie_t types;
    };
    const X11Atoms& atoms = m_connection.atoms();
    std::vector<Request> requests;
    for (const xcb_window_t window :
         m_connection.property32(m_connection.root(), atoms.netClientList))
        requests.push_back({window, m_connection.requestProperty(window, atoms.netWmStrutPartial),
                            m_connection.requestProperty(window, atoms.netWmStrut),
                            m_connection.requestProperty(window, atoms.netWmWindowType)});

    std::vector<PanelHints> panels;
    for (const Request& request : requests) {
        auto strut = m_connection.takeProperty32(request.partialStrut);
        auto olderStrut = m_connection.takeProperty32(request.strut);
        const auto types = m_connection.takeProperty32(request.types);
        if (strut.size() < 12) strut = std::move(olderStrut);
        const bool isDock =
            std::find(types.begin(), types.end(), atoms.netWmWindowTypeDock) != types.end();
        // A dock may set its strut later.
        if (isDock || strut.size() >= 4) panels.push_back({request.window, std::move(strut)});
    }
    return panels;
}

// Some desktops draw their panels without windows that could ask for space. They tell what is left
// of each monitor in a property of their own; the standard one has a single area for everything,
// which says enough only where there is a single monitor.
QList<QRect> X11Screens::readWorkAreas(qsizetype monitorCount) const {
    const X11Atoms& atoms = m_connection.atoms();
    const xcb_window_t root = m_connection.root();
    // What a window manager that is gone has left behind does not count.
    const auto check = m_connection.property32(root, atoms.netSupportingWmCheck);
    if (check.empty() ||
        m_connection.property32(check.front(), atoms.netSupportingWmCheck) != check)
        return {};
    const auto desktop = m_connection.property32(root, atoms.netCurrentDesktop);
    const uint32_t current = desktop.empty() ? 0 : desktop.front();

    auto values = m_connection.property32(
        root, m_connection.atom("_GTK_WORKAREAS_D" + QByteArray::number(current)));
    if (values.empty() && monitorCount == 1) {
        const auto everyDesktop = m_connection.property32(root, atoms.netWorkarea);
        const std::size_t first = std::size_t{4} * current;
        if (everyDesktop.size() >= first + 4)
            values.assign(everyDesktop.begin() + static_cast<std::ptrdiff_t>(first),
                          everyDesktop.begin() + static_cast<std::ptrdiff_t>(first) + 4);
    }
    QList<QRect> areas;
    for (std::size_t i = 0; i + 3 < values.size(); i += 4)
        areas.append(QRect(static_cast<int>(values[i]), static_cast<int>(values[i + 1]),
                           static_cast<int>(values[i + 2]), static_cast<int>(values[i + 3])));
    return areas;
}

QSize X11Screens::rootSize() const {
    const auto geometry = xcbReply(xcb_get_geometry_reply, m_connection.get(),
                                   xcb_get_geometry(m_connection, m_connection.root()));
    const xcb_screen_t& screen = m_connection.screen();
    return geometry ? QSize(geometry->width, geometry->height)
                    : QSize(screen.width_in_pixels, screen.height_in_pixels);
}
