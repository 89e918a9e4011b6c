#include "desktop/VeylaTest.h"

#include <QFileInfo>
#include <sys/inotify.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;
using Dragging = VeylaTest;

namespace {

constexpr Rect startFrame{300, 250, 200, 100};
const QRect startRect{300, 450, 200, 100};

/// Counts how often a file is replaced by renaming another one.
class ReplacementCounter {
public:
    explicit ReplacementCounter(const QString& path)
        : m_name(QFileInfo(path).fileName().toUtf8()), m_inotify(inotify_init1(IN_NONBLOCK)) {
        inotify_add_watch(m_inotify, QFileInfo(path).path().toUtf8().constData(),
                          IN_MOVED_TO | IN_CLOSE_WRITE);
    }
    ReplacementCounter(const ReplacementCounter&) = delete;
    ReplacementCounter& operator=(const ReplacementCounter&) = delete;
    ~ReplacementCounter() { close(m_inotify); }

    int count() {
        alignas(inotify_event) std::array<char, 4096> buffer{};
        for (ssize_t size; (size = read(m_inotify, buffer.data(), buffer.size())) > 0;) {
            const char* position = buffer.data();
            while (position < buffer.data() + size) {
                const auto* event = reinterpret_cast<const inotify_event*>(position);
                if (m_name == event->name) ++m_count;
                position += sizeof(inotify_event) + event->len;
            }
        }
        return m_count;
    }

private:
    QByteArray m_name;
    int m_inotify;
    int m_count = 0;
};

}  // namespace

TEST_F(Dragging, SnapsAtEightPointsAndStopsAtTheScreensEdge) {
    const QColor violet(126, 83, 230);  // on black, without a compositor
    openBackdrop();
    const QUuid mask = addMask(startFrame);
    start();
    const auto guideIsShown = [&] {
        const auto window = probe.windowWith(u"_NET_WM_NAME"_s, u"Veyla snapping guides"_s);
        return window && window->isMapped;
    };

    struct Row {
        QPoint delta;
        QPoint corner;
        int guideX = -1, guideY = -1;
    };
    for (const auto& [delta, corner, guideX, guideY] : {
             Row{{50, -30}, {350, 420}},
             Row{{-291, 0}, {9, 450}},
             Row{{-292, 0}, {0, 450}, 0},
             Row{{771, 0}, {1071, 450}},
             Row{{772, 0}, {1080, 450}, 1279},
             Row{{231, 0}, {531, 450}},
             Row{{232, 0}, {540, 450}, 640},
             Row{{0, 241}, {300, 691}},
             Row{{0, 242}, {300, 700}, -1, 799},
             Row{{0, -442}, {300, 0}, -1, 0},
             Row{{0, -92}, {300, 350}, -1, 399},
             Row{{-292, 242}, {0, 700}, 0, 799},
             Row{{-320, 0}, {0, 450}},
             Row{{900, 330}, {1080, 700}},
         }) {
        SCOPED_TRACE(testing::Message() << delta.x() << ", " << delta.y());
        const QPoint from = middleOf(mask);
        input.movePointer(from);
        input.press();
        input.movePointer(from + delta / 2);
        input.movePointer(from + delta);
        EXPECT_TRUE(comesTo(mask, QRect(corner, startRect.size())));
        // The mask is seen before the guides are, and before the model knows.
        EXPECT_TRUE(waitUntil([&] { return frameOf(mask).x == corner.x(); }));
        EXPECT_EQ(guideIsShown(), guideX >= 0 || guideY >= 0);
        const Screenshot screen(probe);
        if (guideX >= 0) {
            EXPECT_EQ(screen.pixel(guideX, 200), violet);
            EXPECT_EQ(screen.pixel(guideX, corner.y() + 30), violet) << "above the mask as well";
        }
        if (guideY >= 0) {
            EXPECT_EQ(screen.pixel(1000, guideY), violet);
        }
        EXPECT_EQ(screen.pixel(1000, 200), QColor(Qt::white)) << "guides hide what is below";
        // Back, so that every row begins at the same place.
        input.movePointer(from);
        EXPECT_TRUE(comesTo(mask, startRect));
        input.release();
    }

    input.drag(middleOf(mask), middleOf(mask) - QPoint(292, 0));
    EXPECT_TRUE(comesTo(mask, {0, 450, 200, 100}));
    EXPECT_TRUE(waitUntil([&] { return !guideIsShown() && pixel({0, 200}) == Qt::white; }));
}

