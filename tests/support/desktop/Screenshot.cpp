#include "support/desktop/Screenshot.h"

#include <stdexcept>

Screenshot::Screenshot(const XClient& client, xcb_window_t window) {
    const QSize size = client.geometry(window).value_or(QRect()).size();
    const XcbPtr<xcb_get_image_reply_t> reply(
        xcb_get_image_reply(client.connection(),
                            xcb_get_image(client.connection(), XCB_IMAGE_FORMAT_Z_PIXMAP, window, 0,
                                          0, static_cast<std::uint16_t>(size.width()),
                                          static_cast<std::uint16_t>(size.height()), ~0U),
                            nullptr));
    const int bytesPerLine = size.width() * 4;
    if (!reply || xcb_get_image_data_length(reply.get()) < bytesPerLine * size.height()) {
        throw std::runtime_error("the server gives no image of 32 bits a pixel");
    }
    const auto format =
        reply->depth == 32 ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
    // Copied, since the reply's memory goes away.
    m_image =
        QImage(xcb_get_image_data(reply.get()), size.width(), size.height(), bytesPerLine, format)
            .copy();
}
