#pragma once

#include <QColor>
#include <QImage>
#include <QPainter>
#include <QPointF>
#include <QString>

enum class SymbolWeight { light, regular, semibold, bold };

/// A picture of the icon set, drawn like a character of a font.
struct Symbol {
    QString name;
    /// Font size, in points, of the text that the symbol would stand beside.
    double size = 12;
    SymbolWeight weight = SymbolWeight::regular;
    QColor color;

    /// Side in points of the square that the symbol is drawn in. The set leaves a sixth of it
    /// empty around the drawing, which is then about as high as the font size.
    double side() const { return 1.25 * size; }

    bool operator==(const Symbol&) const = default;
};

/// Draws symbols from the resources `:/icons/NAME.svg`, tinted in their colour. What was drawn last
/// is kept for the thread, so that drawing it again costs a copy.
class SymbolPainter {
public:
    /// Whether the icon set has a drawing of that name.
    static bool hasSymbol(const QString& name);

    /// The symbol with `scale` device pixels to a point, which the image carries as its device
    /// pixel ratio. Null when there is no such symbol.
    static QImage image(const Symbol& symbol, double scale);

    /// Draws the symbol on the pixels nearest to `center`, in the painter's coordinates. Draws
    /// nothing when there is no such symbol.
    static void paint(QPainter& painter, const Symbol& symbol, QPointF center);
};
