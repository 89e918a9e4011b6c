#include "Platform/Headless/HeadlessUpdateFramework.h"
#include "Services/UpdaterManager.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

TEST(UpdaterManager, FollowsTheFrameworkFromTheStartAlsoWhenThatFails) {
    HeadlessUpdateFramework framework;
    UpdaterManager manager(framework);
    EXPECT_TRUE(framework.isStarted());
    EXPECT_TRUE(manager.canCheckForUpdates().value());
    framework.setCanCheck(false);
    EXPECT_FALSE(manager.canCheckForUpdates().value());
    manager.checkForUpdates();
    EXPECT_EQ(framework.checkCount(), 1);

    HeadlessUpdateFramework broken;
    broken.failToStart(u"no key"_s);
    UpdaterManager unable(broken);
    EXPECT_FALSE(unable.canCheckForUpdates().value());
    broken.setCanCheck(true);
    EXPECT_TRUE(unable.canCheckForUpdates().value());
}
