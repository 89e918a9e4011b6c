#include "contract/DesktopContract.h"
#include "contract/WorkspaceContract.h"
#include "support/HeadlessHarness.h"

namespace {

class HeadlessWorkspaceHarness final : public WorkspaceHarness {
public:
    Workspace& workspace() override { return m_workspace; }
    bool waitUntil(const std::function<bool()>& condition) override {
        return m_harness.waitUntil(condition);
    }
    void launch(const QString& name) override {
        m_workspace.launch({name, name});
        bringToFront(name);
    }
    void bringToFront(const QString& name) override { m_workspace.activate({name, name}); }
    void quit(const QString& name) override { m_workspace.terminate({name, name}); }

private:
    HeadlessHarness m_harness;
    HeadlessWorkspace& m_workspace = m_harness.desktop().workspace;
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Headless, DesktopContract,
                         testing::Values([] { return std::make_unique<HeadlessHarness>(); }));
INSTANTIATE_TEST_SUITE_P(Headless, WorkspaceContract, testing::Values([] {
                             return std::make_unique<HeadlessWorkspaceHarness>();
                         }));
