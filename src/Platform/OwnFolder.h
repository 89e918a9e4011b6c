#pragma once

#include <QString>
#include <optional>

/// Why there is no folder.
struct FolderError {
    /// The folder that could not be made, which may lie above the one that was asked for.
    QString path;
    /// As the system words it.
    QString reason;
};

/// Makes the folder, and those missing above it, with access for the user alone, so that they
/// survive a crash of the machine. One that is there already stays as it is.
std::optional<FolderError> makeOwnFolder(const QString& path);

/// Takes the access of others away from a folder. Whether it is now one that nobody else can put
/// anything into: one of somebody else's, or where the file system has no such rights, is not.
bool restrictToOwner(const QString& path);

/// Whether it is a folder of the user's into which nobody else can put anything.
bool isOwnFolder(const QString& path);

/// Makes a new or replaced entry of the folder survive a crash of the machine. Without a result,
/// since some file systems cannot do it and the entry is there already.
void syncFolder(const QString& path);
