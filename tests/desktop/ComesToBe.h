#pragma once

#include "Models/Geometry.h"
#include "support/desktop/Wait.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QRect>
#include <QString>
#include <gtest/gtest.h>

inline void PrintTo(const QString& text, std::ostream* stream) {
    *stream << text.toStdString();
}

inline void PrintTo(const QJsonObject& object, std::ostream* stream) {
    *stream << QJsonDocument(object).toJson().constData();
}

inline void PrintTo(const QJsonValue& value, std::ostream* stream) {
    PrintTo(QJsonObject{{QStringLiteral("value"), value}}, stream);
}

inline void PrintTo(const QRect& rect, std::ostream* stream) {
    *stream << rect.width() << "x" << rect.height() << "+" << rect.x() << "+" << rect.y();
}

inline void PrintTo(const Rect& rect, std::ostream* stream) {
    *stream << rect.width << "x" << rect.height << " at " << rect.x << ", " << rect.y;
}

/// Whether what `get` tells comes to be that; the failure says what it is instead.
template <typename Get, typename Value>
testing::AssertionResult comesToBe(const Get& get, const Value& expected) {
    auto seen = get();
    if (waitUntil([&] { return (seen = get()) == expected; })) return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << testing::PrintToString(seen) << " instead of " << testing::PrintToString(expected);
}
