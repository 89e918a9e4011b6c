#pragma once

#include <QColor>
#include <QList>
#include <QPoint>
#include <QString>
#include <chrono>
#include <mutex>
#include <thread>

class XClient;

/// Another client that reads pixels of the root, which is what a compositor has painted where there
/// is one, as fast as the server answers. The colours of the desktop are chosen so that one look at
/// a pixel tells what shows: masks are black, windows that come above them have green alone, and
/// the secret below them has red and blue alone. Whatever has more red or blue than rounding
/// explains is the secret, or a mixture with it.
class LeakMeter {
public:
    using Duration = std::chrono::duration<double, std::milli>;

    static constexpr QRgb secretColor = 0xFFFF00FF;
    static constexpr QRgb newcomerColor = 0xFF00FF00;

    /// Moments of one kind: from the first reading that shows them to the first that does not.
    struct Moments {
        int readings = 0;
        int stretches = 0;
        Duration longest{0};
        /// The colour that had most of it, and how much, of 255.
        QRgb strongest = 0;
        int strength = 0;
    };
    struct Tally {
        int readings = 0;
        Moments leaks;
        Moments covers;
    };

    /// Reads these points, in device pixels of the root, until the end of the object.
    LeakMeter(const QString& displayName, const QList<QPoint>& points);

    /// What was read since the last `reset`, or since the start.
    Tally tally() const;
    void reset();
    /// For how long every point has been black.
    Duration cleanTime() const { return timeSince(m_cleanSince); }
    /// For how long something green has been above a mask.
    Duration coveredTime() const { return timeSince(m_coversSince); }
    /// Whether every point of the last reading has exactly the secret's colour.
    bool seesSecretEverywhere() const;

private:
    using Clock = std::chrono::steady_clock;

    /// Zero for the epoch.
    Duration timeSince(const Clock::time_point& begin) const;
    void read(const XClient& client, const QList<QPoint>& points);
    static void note(Moments& moments, Clock::time_point& since, Clock::time_point now,
                     int strength, QRgb color);

    mutable std::mutex m_mutex;
    Tally m_tally;
    // When the present stretch began; the epoch outside one.
    Clock::time_point m_leaksSince;
    Clock::time_point m_coversSince;
    Clock::time_point m_cleanSince = Clock::now();
    bool m_seesSecretEverywhere = false;
    std::jthread m_thread;
};
