#pragma once

class QAbstractScrollArea;
class QWidget;

/// Gives standard controls and dialogs the program's dark colours, and windows its icon. To be
/// called once, with a QApplication.
void applyVeylaLook();

/// The look of a menu, or of a menu bar with its menus.
void styleMenus(QWidget& menuOrBar);

/// The look of the vertical scroll bar.
void styleScrollBar(QAbstractScrollArea& area);
