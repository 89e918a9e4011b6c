#include "Platform/Headless/HeadlessApplicationHost.h"

void HeadlessApplicationHost::setActivationPolicy(ActivationPolicy policy) {
    m_policy = policy;
    m_log << (policy == ActivationPolicy::regular ? QStringLiteral("regular")
                                                  : QStringLiteral("accessory"));
}

std::shared_ptr<HeadlessWindow> HeadlessApplicationHost::addWindow(const QString& title,
                                                                   bool isPanel, bool hasContent) {
    auto window = std::make_shared<HeadlessWindow>(title, isPanel, hasContent);
    m_windows.push_back(window);
    return window;
}
