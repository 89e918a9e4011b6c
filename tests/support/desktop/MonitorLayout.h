#pragma once

#include "support/desktop/XClient.h"

#include <QList>

/// Splits the one screen of an Xvfb into several monitors (RandR 1.5), as a person's desk has them.
class MonitorLayout : public XClient {
public:
    struct Monitor {
        QString name;
        /// Device pixels of the root, y down.
        QRect frame;

        bool operator==(const Monitor&) const = default;
    };

    using XClient::XClient;
    /// Gives the server its own single monitor back.
    ~MonitorLayout() override;

    /// Makes the display have exactly these monitors, the first one primary. Throws
    /// std::runtime_error when the server refuses.
    void set(const QList<Monitor>& monitors);

    /// What the server says now, the primary one first.
    QList<Monitor> current() const;

private:
    bool add(const Monitor& monitor, bool isPrimary);
    void removeAllBut(const QList<Monitor>& kept);
};
