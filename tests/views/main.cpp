#include "Views/Components/AccessibleElement.h"
#include "Views/Design/ApplicationLook.h"
#include "support/OffscreenPlatform.h"

#include <QApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    useOffscreenPlatform();
    QApplication application(argc, argv);
    // Tests turn a virtual clock, and movements go by the real one.
    applyVeylaLook({.isMotionReduced = true});
    installAccessibleElements();
    return RUN_ALL_TESTS();
}
