#pragma once

#include "Models/WorkspaceSnapshot.h"

/// A workspace in which every optional member is present and every list holds something.
WorkspaceSnapshot sampleWorkspace();
