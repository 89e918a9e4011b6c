#include "support/desktop/TemporaryHome.h"

#include <QApplication>
#include <cstdio>
#include <gtest/gtest.h>

namespace {

// The offscreen platform cannot raise windows and says so each time.
void forward(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (message.startsWith(QLatin1StringView("This plugin does not support"))) return;
    std::fprintf(stderr, "%s\n", qPrintable(qFormatLogMessage(type, context, message)));
}

}  // namespace

/// Needs no display, and the only network is that of this machine.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const TemporaryHome home;
    const QProcessEnvironment environment = home.environment();
    for (const QString& name : environment.keys())
        qputenv(name.toUtf8().constData(), environment.value(name).toUtf8());
    for (const char* const proxy : {"http_proxy", "https_proxy", "all_proxy"})
        qunsetenv(proxy);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler(forward);
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
