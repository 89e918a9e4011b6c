#include "desktop/VeylaTest.h"
#include "support/desktop/Compositor.h"
#include "support/desktop/X11Harness.h"

#include <QPainter>
#include <algorithm>
#include <atomic>
#include <cmath>
#include <functional>
#include <thread>

using namespace Qt::Literals::StringLiterals;

namespace {

/// The grey values of a part of the screen.
struct Greys {
    explicit Greys(const QImage& image) {
        double sum = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x) {
                const int grey = qGray(image.pixel(x, y));
                darkest = std::min(darkest, grey);
                lightest = std::max(lightest, grey);
                sum += grey;
            }
        mean = sum / (image.width() * image.height());
    }
    int contrast() const { return lightest - darkest; }

    int darkest = 255;
    int lightest = 0;
    double mean = 0;
};

// Faint enough for nothing to be read.
constexpr int illegible = 6;

// What a black mask of full opacity makes of the mean below it: 45 % of its colour, and upon that
// 55 % of the mean, which has a tenth of white in it.
double throughMask(double mean) {
    return 0.45 * (0.55 * mean) + 0.55 * (0.9 * mean + 0.1 * 255);
}

/// Looks at one pixel of the screen as often as it can, on a thread of its own.
class PixelWatch : private XClient {
public:
    PixelWatch(const QString& displayName, QPoint position)
        : XClient(displayName), m_thread([this, position] {
              while (!m_isOver) {
                  const auto image =
                      reply(xcb_get_image_reply,
                            xcb_get_image(connection(), XCB_IMAGE_FORMAT_Z_PIXMAP, root(),
                                          static_cast<std::int16_t>(position.x()),
                                          static_cast<std::int16_t>(position.y()), 1, 1, ~0U));
                  m_lightest = std::max<int>(m_lightest, xcb_get_image_data(image.get())[1]);
              }
          }) {}
    /// The most green that was seen.
    int end() {
        m_isOver = true;
        m_thread.join();
        return m_lightest;
    }

private:
    std::atomic<bool> m_isOver = false;
    std::atomic<int> m_lightest = 0;
    std::thread m_thread;
};

}  // namespace

/// A frosted mask above a window of strokes as of large print.
class Frosted : public VeylaTest {
protected:
    explicit Frosted(const DesktopSession::Options& options = {})
        : VeylaTest(options), mask(addMask({300, 300, 320, 180}, Qt::black)) {
        workspace.masks.last().style = ScreenMask::Style::frosted;
        page = openBackdrop();
        print();
    }

    void print() {
        constexpr std::uint16_t stroke = 12;
        xcb_connection_t* const connection = neighbour.connection();
        const xcb_pixmap_t tile = xcb_generate_id(connection);
        xcb_create_pixmap(connection, neighbour.screen().root_depth, tile, page, 2 * stroke,
                          2 * stroke);
        const xcb_gcontext_t pen = xcb_generate_id(connection);
        for (const std::uint32_t color : {0xFFFFFFU, 0U}) {
            xcb_create_gc(connection, pen, tile, XCB_GC_FOREGROUND, &color);
            const std::uint16_t width = color == 0 ? stroke : 2 * stroke;
            const xcb_rectangle_t area{0, 0, width, 2 * stroke};
            xcb_poly_fill_rectangle(connection, tile, pen, 1, &area);
            xcb_free_gc(connection, pen);
        }
        xcb_change_window_attributes(connection, page, XCB_CW_BACK_PIXMAP, &tile);
        xcb_free_pixmap(connection, tile);
        xcb_clear_area(connection, 0, page, 0, 0, 0, 0);
        neighbour.roundTrip();
    }

    /// Around the middle of the mask, away from its handles.
    Greys seen() const {
        return Greys(
            Screenshot(probe).image().copy(QRect(middleOf(mask) - QPoint(40, 40), QSize(80, 80))));
    }

    testing::AssertionResult blurs(double meanBelow) {
        std::optional<Greys> last;
        const bool isReached = waitUntil([&] {
            last = seen();
            return last->contrast() <= illegible &&
                   std::abs(last->mean - throughMask(meanBelow)) <= 4;
        });
        if (isReached) return testing::AssertionSuccess();
        return testing::AssertionFailure()
               << "contrast " << last->contrast() << ", mean " << last->mean << " instead of "
               << throughMask(meanBelow);
    }

