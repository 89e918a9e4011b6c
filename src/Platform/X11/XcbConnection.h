#pragma once

#include "Platform/X11/XcbReply.h"
#include "Reactive/Notifier.h"
#include "Reactive/Subscription.h"

#include <QByteArray>
#include <QObject>
#include <QString>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <vector>
#include <xcb/xcb.h>

class QSocketNotifier;

/// The atoms that Veyla uses, interned together.
struct X11Atoms {
    xcb_atom_t veylaMaskID = XCB_NONE;
    xcb_atom_t utf8String = XCB_NONE;
    xcb_atom_t netWmName = XCB_NONE;
    xcb_atom_t netWmPid = XCB_NONE;
    xcb_atom_t netWmWindowOpacity = XCB_NONE;
    xcb_atom_t wmState = XCB_NONE;
    xcb_atom_t netWmState = XCB_NONE;
    xcb_atom_t netWmStateSkipTaskbar = XCB_NONE;
    xcb_atom_t netWmStateSkipPager = XCB_NONE;
    xcb_atom_t netWmWindowType = XCB_NONE;
    xcb_atom_t netWmWindowTypeDock = XCB_NONE;
    xcb_atom_t netClientList = XCB_NONE;
    xcb_atom_t netActiveWindow = XCB_NONE;
    xcb_atom_t gtkApplicationID = XCB_NONE;
    xcb_atom_t kdeDesktopFile = XCB_NONE;
    xcb_atom_t netWorkarea = XCB_NONE;
    xcb_atom_t netCurrentDesktop = XCB_NONE;
    xcb_atom_t netWmStrut = XCB_NONE;
    xcb_atom_t netWmStrutPartial = XCB_NONE;
    xcb_atom_t netSupportingWmCheck = XCB_NONE;
    xcb_atom_t wmSelection = XCB_NONE;
    xcb_atom_t compositorSelection = XCB_NONE;
    xcb_atom_t traySelection = XCB_NONE;
    xcb_atom_t rootPixmap = XCB_NONE;
    xcb_atom_t settingsSelection = XCB_NONE;
    xcb_atom_t settings = XCB_NONE;
};

/// A connection to the X server of Veyla's own, beside the one of the toolkit: windows on it can
/// outlive a crash without anything else doing so. Hands out events to whoever subscribes, from
/// the main loop, and flushes requests before the loop goes to sleep.
class XcbConnection final : public QObject {
public:
    using EventHandler = std::function<void(const xcb_generic_event_t&)>;

    /// Connects to the display that the environment names. Null when there is none; `error` then
    /// says why.
    static std::unique_ptr<XcbConnection> open(QString* error);
    ~XcbConnection() override;

    xcb_connection_t* get() const { return m_connection; }
    operator xcb_connection_t*() const { return m_connection; }  // NOLINT: reads as the handle
    const xcb_screen_t& screen() const { return *m_screen; }
    xcb_window_t root() const { return m_screen->root; }
    const X11Atoms& atoms() const { return m_atoms; }

    /// Whether a window was made on this connection.
    bool owns(xcb_window_t window) const {
        const xcb_setup_t* const setup = xcb_get_setup(m_connection);
        return (window & ~setup->resource_id_mask) == setup->resource_id_base;
    }

    /// Adds to the events that this connection asks of the root window.
    void selectRootEvents(uint32_t eventMask);

    /// Makes requests of which this program does not hear through the root window. What others do
    /// is not missed: the server serves nobody else until it has carried them out.
    void makeUnheard(const std::function<void()>& requests);

    /// Calls back with every event but those of the pointer, in order. Errors are not events,
    /// and neither is what another program has sent to look like one.
    Subscription onEvent(EventHandler handler);
    /// Calls back with what another program has sent to look like an event. Others may take it for
    /// one.
    Subscription onForgedEvent(EventHandler handler);
    /// Calls back with every event of the pointer: its buttons, its motion, and its coming and
    /// going. They are many and wanted by few.
    Subscription onPointerEvent(EventHandler handler);
    /// Calls back after each burst of events that came together.
    Subscription onBurstEnd(std::function<void()> callback);
    /// Calls back once when the server has closed the connection.
    Subscription onConnectionLost(std::function<void()> callback);

    /// Calls back from the main loop when the reply to a request has come, for example
    /// `whenReplied<xcb_query_tree_reply_t>(cookie, ...)`; the reply is null when the request
    /// failed. The events that have come go first, also between two replies. Requests must be
    /// given in the order in which they were made.
    template <typename Reply, typename Cookie>
    void whenReplied(Cookie cookie, std::function<void(XcbReply<Reply>)> take) {
        m_awaitedReplies.push_back({cookie.sequence, [take = std::move(take)](void* reply) {
                                        take(XcbReply<Reply>(static_cast<Reply*>(reply)));
                                    }});
    }

    /// Sends the requests made so far.
    void flush() { xcb_flush(m_connection); }

    /// Asks for a property; the answer is taken later, so that many requests travel together.
    xcb_get_property_cookie_t requestProperty(xcb_window_t window, xcb_atom_t property) const;
    /// The values of a property of 32-bit items that was asked for, as below. To be called once for
    /// each request.
    std::vector<uint32_t> takeProperty32(xcb_get_property_cookie_t request) const;
    /// The bytes of a property of 8-bit items that was asked for, likewise.
    QByteArray takeProperty8(xcb_get_property_cookie_t request) const;
    /// The values of a property of 32-bit items; empty when it is absent or of another format.
    std::vector<uint32_t> property32(xcb_window_t window, xcb_atom_t property) const;
    /// The bytes of a property of 8-bit items; empty when it is absent or of another format.
    QByteArray property8(xcb_window_t window, xcb_atom_t property) const;
    /// The atom of a name that is only rarely needed; XCB_NONE when nobody has made it yet.
    xcb_atom_t atom(const QByteArray& name) const;
    /// The children of a window, bottom to top; none when there is no such window.
    std::vector<xcb_window_t> children(xcb_window_t window) const;
    /// Whether the server has an extension, by its protocol name.
    bool hasExtension(xcb_extension_t& extension) const;

private:
    XcbConnection(xcb_connection_t* connection, int screenNumber);

    void internAtoms(int screenNumber);
    void processEvents();
    void processQueuedEvents();
    void dispatchQueued();
    bool takeReply();
    void dispatchBurst(xcb_generic_event_t* first);

    xcb_connection_t* m_connection;
    xcb_screen_t* m_screen = nullptr;
    X11Atoms m_atoms;
    uint32_t m_rootEventMask = 0;
    struct AwaitedReply {
        unsigned int sequence;
        /// Owns the reply that it is given.
        std::function<void(void* reply)> take;
    };
    std::deque<AwaitedReply> m_awaitedReplies;
    bool m_isDispatching = false;
    std::unique_ptr<QSocketNotifier> m_socketNotifier;
    Published<const xcb_generic_event_t*> m_event{nullptr};
    Published<const xcb_generic_event_t*> m_pointerEvent{nullptr};
    Published<const xcb_generic_event_t*> m_forgedEvent{nullptr};
    Notifier m_burstEnd;
    Notifier m_connectionLost;
};
