#include "support/OffscreenPlatform.h"
#include "support/desktop/TemporaryHome.h"

#include <QApplication>
#include <gtest/gtest.h>

/// Needs no display, and the only network is that of this machine.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const TemporaryHome home;
    const QProcessEnvironment environment = home.environment();
    for (const QString& name : environment.keys())
        qputenv(name.toUtf8().constData(), environment.value(name).toUtf8());
    for (const char* const proxy : {"http_proxy", "https_proxy", "all_proxy"})
        qunsetenv(proxy);
    useOffscreenPlatform();
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