    QUuid mask;
    xcb_window_t page;
};

TEST_F(Frosted, HidesPrintAndFollowsItWithAndWithoutACompositor) {
    start();
    for (const auto& [name, change] :
         {Step("no compositor", [] {}), Step("started", [&] { desktop.startCompositor(); }),
          Step("stopped", [&] { desktop.stopCompositor(); })}) {
        SCOPED_TRACE(name);
        change();
        EXPECT_TRUE(blurs(127.5));
        neighbour.setColor(page, Qt::white);
        EXPECT_TRUE(blurs(255));
        const auto note = neighbour.open(
            {.frame = {250, 250, 500, 300}, .color = Qt::black, .isOverrideRedirect = true});
        EXPECT_TRUE(blurs(0)) << "another window came";
        neighbour.destroy(note);
        EXPECT_TRUE(blurs(255)) << "and went";
        print();
        EXPECT_TRUE(blurs(127.5));
    }
}

TEST_F(Frosted, StaysIllegibleAndRightDuringADrag) {
    start();
    EXPECT_TRUE(blurs(127.5));
    for (const bool isComposited : {false, true}) {
        SCOPED_TRACE(isComposited);
        if (isComposited) desktop.startCompositor();
        EXPECT_TRUE(blurs(127.5));
        const QPoint from = middleOf(mask);
        input.movePointer(from);
        input.press();
        for (int step = 1; step <= 20; ++step) {
            const QPoint middle = middleOf(mask);
            input.movePointer(from + QPoint(7 * step, 5 * step));
            const QRect part(middle - QPoint(30, 30), QSize(60, 60));
            const Greys greys(Screenshot(probe).image().copy(part));
            EXPECT_LE(greys.contrast(), illegible) << step;
        }
        input.movePointer(from);
        input.release();
        EXPECT_TRUE(blurs(127.5));
    }
}

TEST_F(Frosted, NeverShowsWhatAMaskBelowHides) {
    workspace.masks.prepend(workspace.masks.first());
    workspace.masks.first().id = QUuid::createUuid();
    workspace.masks.first().style = ScreenMask::Style::blackout;
    workspace.masks.first().frame = {200, 200, 520, 380};
    start();
    EXPECT_TRUE(blurs(0));
    desktop.startCompositor();
    EXPECT_TRUE(blurs(0));
    ASSERT_EQ(run({u"hide-masks"_s}).status, 0);
    ASSERT_EQ(run({u"show-masks"_s}).status, 0);
    EXPECT_TRUE(waitUntil([&] { return isEveryMaskShownOnce(); }));
    EXPECT_TRUE(blurs(0));
}

class FrostedOnAPoorServer : public Frosted {
protected:
    FrostedOnAPoorServer()
        : Frosted({.server = {.extraArguments = {u"-extension"_s, u"Composite"_s}}}) {}
};

TEST_F(FrostedOnAPoorServer, IsDense) {
    start();
    EXPECT_TRUE(blurs(0));
}

using Translucent = VeylaTest;

TEST_F(Translucent, AMaskShowsWhatLiesBelowAndFollowsIt) {
    const auto window = neighbour.open({.frame = {200, 200, 300, 200}, .color = Qt::white});
    // Covers the left part of the window.
    const QUuid mask = addMask({100, 450, 200, 100}, Qt::black);
    workspace.masks.last().opacity = 0.5;
    start();
    const auto shows = [this](QPoint position, int red, int others) {
        return waitUntil([&] {
            const QColor seen = pixel(position);
            return std::abs(seen.red() - red) <= 2 && std::abs(seen.green() - others) <= 2 &&
                   std::abs(seen.blue() - others) <= 2;
        });
    };
    EXPECT_TRUE(shows({250, 300}, 127, 127));
    neighbour.setColor(window, Qt::red);
    EXPECT_TRUE(shows({250, 300}, 127, 0)) << "its content changed";
    input.drag(middleOf(mask), middleOf(mask) + QPoint(250, 0));
    EXPECT_TRUE(shows({250, 300}, 255, 0));
    EXPECT_TRUE(shows({450, 300}, 127, 0)) << "the mask moved";
    neighbour.move(window, {700, 500, 300, 200});
    EXPECT_TRUE(shows({450, 300}, 0, 0)) << "the window moved away";
    neighbour.move(window, {200, 200, 300, 200});
    EXPECT_TRUE(shows({450, 300}, 127, 0));
    neighbour.unmap(window);
    EXPECT_TRUE(shows({450, 300}, 0, 0));
}

