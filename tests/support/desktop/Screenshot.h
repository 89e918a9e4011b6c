#pragma once

#include "support/desktop/XClient.h"

#include <QColor>
#include <QImage>

/// What is on the screen, or in one window, as the server has it. Coordinates are device pixels, y
/// down.
class Screenshot {
public:
    /// Of the whole root. Throws std::runtime_error when the server gives no image of 32 bits a
    /// pixel.
    explicit Screenshot(const XClient& client) : Screenshot(client, client.root()) {}
    /// Of a window, with its transparency when its depth is 32. The window must be viewable.
    Screenshot(const XClient& client, xcb_window_t window);

    const QImage& image() const { return m_image; }
    QColor pixel(int x, int y) const { return m_image.pixelColor(x, y); }
    QColor pixel(QPoint position) const { return m_image.pixelColor(position); }

private:
    QImage m_image;
};
