#include "contract/DesktopContract.h"
#include "support/desktop/X11Harness.h"

INSTANTIATE_TYPED_TEST_SUITE_P(X11, DesktopContract, X11Harness);
