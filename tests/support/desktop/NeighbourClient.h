#pragma once

#include "support/desktop/XClient.h"

#include <QColor>
#include <QList>

/// A button or key press that reached a neighbour's window.
struct NeighbourInput {
    xcb_window_t window = XCB_NONE;
    bool isKey = false;
    /// The button's number or the keycode.
    int detail = 0;
};

/// Another program on the same desktop: plain windows of one colour, on a connection of its own.
/// Its windows have no decorations, so that they cover exactly their frames, and go when it goes.
/// Frames are device pixels of the root, y down.
class NeighbourClient : public XClient {
public:
    struct WindowOptions {
        QRect frame{100, 100, 300, 200};
        QColor color{Qt::white};
        bool isOverrideRedirect = false;
        QString title = QStringLiteral("Neighbour");
        /// Both the instance and the class.
        QString windowClass = QStringLiteral("neighbour");
        /// As in "_NET_WM_WINDOW_TYPE_DOCK"; empty for a normal window.
        QString windowType{};
    };
    enum class Edge { left, bottom };

    using XClient::XClient;

    /// Makes a window that is not mapped yet.
    xcb_window_t create(const WindowOptions& options);
    /// Makes a window and returns when it is viewable. Throws std::runtime_error when it never is.
    xcb_window_t open(const WindowOptions& options);
    /// A panel at an edge of the root that reserves its frame's extent along that edge and
    /// everything from there to the edge.
    xcb_window_t openDock(const QRect& frame, Edge edge);

    /// Also of another program's window.
    bool isViewable(xcb_window_t window) const;
    /// Whether any other shown window is higher in the order and overlaps the window.
    bool isObscured(xcb_window_t window) const;
    void raise(xcb_window_t window);
    void lower(xcb_window_t window);
    void move(xcb_window_t window, const QRect& frame);
    void map(xcb_window_t window);
    void unmap(xcb_window_t window);
    void destroy(xcb_window_t window);
    /// Into a window of its own that is never shown.
    void takeAway(xcb_window_t window);
    /// Leaves nothing of the window to be seen.
    void shapeAway(xcb_window_t window);
    /// Sends everybody who watches the root such an event, which the server marks as sent.
    void forge(std::uint8_t type, xcb_window_t window);
    void setColor(xcb_window_t window, const QColor& color);

    /// Asks the window manager for a state such as "_NET_WM_STATE_FULLSCREEN".
    void requestState(xcb_window_t window, const QString& state);
    /// Asks the window manager to make the window the active one.
    void requestActivation(xcb_window_t window);

    /// Asks the window manager to show a workspace, of two.
    void requestWorkspace(int index);

    /// Takes the whole keyboard; false when another client has it.
    [[nodiscard]] bool grabKeyboard();
    /// Takes a key from everyone else; false when another client has it.
    [[nodiscard]] bool grabKey(std::uint8_t keycode, std::uint16_t modifiers);
    void ungrabKey(std::uint8_t keycode, std::uint16_t modifiers);

    /// What has reached the windows since the last call, in order.
    QList<NeighbourInput> takeInput();

private:
    void configure(xcb_window_t window, std::uint16_t mask,
                   const std::vector<std::uint32_t>& values);
    void sendToManager(xcb_window_t window, const QString& type,
                       const std::vector<std::uint32_t>& values);
};
