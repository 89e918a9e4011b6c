#include "Views/Components/AccessibleElement.h"
#include "Views/Design/ApplicationLook.h"

#include <QApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    applyVeylaLook();
    installAccessibleElements();
    return RUN_ALL_TESTS();
}
