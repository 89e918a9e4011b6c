#pragma once

#include <cstdlib>
#include <memory>
#include <utility>
#include <xcb/xcb.h>

/// Frees what xcb allocates.
struct XcbFree {
    void operator()(void* memory) const { std::free(memory); }
};

/// A reply or event of the server; null when the request failed.
template <typename T>
using XcbReply = std::unique_ptr<T, XcbFree>;

/// Waits for the reply to a request that was sent before, for example
/// `xcbReply(xcb_query_tree_reply, connection, cookie)`. An error counts as no reply and is not
/// reported elsewhere: windows of other programs may vanish at any time.
template <typename T, typename Cookie>
XcbReply<T> xcbReply(T* (*fetch)(xcb_connection_t*, Cookie, xcb_generic_error_t**),
                     xcb_connection_t* connection, Cookie cookie) {
    xcb_generic_error_t* error = nullptr;
    XcbReply<T> reply(fetch(connection, cookie, &error));
    const XcbReply<xcb_generic_error_t> discarded(error);
    return reply;
}
