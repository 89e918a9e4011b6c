#include "desktop/VeylaTest.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDateTime>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <algorithm>
#include <array>
#include <atomic>
#include <condition_variable>
#include <csignal>
#include <mutex>
#include <random>
#include <thread>

using namespace Qt::Literals::StringLiterals;

namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

// Read before the tests take the environment of their own desktop.
const int wantedRounds = qEnvironmentVariableIntValue("VEYLA_CRASH_ROUNDS");
const int wantedSeed = qEnvironmentVariableIntValue("VEYLA_CRASH_SEED");

constexpr std::chrono::milliseconds saveDelay{250};
/// How long a busy machine may take to get to a save. One that has begun takes as long as the disk
/// does.
constexpr std::chrono::milliseconds patience{500};
constexpr std::chrono::milliseconds longestLife{1500};
constexpr int longestRest = 1100;  // milliseconds
constexpr QRect guardRect{40, 640, 240, 120};
const QColor secret(1, 254, 3);

/// What of a state is compared, of the document and of what `status` tells alike.
QJsonObject digest(const QJsonObject& from) {
    QJsonArray masks;
    for (const QJsonValue mask : from["masks"_L1].toArray())
        masks.append(QJsonObject{{u"id"_s, mask["id"_L1]}, {u"frame"_s, mask["frame"_L1]}});
    return {{u"masks"_s, masks}, {u"areMasksVisible"_s, from["areMasksVisible"_L1]}};
}

QJsonArray masksIn(const QJsonObject& state) {
    return state["masks"_L1].toArray();
}

bool isVisible(const QJsonObject& state) {
    return state["areMasksVisible"_L1].toBool();
}

/// On the screen, which has the same scale as the document.
QRect rectOf(const QJsonValue& mask) {
    const QJsonValue frame = mask["frame"_L1];
    const QRectF rect(frame["x"_L1].toDouble(), 0, frame["width"_L1].toDouble(),
                      frame["height"_L1].toDouble());
    return rect.translated(0, 800 - frame["y"_L1].toDouble() - rect.height()).toAlignedRect();
}

enum Kind { creating, applying, dragging, toggling, resting };
constexpr std::array kindNames{"creating a mask", "applying a preset", "dragging a mask",
                               "hiding or showing", "resting"};

/// Whether work of a kind may make the one state into the other, done or half done.
bool explains(Kind kind, const QJsonObject& before, const QJsonObject& after) {
    const QJsonArray former = masksIn(before);
    const QJsonArray latter = masksIn(after);
    qsizetype changed = 0;
    for (qsizetype index = 0; index < std::min(former.size(), latter.size()); ++index)
        if (former[index] != latter[index]) ++changed;
    switch (kind) {
        case creating:
            return changed == 0 && latter.size() == former.size() + 1;
        case applying:
            return latter.size() == 3 && isVisible(after);
        case dragging:
            return former.size() == latter.size() && changed <= 1;
        case toggling:
            return former == latter;
        case resting:
            break;
    }
    return false;
}

/// Looks at points of the screen without a pause, on a thread and a connection of its own.
class Lookout {
public:
    Lookout(const QString& displayName, QList<QPoint> points)
        : m_client(displayName), m_points(std::move(points)), m_thread([this] { look(); }) {}
    ~Lookout() { stop(); }
    Lookout(const Lookout&) = delete;
    Lookout& operator=(const Lookout&) = delete;

    void stop() {
        m_isStopped = true;
        if (m_thread.joinable()) m_thread.join();
    }

    /// To be asked when it has stopped.
    int looks() const { return m_looks; }
    Milliseconds longestPause() const { return m_longestPause; }
    const QList<QPoint>& seen() const { return m_seen; }

private:
    void look() {
        auto last = Clock::now();
        while (!m_isStopped && !m_points.isEmpty()) {
            std::vector<xcb_get_image_cookie_t> cookies;
            for (const QPoint point : m_points)
                cookies.push_back(xcb_get_image(m_client.connection(), XCB_IMAGE_FORMAT_Z_PIXMAP,
                                                m_client.root(), std::int16_t(point.x()),
                                                std::int16_t(point.y()), 1, 1, ~0U));
            for (std::size_t index = 0; index < cookies.size(); ++index) {
                const auto image = m_client.reply(xcb_get_image_reply, cookies[index]);
                const QPoint point = m_points[qsizetype(index)];
                if (!image || xcb_get_image_data_length(image.get()) < 4) continue;
                const std::uint8_t* const pixel = xcb_get_image_data(image.get());
                if (QColor(pixel[2], pixel[1], pixel[0]) == secret && !m_seen.contains(point))
                    m_seen.append(point);
            }
            const auto now = Clock::now();
            if (m_looks++ > 0) m_longestPause = std::max(m_longestPause, Milliseconds(now - last));
            last = now;
        }
    }

