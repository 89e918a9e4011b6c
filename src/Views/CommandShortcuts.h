#pragma once

class QWidget;
class VeylaCommands;

/// Lets the shortcuts of the menus "Edit" and "Veyla" act in a window that has no menu, as they do
/// in the one that has them. The commands must outlive the window.
void addCommandShortcuts(QWidget& window, const VeylaCommands& commands);
