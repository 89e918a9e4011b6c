#include "support/desktop/XServer.h"

#include <utility>

XServer::XServer(const QProcessEnvironment& environment, Options options)
    : m_environment(environment), m_options(std::move(options)) {
    start({});
}

void XServer::restart() {
    m_process->end();
    start({m_displayName});
}

void XServer::start(const QStringList& display) {
    const QString screen = QStringLiteral("%1x%2x%3")
                               .arg(m_options.size.width())
                               .arg(m_options.size.height())
                               .arg(m_options.depth);
    const QStringList arguments{QStringLiteral("-displayfd"),
                                QStringLiteral("1"),
                                QStringLiteral("-screen"),
                                QStringLiteral("0"),
                                screen,
                                QStringLiteral("-nolisten"),
                                QStringLiteral("tcp"),
                                QStringLiteral("-noreset")};
    m_process = std::make_unique<ChildProcess>(
        QStringLiteral("Xvfb"), display + arguments + m_options.extraArguments, m_environment);
    m_displayName = u':' + QString::fromLatin1(m_process->waitForFirstLine().trimmed());
}
