#include "desktop/VeylaTest.h"

using namespace Qt::Literals::StringLiterals;
using Scale = VeylaTest;

TEST_F(Scale, MasksAreWhereThePointsSay) {
    struct Row {
        const char* factor;
        QRect rect;
        /// A move, and what it makes.
        QPoint delta;
        QRect moved;
        Rect frame;
    };
    for (const auto& [factor, rect, delta, moved, frame] : {
             Row{"2", {200, 400, 400, 200}, {30, -50}, {230, 350, 400, 200}, {115, 125, 200, 100}},
             Row{"2", {200, 400, 400, 200}, {-184, 0}, {0, 400, 400, 200}, {0, 100, 200, 100}},
             Row{"2", {200, 400, 400, 200}, {-182, 0}, {18, 400, 400, 200}, {9, 100, 200, 100}},
             Row{"1.5",
                 {150, 500, 300, 150},
                 {30, -60},
                 {180, 440, 300, 150},
                 {120, 140, 200, 100}},
             Row{"1.5", {150, 500, 300, 150}, {0, 138}, {150, 650, 300, 150}, {100, 0, 200, 100}},
         }) {
        SCOPED_TRACE(factor);
        environment.insert(u"QT_SCALE_FACTOR"_s, QString::fromLatin1(factor));
        workspace.masks.clear();
        const QUuid mask = addMask({100, 100, 200, 100});
        start();
        EXPECT_TRUE(comesTo(mask, rect));
        // The panel and its outline end a few points inside.
        const int inside = 12;
        const Screenshot screen(probe);
        EXPECT_EQ(screen.pixel(rect.center().x(), rect.bottom() - inside), QColor(Qt::red));
        EXPECT_EQ(screen.pixel(rect.right() - inside, rect.center().y()), QColor(Qt::red));
        input.drag(rect.center(), rect.center() + delta);
        EXPECT_TRUE(comesTo(mask, moved));
        const Rect inModel = frameOf(mask);
        EXPECT_NEAR(inModel.x, frame.x, 1e-9);
        EXPECT_NEAR(inModel.y, frame.y, 1e-9);
        EXPECT_EQ(inModel.size(), frame.size());
        EXPECT_TRUE(becomesPainted(mask));
        EXPECT_EQ(quit(), 0);
    }
}

TEST_F(Scale, EachMonitorHasItsOwn) {
    // The right monitor is 320 by 400 points large.
    monitors.set({{u"A"_s, {0, 0, 640, 800}}, {u"B"_s, {640, 0, 640, 800}}});
    environment.insert(u"QT_SCREEN_SCALE_FACTORS"_s, u"A=1;B=2"_s);
    const QUuid onRight = addMask({700, 500, 100, 60});
    const QUuid crossing = addMask({400, 640, 100, 60}, Qt::blue);
    start();
    EXPECT_TRUE(comesTo(onRight, {760, 480, 200, 120}));
    const QPoint from(450, 130);
    input.movePointer(from);
    input.press();
    const std::pair<int, QRect> steps[] = {{500, {450, 100, 100, 60}},
                                           {800, {700, 70, 200, 120}},
                                           {1100, {1000, 70, 200, 120}},
                                           {500, {450, 100, 100, 60}},
                                           {900, {800, 70, 200, 120}}};
    for (const auto& [x, rect] : steps) {
        input.movePointer({x, from.y()});
        EXPECT_TRUE(comesTo(crossing, rect)) << x;
        EXPECT_TRUE(becomesPainted(crossing));
    }
    input.release();
    EXPECT_EQ(frameOf(crossing), (Rect{720, 705, 100, 60}));
}
