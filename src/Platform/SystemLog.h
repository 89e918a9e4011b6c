#pragma once

#include <QString>

/// The log that the desktop keeps for its programs.
class SystemLog {
public:
    virtual ~SystemLog() = default;

    /// Writes one line.
    virtual void write(const QString& line) = 0;
};
