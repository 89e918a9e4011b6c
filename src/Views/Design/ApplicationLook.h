#pragma once

class QApplication;

/// Gives standard controls (menus, tooltips, scroll bars, dialogs) the program's dark colours. To
/// be called once.
void applyVeylaLook(QApplication& application);
