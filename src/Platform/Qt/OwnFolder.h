#pragma once

#include <QString>

/// Makes the folder, and those missing above it, with access for the user alone. One that is there
/// already stays as it is. False when there is no such folder in the end.
bool makeOwnFolder(const QString& path);
