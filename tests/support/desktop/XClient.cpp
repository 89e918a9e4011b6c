#include "support/desktop/XClient.h"

#include <algorithm>
#include <stdexcept>

using namespace Qt::Literals::StringLiterals;

namespace {

/// In units of four bytes; far more than any property that a test reads.
constexpr std::uint32_t longestProperty = 1U << 20U;

}  // namespace

XClient::XClient(const QString& displayName) {
    int screenNumber = 0;
    m_connection = xcb_connect(displayName.isEmpty() ? nullptr : displayName.toLatin1().constData(),
                               &screenNumber);
    if (!isConnected()) {
        xcb_disconnect(m_connection);
        throw std::runtime_error("no X server at '" + displayName.toStdString() + "'");
    }
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(m_connection));
    for (; screenNumber > 0; --screenNumber)
        xcb_screen_next(&screens);
    m_screen = screens.data;
}

XClient::~XClient() {
    xcb_disconnect(m_connection);
}

void XClient::roundTrip() const {
    static_cast<void>(focus());
}

xcb_atom_t XClient::atom(const QString& name) const {
    const QByteArray bytes = name.toLatin1();
    const auto found =
        reply(xcb_intern_atom_reply,
              xcb_intern_atom(m_connection, 0, static_cast<std::uint16_t>(bytes.size()),
                              bytes.constData()));
    return found ? found->atom : xcb_atom_t{XCB_NONE};
}

QString XClient::atomName(xcb_atom_t atom) const {
    const auto found = reply(xcb_get_atom_name_reply, xcb_get_atom_name(m_connection, atom));
    if (!found) return {};
    return QString::fromLatin1(xcb_get_atom_name_name(found.get()), found->name_len);
}

std::optional<QRect> XClient::geometry(xcb_window_t window) const {
    const auto found = reply(xcb_get_geometry_reply, xcb_get_geometry(m_connection, window));
    if (!found) return std::nullopt;
    return QRect(found->x, found->y, found->width, found->height);
}

std::vector<std::uint32_t> XClient::numbersOf(xcb_window_t window, const QString& name) const {
    const auto reply = property(window, name);
    if (!reply || reply->format != 32) return {};
    const auto* values = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {values, values + reply->value_len};
}

void XClient::setNumbers(xcb_window_t window, const QString& name, const QString& type,
                         const std::vector<std::uint32_t>& values) {
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, atom(name), atom(type), 32,
                        static_cast<std::uint32_t>(values.size()), values.data());
    roundTrip();
}

std::optional<QString> XClient::textOf(xcb_window_t window, const QString& name) const {
    const auto reply = property(window, name);
    if (!reply || reply->format != 8) return std::nullopt;
    return QString::fromUtf8(static_cast<const char*>(xcb_get_property_value(reply.get())),
                             xcb_get_property_value_length(reply.get()));
}

void XClient::setText(xcb_window_t window, const QString& name, const QString& text) {
    const QByteArray bytes = text.toUtf8();
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, atom(name),
                        atom(u"UTF8_STRING"_s), 8, static_cast<std::uint32_t>(bytes.size()),
                        bytes.constData());
    roundTrip();
}

bool XClient::hasState(xcb_window_t window, const QString& state) const {
    const auto states = numbersOf(window, u"_NET_WM_STATE"_s);
    return std::find(states.begin(), states.end(), atom(state)) != states.end();
}

xcb_window_t XClient::focus() const {
    const auto found = reply(xcb_get_input_focus_reply, xcb_get_input_focus(m_connection));
    return found ? found->focus : xcb_window_t{XCB_NONE};
}

xcb_window_t XClient::activeWindow() const {
    const auto active = numbersOf(root(), u"_NET_ACTIVE_WINDOW"_s);
    return active.empty() ? xcb_window_t{XCB_NONE} : active.front();
}

xcb_window_t XClient::selectionOwner(const QString& selection) const {
    const auto found = reply(xcb_get_selection_owner_reply,
                             xcb_get_selection_owner(m_connection, atom(selection)));
    return found ? found->owner : xcb_window_t{XCB_NONE};
}

XcbPtr<xcb_get_property_reply_t> XClient::property(xcb_window_t window, const QString& name) const {
    return reply(xcb_get_property_reply, xcb_get_property(m_connection, 0, window, atom(name),
                                                          XCB_ATOM_ANY, 0, longestProperty));
}