TEST_F(Dragging, JumpsToTheNextMonitorWhenTheCentreCrosses) {
    monitors.set({{u"A"_s, {0, 0, 640, 800}}, {u"B"_s, {640, 0, 640, 800}}});
    const QUuid mask = addMask(startFrame);
    start();
    const QPoint from = middleOf(mask);
    input.movePointer(from);
    input.press();
    for (const auto& [dx, x] : {std::pair{239, 440}, {241, 640}, {400, 700}, {239, 440}}) {
        input.movePointer(from + QPoint(dx, 0));
        EXPECT_TRUE(comesTo(mask, {x, 450, 200, 100})) << dx;
    }
    input.release();
    EXPECT_EQ(frameOf(mask), (Rect{440, 250, 200, 100}));
    EXPECT_TRUE(isPainted(mask));
}

TEST_F(Dragging, ShowsTheMaskNowhereThatItDoesNotStay) {
    const QUuid mask = addMask(startFrame);
    start();
    const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(probe.connection(), windowOf(mask)->id, XCB_CW_EVENT_MASK,
                                 &events);
    probe.roundTrip();
    input.drag(middleOf(mask), middleOf(mask) - QPoint(420, 320), 60);
    EXPECT_TRUE(comesTo(mask, {0, 130, 200, 100}));
    int steps = 0;
    while (const XcbPtr<xcb_generic_event_t> event{xcb_poll_for_event(probe.connection())}) {
        if ((event->response_type & 0x7f) != XCB_CONFIGURE_NOTIFY) continue;
        EXPECT_GE(reinterpret_cast<const xcb_configure_notify_event_t&>(*event).x, 0);
        ++steps;
    }
    EXPECT_GT(steps, 1);
}

TEST_F(Dragging, IsWrittenOnceWhenItIsOver) {
    const QUuid mask = addMask(startFrame);
    start();
    ReplacementCounter replacements(documentPath());
    const auto documentHas = [&](const Rect& frame) {
        return document().masks.first().frame == frame;
    };
    // Selecting the mask is one change with the drag that it begins.
    const int before = replacements.count();
    input.drag(middleOf(mask), middleOf(mask) + QPoint(100, -40), 40);
    EXPECT_TRUE(waitUntil([&] { return documentHas({400, 290, 200, 100}); }));
    const int afterFirst = replacements.count();
    input.drag(middleOf(mask), middleOf(mask) + QPoint(70, 60), 40);
    EXPECT_TRUE(waitUntil([&] { return documentHas({470, 230, 200, 100}); }));
    EXPECT_EQ(replacements.count() - afterFirst, 1);
    // What the start writes may still be on its way when the drag begins.
    EXPECT_LE(afterFirst - before, 2);
    EXPECT_EQ(document().selectedMaskID, mask);
}

TEST_F(Dragging, OfABorderResizesDownToSixtyByForty) {
    const QUuid mask = addMask(startFrame);
    start();
    struct Row {
        const char* name;
        QPoint grip;
        // What a move by (20, 10) and one far over the opposite corner make of it.
        QRect moved, smallest;
        QPoint far;
    };
    for (const auto& [name, grip, moved, smallest, far] : {
             Row{"left", {5, 50}, {320, 450, 180, 100}, {440, 450, 60, 100}, {500, 0}},
             Row{"right", {195, 50}, {300, 450, 220, 100}, {300, 450, 60, 100}, {-300, 0}},
             Row{"top", {100, 5}, {300, 460, 200, 90}, {300, 510, 200, 40}, {0, 300}},
             Row{"bottom", {100, 95}, {300, 450, 200, 110}, {300, 450, 200, 40}, {0, -300}},
             Row{"top left", {25, 5}, {320, 460, 180, 90}, {440, 510, 60, 40}, {500, 300}},
             Row{"top right", {175, 29}, {300, 460, 220, 90}, {300, 510, 60, 40}, {-300, 300}},
             Row{"bottom left", {29, 95}, {320, 450, 180, 110}, {440, 450, 60, 40}, {500, -300}},
             Row{"bottom right", {175, 75}, {300, 450, 220, 110}, {300, 450, 60, 40}, {-300, -300}},
         }) {
        SCOPED_TRACE(name);
        const QPoint from = startRect.topLeft() + grip;
        input.movePointer(from);
        input.press();
        input.movePointer(from + QPoint(20, 10));
        EXPECT_TRUE(comesTo(mask, moved));
        EXPECT_TRUE(becomesPainted(mask));
        input.movePointer(from + far);
        EXPECT_TRUE(comesTo(mask, smallest));
        input.movePointer(from);
        EXPECT_TRUE(comesTo(mask, startRect));
        input.release();
    }
    EXPECT_EQ(frameOf(mask), startFrame);
}
