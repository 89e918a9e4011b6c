#pragma once

#include "Platform/X11/XcbConnection.h"

#include <QtGlobal>
#include <vector>

/// Which of the server's modifiers Mod1 to Mod5 hold what, as X11 masks.
struct ModifierMap {
    uint16_t alt = XCB_MOD_MASK_1;
    uint16_t super = XCB_MOD_MASK_4;
    /// Zero when nothing holds it.
    uint16_t numLock = 0;
    uint16_t scrollLock = 0;

    /// As the server has it now. Alt and Super stay at their usual places when no key bears them.
    static ModifierMap read(XcbConnection& connection);

    /// The X11 mask of a binding's modifiers: Option is Alt and Command is Super. Bits that mean no
    /// modifier are dropped.
    uint16_t maskOf(quint32 bindingModifiers) const;
    /// The modifiers that stay switched on, and that a combination is pressed with or without.
    uint16_t locks() const;
    /// `mask` with every combination of the locks, itself first.
    std::vector<uint16_t> withLocks(uint16_t mask) const;

    bool operator==(const ModifierMap&) const = default;
};
