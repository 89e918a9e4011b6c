#include "Platform/Qt/QtMainLoop.h"
#include "Platform/X11/X11Desktop.h"
#include "support/RecordingSystemLog.h"
#include "support/desktop/NeighbourClient.h"
#include "support/desktop/Screenshot.h"
#include "support/desktop/Wait.h"

#include <QPainter>
#include <cstdlib>
#include <gtest/gtest.h>

namespace {

class Fill final : public SurfaceContent {
public:
    explicit Fill(QColor color) : m_color(std::move(color)) {}
    void paint(QPainter& painter, Size size) const override {
        painter.fillRect(QRectF(0, 0, size.width, size.height), m_color);
    }

private:
    QColor m_color;
};

}  // namespace

/// Surfaces on a display without a compositor.
class BackdropTest : public testing::Test {
protected:
    BackdropTest() : desktop(X11Desktop::open(loop, log, nullptr, &error)) {}

    std::unique_ptr<OverlaySurface> show(const Rect& frame, const QColor& color) {
        auto surface = desktop->overlaySurfaces().createSurface(
            {QStringLiteral("mask"), QUuid::createUuid(), frame}, nullptr);
        surface->setContent(std::make_shared<Fill>(color));
        surface->orderFront();
        return surface;
    }

    /// Whether the screen comes to show the colour there, give or take rounding.
    testing::AssertionResult becomes(QPoint position, const QColor& expected) {
        QColor seen;
        const auto isNear = [](int a, int b) { return std::abs(a - b) <= 2; };
        const bool isReached = waitUntil([&] {
            seen = Screenshot(neighbour).pixel(position);
            return isNear(seen.red(), expected.red()) && isNear(seen.green(), expected.green()) &&
                   isNear(seen.blue(), expected.blue());
        });
        if (isReached) return testing::AssertionSuccess();
        return testing::AssertionFailure() << "stays " << seen.name().toStdString() << ", not "
                                           << expected.name().toStdString();
    }

    QtMainLoop loop;
    RecordingSystemLog log;
    QString error;
    std::unique_ptr<X11Desktop> desktop;
    NeighbourClient neighbour;
};

TEST_F(BackdropTest, ATranslucentMaskShowsWhatLiesBelowAndFollowsIt) {
    const auto window = neighbour.open({.frame = {200, 200, 300, 200}, .color = Qt::white});
    ASSERT_TRUE(becomes({350, 300}, Qt::white));
    // Covers the left part of the window; 800 is the height of the screen.
    const auto mask = show({100, 800 - 350, 200, 100}, QColor(0, 0, 0, 128));
    EXPECT_TRUE(becomes({250, 300}, QColor(127, 127, 127)));

    neighbour.setColor(window, Qt::red);
    EXPECT_TRUE(becomes({250, 300}, QColor(127, 0, 0))) << "its content changed";
    mask->setFrame({350, 800 - 350, 200, 100});
    EXPECT_TRUE(becomes({250, 300}, Qt::red));
    EXPECT_TRUE(becomes({450, 300}, QColor(127, 0, 0))) << "the mask moved";
    neighbour.move(window, {700, 500, 300, 200});
    EXPECT_TRUE(becomes({450, 300}, Qt::black)) << "the window moved away";
    neighbour.move(window, {200, 200, 300, 200});
    EXPECT_TRUE(becomes({450, 300}, QColor(127, 0, 0)));
    neighbour.unmap(window);
    EXPECT_TRUE(becomes({450, 300}, Qt::black));
}

TEST_F(BackdropTest, AMaskAboveAnotherNeverShowsWhatThatHides) {
    neighbour.open({.frame = {200, 200, 300, 200}, .color = Qt::white});
    const auto lower = show({200, 800 - 400, 200, 200}, Qt::blue);
    const auto upper = show({250, 800 - 350, 200, 100}, QColor(0, 0, 0, 128));
    EXPECT_TRUE(becomes({300, 300}, QColor(0, 0, 127)));
    EXPECT_TRUE(becomes({425, 300}, QColor(127, 127, 127)));
    lower->setContent(std::make_shared<Fill>(Qt::green));
    EXPECT_TRUE(becomes({300, 300}, QColor(0, 127, 0)));
    lower->orderOut();
    EXPECT_TRUE(becomes({300, 300}, QColor(127, 127, 127)));
}
