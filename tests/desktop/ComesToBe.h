#pragma once

#include "support/Printing.h"
#include "support/desktop/Wait.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

inline void PrintTo(const QJsonObject& object, std::ostream* stream) {
    *stream << QJsonDocument(object).toJson().constData();
}

inline void PrintTo(const QJsonValue& value, std::ostream* stream) {
    PrintTo(QJsonObject{{QStringLiteral("value"), value}}, stream);
}

/// Whether what `get` tells comes to be that; the failure says what it is instead.
template <typename Get, typename Value>
testing::AssertionResult comesToBe(const Get& get, const Value& expected) {
    auto seen = get();
    if (waitUntil([&] { return (seen = get()) == expected; })) return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << testing::PrintToString(seen) << " instead of " << testing::PrintToString(expected);
}
