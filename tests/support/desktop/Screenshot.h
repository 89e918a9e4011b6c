#pragma once

#include "support/desktop/XClient.h"

#include <QColor>
#include <QImage>

/// What is on the screen as the server has it. Coordinates are device pixels, y down.
class Screenshot {
public:
    /// Of the whole root. Throws std::runtime_error when the server gives no image of 32 bits a
    /// pixel.
    explicit Screenshot(const XClient& client);

    const QImage& image() const { return m_image; }
    QColor pixel(int x, int y) const { return m_image.pixelColor(x, y); }
    QColor pixel(QPoint position) const { return m_image.pixelColor(position); }

    /// How many pixels of a part are as wanted.
    template <typename Wanted>
    int count(const QRect& part, const Wanted& isWanted) const {
        int found = 0;
        for (int y = part.top(); y <= part.bottom(); ++y)
            for (int x = part.left(); x <= part.right(); ++x)
                if (isWanted(pixel(x, y))) ++found;
        return found;
    }

private:
    QImage m_image;
};
