#pragma once

#include "Models/AppearanceWishes.h"

class QAbstractScrollArea;
class QWidget;

/// Gives standard controls and dialogs the program's dark colours, and windows its icon, as the
/// user wishes. To be called with a QApplication, and again when the wishes change; colours are
/// those of the new wishes in windows that are made from then on.
void applyVeylaLook(const AppearanceWishes& wishes = {});

/// How long a movement or fade takes that usually takes so long, in milliseconds: no time at all
/// for who wishes for less motion.
int motionDuration(int usualMilliseconds);

/// The look of a menu, or of a menu bar with its menus.
void styleMenus(QWidget& menuOrBar);

/// A text of the user's as the title of a menu item: on one line, not too long, and every
/// character as it is.
QString menuTitle(const QString& text);

/// The look of the vertical scroll bar.
void styleScrollBar(QAbstractScrollArea& area);
