#include "contract/DesktopContract.h"
#include "support/desktop/X11Harness.h"
#include "support/desktop/X11WorkspaceHarness.h"

INSTANTIATE_TYPED_TEST_SUITE_P(X11, DesktopContract, X11Harness);
INSTANTIATE_TYPED_TEST_SUITE_P(X11, WorkspaceContract, X11WorkspaceHarness);
