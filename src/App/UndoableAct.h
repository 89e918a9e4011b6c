#pragma once

#include <QString>

/// The last act that took something of the user's away, and that can be undone.
struct UndoableAct {
    enum class Kind { deletedMask, deletedGroup, deletedPreset, loadedPreset };

    Kind kind = Kind::deletedMask;
    /// Of what was deleted or loaded.
    QString name;

    /// As the menu names it after "Undo": "Delete Mask 3".
    QString title() const;
    /// As it is told once it is done: "Deleted Mask 3".
    QString notice() const;
    /// As it is told once it is undone: "Restored Mask 3".
    QString restoredNotice() const;

    bool operator==(const UndoableAct&) const = default;
};
