#include "support/desktop/XServer.h"

using namespace Qt::Literals::StringLiterals;

XServer::XServer(const QProcessEnvironment& environment, const Options& options)
    : m_process(u"Xvfb"_s,
                QStringList{
                    u"-displayfd"_s, u"1"_s, u"-screen"_s, u"0"_s,
                    u"%1x%2x24"_s.arg(options.screenSize.width()).arg(options.screenSize.height()),
                    u"-nolisten"_s, u"tcp"_s, u"-noreset"_s} +
                    options.extraArguments,
                environment),
      m_displayName(u':' + QString::fromLatin1(m_process.waitForFirstLine().trimmed())) {}
