#include "contract/DesktopContract.h"
#include "support/HeadlessHarness.h"

INSTANTIATE_TYPED_TEST_SUITE_P(Headless, DesktopContract, HeadlessHarness);
