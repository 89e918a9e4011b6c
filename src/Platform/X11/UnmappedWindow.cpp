#include "Platform/X11/UnmappedWindow.h"

UnmappedWindow::UnmappedWindow(XcbConnection& connection)
    : m_connection(connection), m_id(xcb_generate_id(connection)) {
    const uint32_t isOverrideRedirect = 1;
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, m_id, connection.root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT,
                      &isOverrideRedirect);
}

void UnmappedWindow::stirStacking() {
    for (const uint32_t mode : {XCB_STACK_MODE_ABOVE, XCB_STACK_MODE_BELOW})
        xcb_configure_window(m_connection, m_id, XCB_CONFIG_WINDOW_STACK_MODE, &mode);
}

bool UnmappedWindow::isKeyboardHeldByAnother() const {
    // The server looks for a holder before it finds that an unmapped window cannot be one.
    const auto reply = xcbReply(xcb_grab_keyboard_reply, m_connection.get(),
                                xcb_grab_keyboard(m_connection, 0, m_id, XCB_CURRENT_TIME,
                                                  XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    return reply && reply->status == XCB_GRAB_STATUS_ALREADY_GRABBED;
}
