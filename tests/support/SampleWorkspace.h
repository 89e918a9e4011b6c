#pragma once

#include "Models/WorkspaceSnapshot.h"
#include "support/Files.h"

/// A document in the form that people have on their disks.
inline QByteArray sampleText() {
    return readFile(QStringLiteral(VEYLA_SOURCE_DIR "/tests/support/sample-workspace.json"));
}

/// A workspace in which every optional member is present and every list holds something.
inline WorkspaceSnapshot sampleWorkspace() {
    return WorkspaceSnapshot::fromJsonText(sampleText());
}
