#include "Platform/Qt/StderrLog.h"

#include <QLoggingCategory>

namespace {
Q_LOGGING_CATEGORY(veylaLog, "app.veyla.Veyla")
}

StderrLog::StderrLog() {
    qSetMessagePattern(QStringLiteral("%{message}"));
}

void StderrLog::write(const QString& line) {
    qCWarning(veylaLog).noquote() << line;
}
