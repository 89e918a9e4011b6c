#include "contract/DesktopContract.h"
#include "contract/WorkspaceContract.h"
#include "support/desktop/Wait.h"
#include "support/desktop/X11Harness.h"
#include "support/desktop/X11WorkspaceHarness.h"

INSTANTIATE_TEST_SUITE_P(X11, DesktopContract,
                         testing::Values([] { return std::make_unique<X11Harness>(); }));
INSTANTIATE_TEST_SUITE_P(X11, WorkspaceContract,
                         testing::Values([] { return std::make_unique<X11WorkspaceHarness>(); }));

TEST(X11PointerPresses, AreToldUntilEitherSideIsGone) {
    X11Harness harness;
    auto presses = std::make_unique<X11PointerPresses>(harness.desktop().connection());
    int count = 0;
    Subscription first = presses->onPress([&](auto) { ++count; });
    Subscription second = presses->onPress([&](auto) { ++count; });
    const auto click = [&] {
        harness.pressLeft();
        harness.releaseLeft();
        harness.settle();
    };
    click();
    EXPECT_TRUE(waitUntil([&] { return count == 2; })) << count;
    first.reset();
    click();
    EXPECT_TRUE(waitUntil([&] { return count == 3; })) << count;
    presses.reset();
    second.reset();
    click();
    EXPECT_EQ(count, 3);
}
