#include "Platform/Qt/StderrLog.h"

#include "Models/ApplicationIdentifier.h"

#include <QLoggingCategory>

namespace {
Q_LOGGING_CATEGORY(veylaLog, applicationIdentifier.data())
}

StderrLog::StderrLog() {
    qSetMessagePattern(QStringLiteral("%{message}"));
}

void StderrLog::write(const QString& line) {
    qCWarning(veylaLog).noquote() << line;
}
