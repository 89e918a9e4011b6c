#pragma once

#include <QStringList>

/// What menu bar utility mode and the dashboard on launch do together, as it stands below both: a
/// sentence on two lines.
inline QStringList trayOnlyCaption() {
    return {QStringLiteral("Utility mode without the dashboard on launch keeps"),
            QStringLiteral("Veyla in the tray only, as long as there is one.")};
}
