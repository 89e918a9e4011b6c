#pragma once

#include "Models/ScreenMask.h"

/// That many masks of 100 by 60 points in rows from the top left of a screen of 1280 by 800 points,
/// one over the other where the screen is full, in turn of every style.
QList<ScreenMask> rowsOfMasks(int count);
