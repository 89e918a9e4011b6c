#pragma once

#include <QJsonObject>
#include <QString>

class AppState;

/// What the program is doing, for scripts. Members that have no value are null.
/// Throws JsonError when a number of a mask is not finite.
QJsonObject statusJson(const AppState& state);

/// The same for people: lines of aligned columns, without the last line break.
QString statusText(const AppState& state);
