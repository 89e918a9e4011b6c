#pragma once

#include "Platform/Announcer.h"

/// Sends announcements over the accessibility bus, on the connection that the toolkit holds there.
/// Without that bus nothing happens and nothing fails.
class AtSpiAnnouncer final : public Announcer {
public:
    void announce(const QString& message, int priority) override;
};
