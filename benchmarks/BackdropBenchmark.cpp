// What a mask costs while what lies below it changes: a terminal that prints 60 times a second, and
// a video of 30 pictures a second, below masks of three sizes and styles, with and without a
// compositor. Meanwhile popups open over the mask and commands are given.

#include "Platform/Qt/SessionBus.h"
#include "benchmarks/support/DisplayObserver.h"
#include "benchmarks/support/ProcessUsage.h"
#include "benchmarks/support/ProgramOnDesktop.h"
#include "benchmarks/support/Samples.h"
#include "support/desktop/Wait.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <array>
#include <atomic>
#include <sys/socket.h>
#include <thread>

namespace {

using namespace std::chrono;

constexpr seconds measuredTime{2};
constexpr milliseconds settlingTime{700};
constexpr int probeCount = 15;
constexpr QSize screenSize(3840, 2160);

enum class Look { opaque, tinted, frosted };
enum class Source { terminal, video };

QRect maskRect(int width, int height) {
    const QRect rect(QPoint(0, 0), QSize(width, height));
    return rect.translated((screenSize.width() - width) / 2, (screenSize.height() - height) / 2);
}

ScreenMask maskOf(Look look, const QRect& rect) {
    constexpr std::array styles{ScreenMask::Style::blackout, ScreenMask::Style::softTint,
                                ScreenMask::Style::frosted};
    return {.id = QUuid::createUuid(),
            .name = QStringLiteral("Mask"),
            .frame = {.x = double(rect.x()),
                      .y = double(screenSize.height() - rect.y() - rect.height()),
                      .width = double(rect.width()),
                      .height = double(rect.height())},
            .opacity = 1,
            .colorHex = QStringLiteral("#101114"),
            .style = styles.at(static_cast<std::size_t>(look)),
            .groupID = std::nullopt};
}

/// A program whose window is never still, on a thread and a connection of its own.
class RestlessWindow : private XClient {
public:
    RestlessWindow(const QString& displayName, Source source, const QRect& rect)
        : XClient(displayName), m_rect(rect) {
        const std::uint32_t white = 0xFFFFFF;
        xcb_create_window(connection(), XCB_COPY_FROM_PARENT, m_window, root(), toInt16(rect.x()),
                          toInt16(rect.y()), width(), height(), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          screen().root_visual, XCB_CW_BACK_PIXEL, &white);
        xcb_map_window(connection(), m_window);
        makePictures();
        const auto period = source == Source::terminal ? microseconds(16667) : microseconds(33333);
        m_thread = std::thread([this, source, period] {
            auto next = steady_clock::now();
            for (int frame = 0; !m_isOver; ++frame) {
                source == Source::terminal ? print() : show(frame);
                roundTrip();
                std::this_thread::sleep_until(next += period);
            }
        });
    }
    ~RestlessWindow() override {
        m_isOver = true;
        m_thread.join();
    }

private:
    static std::int16_t toInt16(int value) { return static_cast<std::int16_t>(value); }
    std::uint16_t width() const { return static_cast<std::uint16_t>(m_rect.width()); }
    std::uint16_t height() const { return static_cast<std::uint16_t>(m_rect.height()); }

    void makePictures() {
        const std::uint32_t black = 0;
        xcb_create_gc(connection(), m_pen, m_window, XCB_GC_FOREGROUND, &black);
        for (std::size_t i = 0; i < m_pictures.size(); ++i) {
            m_pictures[i] = xcb_generate_id(connection());
            xcb_create_pixmap(connection(), screen().root_depth, m_pictures[i], root(), width(),
                              height());
            const std::uint32_t color = i == 0 ? 0x3060A0 : 0xC0A040;
            xcb_change_gc(connection(), m_pen, XCB_GC_FOREGROUND, &color);
            const xcb_rectangle_t all{0, 0, width(), height()};
            xcb_poly_fill_rectangle(connection(), m_pictures[i], m_pen, 1, &all);
        }
        xcb_change_gc(connection(), m_pen, XCB_GC_FOREGROUND, &black);
    }

    /// Writes one more row of letters, and every sixtieth time scrolls by half of the window.
    void print() {
        constexpr int rowHeight = 18;
        constexpr int letterWidth = 9;
        const int rows = m_rect.height() / rowHeight;
        if (m_row >= rows) {
            const int half = rows / 2 * rowHeight;
            xcb_copy_area(connection(), m_window, m_window, m_pen, 0, toInt16(half), 0, 0, width(),
                          static_cast<std::uint16_t>(half));
            xcb_clear_area(connection(), 0, m_window, 0, toInt16(half), width(), height());
            m_row = rows / 2;
        }
        std::vector<xcb_rectangle_t> letters;
        for (int x = 0; x + letterWidth < m_rect.width(); x += letterWidth)
            letters.push_back({toInt16(x), toInt16(m_row * rowHeight + 3), letterWidth - 3,
                               static_cast<std::uint16_t>(6 + (x + m_row) % 7)});
        xcb_poly_fill_rectangle(connection(), m_window, m_pen,
                                static_cast<std::uint32_t>(letters.size()), letters.data());
        ++m_row;
    }

    void show(int frame) {
        xcb_copy_area(connection(), m_pictures[static_cast<std::size_t>(frame % 2)], m_window,
                      m_pen, 0, 0, 0, 0, width(), height());
    }