    XClient m_client;
    QList<QPoint> m_points;
    QList<QPoint> m_seen;
    int m_looks = 0;
    Milliseconds m_longestPause{0};
    std::atomic_bool m_isStopped = false;
    std::thread m_thread;
};

/// Kills a process when its time has come, whatever the test is doing then.
class Killer {
public:
    Killer(pid_t process, std::chrono::milliseconds life)
        : m_thread([this, process, life] {
              std::unique_lock lock(m_mutex);
              m_giveUp.wait_for(lock, life, [this] { return m_isGivenUp; });
              m_time = Clock::now();
              ::kill(process, SIGKILL);
              m_hasKilled = true;
          }) {}
    ~Killer() {
        {
            const std::lock_guard lock(m_mutex);
            m_isGivenUp = true;
        }
        m_giveUp.notify_all();
        m_thread.join();
    }
    Killer(const Killer&) = delete;
    Killer& operator=(const Killer&) = delete;

    bool hasKilled() const { return m_hasKilled; }
    /// Of the kill, when it has been done.
    Clock::time_point time() const { return m_time; }

private:
    std::mutex m_mutex;
    std::condition_variable m_giveUp;
    bool m_isGivenUp = false;
    std::atomic_bool m_hasKilled = false;
    Clock::time_point m_time;
    std::thread m_thread;
};

/// A state that the program was seen in.
struct Reached {
    QJsonObject state;
    Clock::time_point seen;
    /// When the work began that follows, and of what kind it is; nothing when the program was
    /// killed before.
    std::optional<Clock::time_point> left{};
    Kind next = resting;
};

struct Figures {
    int rounds = 0;
    std::array<int, kindNames.size()> kills{};
    int unreadable = 0;
    int unexplained = 0;
    int outdated = 0;
    Milliseconds longestUnsavedQuiet{0};
    int uncovered = 0;
    int pointsWatched = 0;
    qint64 looks = 0;
    Milliseconds longestPause{0};
    int orphans = 0;
    int unfinishedFiles = 0;
    int slowCommands = 0;
    std::vector<double> takeOvers;

    void print() const {
        const auto row = [](const char* name, double value, const char* unit = "") {
            std::printf("  %-58s %10.6g %s\n", name, value, unit);
        };
        std::printf("\n");
        row("kills", rounds);
        for (std::size_t kind = 0; kind < kills.size(); ++kind)
            row(("  while " + std::string(kindNames.at(kind))).c_str(), kills.at(kind));
        row("documents that cannot be read", unreadable);
        row("documents with a state that never was", unexplained);
        row("documents older than a state that had time to be saved", outdated);
        row("longest quiet with a state that was not saved yet", longestUnsavedQuiet.count(), "ms");
        row("kills while a new document was being written", unfinishedFiles);
        row("commands that did not end within ten seconds", slowCommands);
        row("points below masks watched", pointsWatched);
        row("  looks at each", double(looks) / std::max(rounds, 1), "a round");
        row("  longest pause between two looks", longestPause.count(), "ms");
        row("  points at which the secret was seen", uncovered);
        row("windows without a process after the next start", orphans);
        auto sorted = takeOvers;
        std::sort(sorted.begin(), sorted.end());
        if (sorted.empty()) return;
        row("from start to take-over, median", sorted[sorted.size() / 2], "ms");
        row("from start to take-over, longest", sorted.back(), "ms");
    }
};

class Crash : public VeylaTest {
protected:
    Crash() {
        workspace.settings.defaultOpacity = 1;
        addMask({40, 40, 240, 120}, Qt::black);  // covers guardRect, and is never moved
        addMask({400, 400, 300, 160}, Qt::red);
        addMask({800, 200, 200, 300}, Qt::blue);
        for (const auto& name : {u"A"_s, u"B"_s}) {
            MaskPreset preset;
            preset.id = QUuid::createUuid();
            preset.name = name;
            preset.masks = workspace.masks;
            workspace.presets.append(preset);
        }
        workspace.presets[1].masks[1].frame = {500, 300, 340, 200};
        neighbour.open({.frame = {0, 0, 1280, 800}, .color = secret, .isOverrideRedirect = true});
    }

    int number(int from, int to) { return std::uniform_int_distribution(from, to)(m_random); }

