#pragma once

#include "Platform/Announcer.h"

#include <QStringList>

/// Keeps what is announced.
class HeadlessAnnouncer final : public Announcer {
public:
    void announce(const QString& message, int priority) override {
        m_messages.append(message);
        m_lastPriority = priority;
    }

    const QStringList& messages() const { return m_messages; }
    int lastPriority() const { return m_lastPriority; }

private:
    QStringList m_messages;
    int m_lastPriority = 0;
};
