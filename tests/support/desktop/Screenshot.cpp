#include "support/desktop/Screenshot.h"

#include <stdexcept>

Screenshot::Screenshot(const XClient& client) {
    const QSize size = client.geometry(client.root()).value_or(QRect()).size();
    const auto reply =
        client.reply(xcb_get_image_reply,
                     xcb_get_image(client.connection(), XCB_IMAGE_FORMAT_Z_PIXMAP, client.root(), 0,
                                   0, static_cast<std::uint16_t>(size.width()),
                                   static_cast<std::uint16_t>(size.height()), ~0U));
    const int bytesPerLine = size.width() * 4;
    if (!reply || xcb_get_image_data_length(reply.get()) < bytesPerLine * size.height()) {
        throw std::runtime_error("the server gives no image of 32 bits a pixel");
    }
    // Copied, since the reply's memory goes away.
    m_image = QImage(xcb_get_image_data(reply.get()), size.width(), size.height(), bytesPerLine,
                     QImage::Format_RGB32)
                  .copy();
}