    QRect m_rect;
    xcb_window_t m_window = xcb_generate_id(connection());
    xcb_gcontext_t m_pen = xcb_generate_id(connection());
    std::array<xcb_pixmap_t, 2> m_pictures{};
    int m_row = 0;
    std::atomic<bool> m_isOver = false;
    std::thread m_thread;
};

/// The process that serves a client.
pid_t serverOf(const XClient& client) {
    ucred peer{};
    socklen_t size = sizeof peer;
    if (getsockopt(xcb_get_file_descriptor(client.connection()), SOL_SOCKET, SO_PEERCRED, &peer,
                   &size) != 0)
        throw std::runtime_error("the server's process is not known");
    return peer.pid;
}

/// What a process takes of one processor, in percent.
double shareOf(pid_t process) {
    const auto start = steady_clock::now();
    const double before = ProcessUsage::of(process).processorMilliseconds;
    std::this_thread::sleep_for(measuredTime);
    const duration<double, std::milli> passed = steady_clock::now() - start;
    return 100 * (ProcessUsage::of(process).processorMilliseconds - before) / passed.count();
}

/// Opens a popup over the middle of the mask, and how long it takes until that lies above again.
void measurePopup(DisplayObserver& observer, xcb_window_t mask, Samples& times) {
    const xcb_window_t popup = xcb_generate_id(observer.connection());
    const std::uint32_t values[] = {0x00FF00, 1};
    xcb_create_window(observer.connection(), XCB_COPY_FROM_PARENT, popup, observer.root(),
                      screenSize.width() / 2, screenSize.height() / 2, 100, 60, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, observer.screen().root_visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
    times.add(
        observer.timeUntilConfigured(mask, [&] { xcb_map_window(observer.connection(), popup); }));
    xcb_destroy_window(observer.connection(), popup);
    observer.roundTrip();
}

void changesBelow(benchmark::State& state) {
    const auto look = static_cast<Look>(state.range(0));
    const auto source = static_cast<Source>(state.range(1));
    const auto size = static_cast<int>(state.range(2));
    const bool isCompositing = state.range(3) != 0;
    const bool isWithin = state.range(4) != 0;
    const QRect rect = maskRect(size, size * 9 / 16);

    DesktopSession desktop(
        {.server = {.extraArguments = {QStringLiteral("-screen"), QStringLiteral("0"),
                                       QStringLiteral("3840x2160x24")}},
         .windowManager = {}});
    if (isCompositing) desktop.startCompositor();
    storeWorkspace(desktop, {maskOf(look, rect)});
    DisplayObserver observer(desktop.displayName());
    const pid_t server = serverOf(observer);
    const QRect around = rect.adjusted(-40, -40, 40, 40) & QRect(QPoint(0, 0), screenSize);
    const RestlessWindow window(desktop.displayName(), source,
                                isWithin ? rect.adjusted(30, 30, -30, -30) : around);
    std::this_thread::sleep_for(settlingTime);
    const double serverAlone = shareOf(server);

    observer.forgetEvents();
    const auto veyla = startVeyla(desktop);
    const xcb_window_t mask = observer.waitForMap();
    std::this_thread::sleep_for(settlingTime);

    const QString name = QStringLiteral("changesBelow");
    QDBusConnection bus = QDBusConnection::connectToBus(desktop.bus().address(), name);
    QDBusMessage command = QDBusMessage::createMethodCall(
        QString::fromLatin1(RemoteControl::serviceName),
        QString::fromLatin1(RemoteControl::objectPath),
        QString::fromLatin1(RemoteControl::interfaceName), QStringLiteral("perform"));
    command.setArguments({QStringList{QStringLiteral("status")}});
    requireSoon("Veyla takes commands",
                [&] { return bus.call(command).type() == QDBusMessage::ReplyMessage; });

    double share = 0;
    double serverShare = 0;
    Samples popups;
    Samples commands;
    for (auto iteration : state) {
        std::thread meter([&] { serverShare = shareOf(server); });
        share = shareOf(veyla->pid());
        meter.join();
        for (int i = 0; i < probeCount; ++i) {
            // At a moment that has nothing to do with the frames of the source.
            std::this_thread::sleep_for(milliseconds(53 + 7 * (i % 5)));
            measurePopup(observer, mask, popups);
            std::this_thread::sleep_for(milliseconds(31 + 7 * (i % 5)));
            commands.measure([&] { bus.call(command); });
        }
    }
    QDBusConnection::disconnectFromBus(name);

    state.counters["measured"] = share;
    // Of one processor. An opaque mask has a clear rim, where it is to show what lies below.
    if (look == Look::opaque)
        state.counters["target"] = isWithin ? 0.1 : 2;
    else if (size <= 1920)
        state.counters["target"] = size <= 640 ? 10 : 25;
    char label[160];
    std::snprintf(label, sizeof label,
                  "%% of a processor; server %.1f %%, %.1f %% without Veyla; popup %.1f ms, "
                  "longest %.1f; command %.1f ms, longest %.1f",
                  serverShare, serverAlone, 1e3 * popups.median(), 1e3 * popups.quantile(1),
                  1e3 * commands.median(), 1e3 * commands.quantile(1));
    state.SetLabel(label);
}

BENCHMARK(changesBelow)
    ->ArgNames({"look", "source", "width", "compositor", "within"})
    ->ArgsProduct({{0, 1, 2}, {0, 1}, {640, 1920, 3840}, {0, 1}, {0}})
    ->ArgsProduct({{0}, {0, 1}, {1920}, {0, 1}, {1}})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    // The bus wants one.
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