    /// By the program or, as it would, straight over the bus.
    QJsonObject command(const QStringList& arguments) {
        if (arguments.first() != u"status"_s && number(0, 2) == 0) {
            // One that waits for a process which is slow to die has more patience than tests have.
            try {
                run(arguments);
            } catch (const std::runtime_error&) {
                ++m_figures.slowCommands;
            }
            return {};
        }
        auto message = QDBusMessage::createMethodCall(u"app.veyla.Veyla"_s, u"/app/veyla/Veyla"_s,
                                                      u"app.veyla.Veyla"_s, u"perform"_s);
        message.setArguments({arguments});
        const auto values = m_bus.call(message).arguments();
        return QJsonDocument::fromJson(values.value(1).toString().toUtf8()).object();
    }

    /// Nothing when the program does not answer.
    std::optional<QJsonObject> seenState() {
        const QJsonObject status = command({u"status"_s, u"--json"_s});
        return status.isEmpty() ? std::nullopt : std::optional(digest(status));
    }

    Kind chooseWork(const QJsonObject& state) {
        if (masksIn(state).size() > 7) return applying;
        const auto kind = Kind(number(creating, resting));
        if (!isVisible(state) && kind != resting) return toggling;
        return kind == dragging && masksIn(state).size() < 2 ? applying : kind;
    }

    void work(Kind kind, const QJsonObject& state, const Killer& killer) {
        switch (kind) {
            case creating:
                input.movePointer({number(300, 1200), number(50, 600)});
                command({u"create-mask"_s});
                break;
            case applying:
                command({u"apply-preset"_s, number(0, 1) == 0 ? u"A"_s : u"B"_s});
                break;
            case dragging:
                drag(masksIn(state)[number(1, int(masksIn(state).size()) - 1)], killer);
                break;
            case toggling:
                command({isVisible(state) ? u"hide-masks"_s : u"show-masks"_s});
                break;
            case resting:
                static_cast<void>(waitUntil([&] { return killer.hasKilled(); },
                                            std::chrono::milliseconds(number(1, longestRest))));
        }
    }

    // As slowly as a person, so that a kill may come in the middle.
    void drag(const QJsonValue& mask, const Killer& killer) {
        const QPoint from = ::rectOf(mask).center();
        const QPoint to(number(400, 1100), number(100, 550));
        constexpr int steps = 30;
        input.movePointer(from);
        input.press();
        for (int step = 1; step <= steps; ++step) {
            input.movePointer(from + (to - from) * step / steps);
            if (waitUntil([&] { return killer.hasKilled(); }, std::chrono::milliseconds(3))) break;
        }
        input.release();
    }

    /// The states that the program was seen in until it was killed.
    std::vector<Reached> workUntilKilled(const Killer& killer) {
        std::vector<Reached> reached;
        const auto noteState = [&] {
            if (const auto state = seenState()) reached.push_back({*state, Clock::now()});
            return !reached.empty();
        };
        // Its masks are there before it is on the bus.
        EXPECT_TRUE(waitUntil([&] { return noteState() || killer.hasKilled(); }));
        while (!killer.hasKilled() && !reached.empty()) {
            Reached& last = reached.back();
            const Kind kind = chooseWork(last.state);
            if (kind != resting) {
                last.left = Clock::now();
                last.next = kind;
            }
            work(kind, last.state, killer);
            if (kind == resting) continue;
            noteState();
        }
        EXPECT_TRUE(waitUntil([&] { return !process->isRunning(); }));
        return reached;
    }

    /// Whether the document holds a state that was, and none that is older than one that had time
    /// to be saved. While a new document is being written, that may be the one before.
    void judgeDocument(const QJsonObject& held, const std::vector<Reached>& reached,
                       Clock::time_point killed, bool isBeingWritten) {
        std::array<std::size_t, 2> quiet{};
        std::optional<std::size_t> found;
        for (std::size_t index = 0; index < reached.size(); ++index) {
            const Reached& each = reached[index];
            if (each.left.value_or(killed) - each.seen >= saveDelay + patience)
                quiet = {index, quiet[0]};
            if (held == each.state || (each.left && explains(each.next, each.state, held)))
                found = index;
        }
        const std::size_t required = quiet.at(isBeingWritten ? 1 : 0);
        if (!found) {
            ++m_figures.unexplained;
            ADD_FAILURE() << "a state that never was: " << QJsonDocument(held).toJson().constData();
            return;
        }
        if (*found < required) {
            ++m_figures.outdated;
            ADD_FAILURE() << "the document is " << required - *found << " states too old";
        }
        for (std::size_t index = *found + 1; index < reached.size(); ++index)
            m_figures.longestUnsavedQuiet =
                std::max(m_figures.longestUnsavedQuiet,
                         Milliseconds(reached[index].left.value_or(killed) - reached[index].seen));
    }

