#pragma once

#include <QString>

/// The folder of the workspace document: "Veyla" in $XDG_DATA_HOME, or in ~/.local/share when
/// that is unset or not an absolute path. The folder may not exist yet.
QString workspaceDirectory();
