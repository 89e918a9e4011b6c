#pragma once

#include "Models/Geometry.h"

#include <QJsonObject>

class JsonObjectReader;
class JsonPath;

/// The rectangle that a mask covers. The record enforces neither a minimum size nor a place on a
/// screen; the overlay layer does.
using MaskFrame = Rect;

/// Throws JsonError when a member is missing or not a number.
MaskFrame maskFrameFromJson(const JsonObjectReader& reader);

/// Throws JsonError, naming the member below `path`, when a value is not finite.
QJsonObject maskFrameToJson(const MaskFrame& frame, const JsonPath& path);
