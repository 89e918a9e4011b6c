#pragma once

#include "Platform/SystemLog.h"

#include <QString>
#include <QStringList>

/// Keeps what is written to it.
class RecordingSystemLog : public SystemLog {
public:
    void write(const QString& line) override { lines.append(line); }

    QStringList lines;
};
