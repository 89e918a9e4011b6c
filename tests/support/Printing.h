#pragma once

#include "Models/Geometry.h"

#include <QRect>
#include <QString>
#include <ostream>

// How failures of tests show values.

inline void PrintTo(const QString& text, std::ostream* stream) {
    *stream << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QRect& rect, std::ostream* stream) {
    *stream << rect.width() << "x" << rect.height() << "+" << rect.x() << "+" << rect.y();
}

inline void PrintTo(const Rect& rect, std::ostream* stream) {
    *stream << rect.width << "x" << rect.height << " at " << rect.x << ", " << rect.y;
}
