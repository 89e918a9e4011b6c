#pragma once

#include "Platform/Qt/SessionBus.h"
#include "Reactive/Published.h"

#include <QObject>
#include <QSet>
#include <QString>
#include <memory>

/// Whether the desktop says that its screen is locked: the screen savers of the session bus, and
/// the login manager of the system bus. Where neither tells, it is taken not to be locked.
class SessionLock final : public QObject {
    Q_OBJECT

public:
    /// Asks in a later turn, so that the start does not wait for a bus.
    SessionLock();

    const Published<bool>& isLocked() const { return m_isLocked; }

private Q_SLOTS:
    void noteSaver(bool isActive, const QDBusMessage& signal);
    void readHint();

private:
    void listen();
    void publish();

    std::unique_ptr<SessionBus> m_bus;
    // The interfaces that told of a locked screen.
    QSet<QString> m_activeSavers;
    bool m_isHintSet = false;
    Published<bool> m_isLocked{false};
};
