#include "Platform/Headless/HeadlessUpdateFramework.h"

std::optional<QString> HeadlessUpdateFramework::start() {
    if (m_startFailure) return m_startFailure;
    m_isStarted = true;
    m_canCheck.set(true);
    return std::nullopt;
}