namespace {

/// A plain colour, on a blur of what lies below or not.
class PlainContent final : public SurfaceContent {
public:
    PlainContent(const QColor& color, double blur) : m_color(color), m_blur(blur) {}
    void paint(QPainter& painter, Size size) const override {
        painter.fillRect(QRectF(0, 0, size.width, size.height), m_color);
    }
    double backdropBlur() const override { return m_blur; }
    QPainterPath blurredShape(Size size, double scale) const override {
        QPainterPath path;
        path.addRect(0, 0, size.width * scale, size.height * scale);
        return path;
    }

private:
    QColor m_color;
    double m_blur;
};

}  // namespace

TEST(RaisedSurface, NeverShowsWhatTheOneThatWasAboveItHid) {
    // Places on the left alone and together, away from edges that a blur would reach.
    const QPoint alone(200, 350);
    const QPoint together(450, 350);
    std::optional<Compositor> compositor;
    for (const auto& [blur, isComposited] : {std::pair(0, false), {20, false}, {20, true}}) {
        SCOPED_TRACE(testing::Message() << "blur " << blur << ", composited " << isComposited);
        if (isComposited) compositor.emplace(QProcessEnvironment::systemEnvironment());
        X11Harness harness;
        NeighbourClient neighbour;
        neighbour.open({.frame = {0, 0, 1280, 800}, .isOverrideRedirect = true});
        const auto make = [&](const Rect& frame, const QColor& color, double deviation) {
            auto surface =
                harness.surfaces().createSurface({u"mask"_s, QUuid::createUuid(), frame}, nullptr);
            surface->setContent(std::make_shared<PlainContent>(color, deviation));
            surface->orderFront();
            return surface;
        };
        const auto sheer = make({100, 200, 500, 300}, QColor(0, 0, 0, 100), blur);
        const auto dense = make({300, 100, 500, 500}, Qt::black, 0);
        const auto isShownThrough = [&] {
            const int green = Screenshot(neighbour).pixel(alone).green();
            return green > 100 && green < 255;
        };
        ASSERT_TRUE(harness.waitUntil(isShownThrough));
        PixelWatch watch({}, together);
        for (int i = 0; i < 10; ++i) {
            sheer->orderFront();
            EXPECT_TRUE(harness.waitUntil(isShownThrough));
            dense->orderFront();
            harness.settle();
        }
        EXPECT_EQ(watch.end(), 0);
    }
}

TEST(ChangedSurface, HidesWhatItHidesFromThenOn) {
    const QPoint middle(300, 300);
    for (const double blur : {0.0, 20.0}) {
        SCOPED_TRACE(blur);
        X11Harness harness;
        NeighbourClient neighbour;
        neighbour.open({.frame = {0, 0, 1280, 800}, .isOverrideRedirect = true});
        const auto surface = harness.surfaces().createSurface(
            {u"mask"_s, QUuid::createUuid(), {100, 400, 400, 200}}, nullptr);
        surface->orderFront();
        const auto comesToShow = [&](const QColor& color, double deviation, bool isSeenThrough) {
            surface->setContent(std::make_shared<PlainContent>(color, deviation));
            return harness.waitUntil([&] {
                return (Screenshot(neighbour).pixel(middle).green() > 100) == isSeenThrough;
            });
        };
        for (int i = 0; i < 2; ++i) {
            EXPECT_TRUE(comesToShow(QColor(0, 0, 0, 100), blur, true));
            EXPECT_TRUE(comesToShow(Qt::black, 0, false));
        }
    }
}
