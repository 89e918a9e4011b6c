#pragma once

#include "Models/AppSettings.h"
#include "Models/MaskGroup.h"
#include "Models/MaskPreset.h"
#include "Models/ScreenMask.h"

#include <QByteArray>
#include <QList>
#include <QUuid>
#include <optional>

/// The persisted document: everything that survives a restart.
struct WorkspaceSnapshot {
    QList<ScreenMask> masks;
    QList<MaskPreset> presets;
    QList<MaskGroup> groups;
    /// Stored as given; may name a mask that is not in `masks`.
    std::optional<QUuid> selectedMaskID;
    bool areMasksVisible = true;
    bool isEditingEnabled = true;
    bool hasCompletedOnboarding = false;
    AppSettings settings;

    /// Reads a document. Throws JsonError when the text is not JSON or a member does not fit; the
    /// message names the path of the offending member, as in "masks[2].style: …".
    static WorkspaceSnapshot fromJsonText(const QByteArray& text);

    /// The document as UTF-8, indented, with sorted keys: equal snapshots give equal bytes, and
    /// numbers read back exactly. Throws JsonError when a number is not finite.
    QByteArray toJsonText() const;

    bool operator==(const WorkspaceSnapshot&) const = default;
};
