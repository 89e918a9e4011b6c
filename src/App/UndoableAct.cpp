#include "App/UndoableAct.h"

QString UndoableAct::title() const {
    return (kind == Kind::loadedPreset ? QStringLiteral("Load ") : QStringLiteral("Delete ")) +
           name;
}

QString UndoableAct::notice() const {
    return (kind == Kind::loadedPreset ? QStringLiteral("Loaded ") : QStringLiteral("Deleted ")) +
           name;
}

QString UndoableAct::restoredNotice() const {
    return kind == Kind::loadedPreset ? QStringLiteral("Restored the masks before ") + name
                                      : QStringLiteral("Restored ") + name;
}
