#pragma once

#include "Platform/SystemLog.h"

/// Writes to the log category of the application's identifier, which Qt sends to standard error, or
/// to the journal where there is no terminal.
class StderrLog final : public SystemLog {
public:
    /// Makes every message of the process a plain line, unless $QT_MESSAGE_PATTERN says otherwise.
    StderrLog();

    void write(const QString& line) override;
};
