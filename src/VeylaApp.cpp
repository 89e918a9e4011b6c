#include "VeylaApp.h"

VeylaApp::VeylaApp(const AppPlatform& platform, RemoteControlService& remoteControl)
    : m_mainLoop(platform.mainLoop),
      m_state(platform),
      m_commands(m_state, m_dashboard, [this] { m_mainLoop.quit(0); }),
      m_signalWatcher([this] { m_mainLoop.quit(0); }) {
    remoteControl.start(
        [this](const QStringList& arguments) { return m_commands.perform(arguments); });
}

int VeylaApp::run() {
    return m_mainLoop.run();
}
