#pragma once

#include <QImage>

/// The program's picture for trays: a template of one colour on nothing.
namespace TrayPicture {

/// Black or white, of that many pixels a side; whichever is told from the ground of the tray.
QImage image(bool isOnLight, int side);

/// Whether black is told better from these pixels than white.
bool isLight(const QImage& ground);

}  // namespace TrayPicture