    /// What must stay covered: points of masks that were on the screen and will be there again.
    QList<QPoint> pointsToWatch(const std::vector<Reached>& reached, const QJsonObject& held) {
        QList<QRect> rects;
        const Reached& last = reached.back();
        const bool wasShown = isVisible(last.state) && !(last.left && last.next == toggling);
        if (!isVisible(held)) return {};
        if (wasShown) rects.append(guardRect);
        for (const XWindow& window : probe.windowsWith(u"_VEYLA_MASK_ID"_s))
            for (const QJsonValue mask : masksIn(held))
                if (window.isMapped) rects.append(window.frame & ::rectOf(mask));
        QList<QPoint> points;
        constexpr int corner = 24;  // beyond the rounding of any corner
        for (const QRect& rect : rects) {
            const QRect inner = rect.adjusted(corner, corner, -corner, -corner);
            if (!inner.isValid()) continue;
            for (const QPoint point : {inner.center(), inner.topLeft(), inner.bottomRight()})
                if (!points.contains(point)) points.append(point);
        }
        return points;
    }

    /// Windows of masks whose process is not the one that runs.
    qsizetype orphans() const {
        const auto windows = probe.windowsWith(u"_VEYLA_MASK_ID"_s);
        return std::count_if(windows.begin(), windows.end(), [&](const XWindow& window) {
            const auto pid = probe.numbersOf(window.id, u"_NET_WM_PID"_s);
            return pid.empty() || pid.front() != std::uint32_t(process->pid());
        });
    }

    void restartWatched(const QList<QPoint>& points) {
        Lookout lookout(desktop.displayName(), points);
        const auto begin = Clock::now();
        try {
            restart();
            requireSoon("the former windows are gone",
                        [&] { return orphans() == 0 && isEveryMaskShownOnce(); });
        } catch (const std::exception& error) {
            m_figures.orphans += int(orphans());
            ADD_FAILURE() << error.what();
        }
        m_figures.takeOvers.push_back(Milliseconds(Clock::now() - begin).count());
        lookout.stop();
        m_figures.pointsWatched += int(points.size());
        m_figures.looks += lookout.looks();
        m_figures.longestPause = std::max(m_figures.longestPause, lookout.longestPause());
        m_figures.uncovered += int(lookout.seen().size());
        for (const QPoint point : lookout.seen())
            ADD_FAILURE() << "the secret was seen at " << point.x() << ", " << point.y();
    }

    void crashOnce() {
        ++m_figures.rounds;
        // What a former kill left stays until the next save.
        const auto lastWriting = [this] {
            return QFileInfo(documentPath() + u".new"_s).lastModified();
        };
        const QDateTime formerWriting = lastWriting();
        std::vector<Reached> reached;
        Clock::time_point killed;
        {
            const Killer killer(process->pid(),
                                std::chrono::milliseconds(number(0, int(longestLife.count()))));
            reached = workUntilKilled(killer);
            killed = killer.time();
        }
        EXPECT_EQ(process->standardError().toStdString(), "");
        const bool isBeingWritten = lastWriting().isValid() && lastWriting() != formerWriting;
        if (isBeingWritten) ++m_figures.unfinishedFiles;
        try {
            workspace = document();
        } catch (const std::exception& error) {
            ++m_figures.unreadable;
            FAIL() << "the document cannot be read: " << error.what();
        }
        const QJsonObject held = digest(QJsonDocument::fromJson(workspace.toJsonText()).object());
        QList<QPoint> points;
        std::string moment = "before it could be asked";
        if (!reached.empty()) {
            const Reached& last = reached.back();
            const Kind kind = last.left ? last.next : resting;
            ++m_figures.kills.at(kind);
            moment = kindNames.at(kind);
            judgeDocument(held, reached, killed, isBeingWritten);
            points = pointsToWatch(reached, held);
        }
        const auto shown = probe.windowsWith(u"_VEYLA_MASK_ID"_s).size();
        SCOPED_TRACE("killed while " + moment +
                     ", with windows of masks left: " + std::to_string(shown));
        restartWatched(points);
    }

    std::mt19937 m_random{wantedSeed != 0 ? unsigned(wantedSeed) : std::random_device{}()};
    QDBusConnection m_bus = QDBusConnection::connectToBus(desktop.bus().address(), u"crash"_s);
    Figures m_figures;
};

}  // namespace

TEST_F(Crash, AKillAtAnyMomentCostsNothing) {
    constexpr int shortForm = 10;
    const int rounds = wantedRounds > 0 ? wantedRounds : shortForm;
    start();
    ASSERT_TRUE(waitUntil([&] { return seenState().has_value(); }));
    for (int round = 0; round < rounds && process->isRunning(); ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        crashOnce();
    }
    EXPECT_EQ(m_figures.rounds, rounds);
    EXPECT_FALSE(QFile::exists(QFileInfo(documentPath()).path() + u"/workspace-backup.json"_s));
    m_figures.print();
    QDBusConnection::disconnectFromBus(u"crash"_s);
}
