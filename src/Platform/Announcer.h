#pragma once

#include <QString>

/// Spoken status messages for assistive technology.
class Announcer {
public:
    /// The platform's high announcement priority.
    static constexpr int highPriority = 90;

    virtual ~Announcer() = default;

    /// Asks the screen reader to speak `message`, at once when `priority` is high. Does nothing
    /// when no assistive technology can be reached.
    virtual void announce(const QString& message, int priority) = 0;
};
