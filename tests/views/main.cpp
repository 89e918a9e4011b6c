#include "Views/Components/AccessibleElement.h"
#include "Views/Design/ApplicationLook.h"

#include <QApplication>
#include <gtest/gtest.h>

namespace {

QtMessageHandler formerHandler = nullptr;

// The offscreen platform says at every use of a window what it cannot do.
void handleMessage(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    if (!text.startsWith(QLatin1String("This plugin does not support")))
        formerHandler(type, context, text);
}

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    formerHandler = qInstallMessageHandler(handleMessage);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    // Tests turn a virtual clock, and movements go by the real one.
    applyVeylaLook({.isMotionReduced = true});
    installAccessibleElements();
    return RUN_ALL_TESTS();
}
