#pragma once

#include "support/desktop/ChildProcess.h"

#include <QString>
#include <memory>

class DesktopSession;

/// A panel along an edge of the screen with a tray of the kind whose icons are windows.
class TrayPanel {
public:
    /// The position is vertical edge, place on it and direction, as in "top right horizontal".
    /// Returns when icons can come. Throws std::runtime_error when it does not start.
    explicit TrayPanel(DesktopSession& desktop,
                       const QString& position = QStringLiteral("bottom center horizontal"),
                       const QString& color = QStringLiteral("#202020"));

private:
    std::unique_ptr<ChildProcess> m_process;
};
