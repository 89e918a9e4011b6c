#include "Views/Design/Shadow.h"

#include "Views/Design/VeylaCard.h"

#include <QPainter>
#include <algorithm>

// Layers from the outside in, each a little smaller, whose opacities add up to the falling edge of
// a blur. A blur proper would need an image of the size of the card.
void paintShadow(QPainter& painter, const QRectF& rect, double cornerRadius,
                 const ShadowLook& look) {
    constexpr int layers = 20;
    const QRectF shape = rect.translated(look.offset);
    double sofar = 0;
    for (int layer = 1; layer <= layers; ++layer) {
        const double part = static_cast<double>(layer) / layers;
        const double total = look.color.alphaF() * part * part * (3 - 2 * part);
        const double reach = look.blurRadius * (1 - 2 * part) / 2 + look.blurRadius / 4;
        QColor color = look.color;
        color.setAlphaF(static_cast<float>((total - sofar) / (1 - sofar)));
        paintPanel(painter, shape.adjusted(-reach, -reach, reach, reach),
                   std::max(1.0, cornerRadius + reach), color);
        sofar = total;
    }
}
