#pragma once

#include "support/desktop/ChildProcess.h"

/// The accessibility bus of a session and the registry on it.
class AccessibilityBus {
public:
    /// Returns when the session bus of the environment knows `org.a11y.Bus` and the registry is
    /// running. Throws std::runtime_error when the programs of at-spi2-core are missing or do not
    /// get there.
    explicit AccessibilityBus(const QProcessEnvironment& environment);

    /// Where AT-SPI clients connect.
    QString address() const { return m_address; }

private:
    ChildProcess m_launcher;
    QString m_address;
};
