#pragma once

class QWidget;
class VeylaCommands;

/// Lets the shortcuts of the "Veyla" menu act in a window that has no menu, as they do in the one
/// that has it. The commands must outlive the window.
void addCommandShortcuts(QWidget& window, const VeylaCommands& commands);
