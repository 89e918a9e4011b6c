#pragma once

#include <QRect>
#include <QString>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <vector>
#include <xcb/xcb.h>

/// Frees what xcb returns.
struct XcbMemoryFree {
    void operator()(void* memory) const { std::free(memory); }
};
template <typename T>
using XcbPtr = std::unique_ptr<T, XcbMemoryFree>;

/// A connection to an X server with the few requests that the test clients share. Independent of
/// the program's own X11 code, so that one does not repeat the other's mistakes.
class XClient {
public:
    /// An empty name means DISPLAY. Throws std::runtime_error when there is no such server.
    explicit XClient(const QString& displayName = {});
    /// Closes the connection; the server destroys what the client made.
    virtual ~XClient();
    XClient(const XClient&) = delete;
    XClient& operator=(const XClient&) = delete;

    xcb_connection_t* connection() const { return m_connection; }
    const xcb_screen_t& screen() const { return *m_screen; }
    xcb_window_t root() const { return m_screen->root; }
    bool isConnected() const { return xcb_connection_has_error(m_connection) == 0; }

    /// Returns when the server has handled every request so far.
    void roundTrip() const;

    /// The answer to a request; null when it failed.
    template <typename Reply, typename Cookie>
    XcbPtr<Reply> reply(Reply* (*take)(xcb_connection_t*, Cookie, xcb_generic_error_t**),
                        Cookie cookie) const {
        return XcbPtr<Reply>(take(m_connection, cookie, nullptr));
    }

    xcb_atom_t atom(const QString& name) const;
    QString atomName(xcb_atom_t atom) const;

    /// The root's rectangle when `window` is the root. Relative to the parent, as the server has
    /// it; nothing when there is no such window.
    std::optional<QRect> geometry(xcb_window_t window) const;

    /// The values of a property of format 32; empty when there is none.
    std::vector<std::uint32_t> numbersOf(xcb_window_t window, const QString& property) const;
    void setNumbers(xcb_window_t window, const QString& property, const QString& type,
                    const std::vector<std::uint32_t>& values);

    /// The bytes of a property of format 8 as UTF-8 text; nothing when there is none.
    std::optional<QString> textOf(xcb_window_t window, const QString& property) const;
    void setText(xcb_window_t window, const QString& property, const QString& text);

    /// Whether a window has a state such as "_NET_WM_STATE_ABOVE".
    bool hasState(xcb_window_t window, const QString& state) const;
    /// The window that has the keyboard.
    xcb_window_t focus() const;
    /// The window that the window manager calls the active one; XCB_NONE without one.
    xcb_window_t activeWindow() const;
    /// The window that owns a selection such as "_NET_WM_CM_S0"; XCB_NONE without one.
    xcb_window_t selectionOwner(const QString& selection) const;

private:
    XcbPtr<xcb_get_property_reply_t> property(xcb_window_t window, const QString& name) const;

    xcb_connection_t* m_connection;
    const xcb_screen_t* m_screen = nullptr;
};
