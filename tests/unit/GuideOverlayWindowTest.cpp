#include "Services/GuideOverlayWindow.h"

#include <gtest/gtest.h>

namespace {

/// The one surface that a guide window makes, outliving it.
struct Surface final : OverlaySurface {
    struct Record {
        SurfaceDescription description;
        Rect frame;
        std::shared_ptr<const SurfaceContent> content;
        int contentsSet = 0;
        int ordersFront = 0;
        bool isShown = false;
        bool ignoresMouse = false;
    };

    explicit Surface(Record& record) : m_record(record) {}
    Rect frame() const override { return m_record.frame; }
    void setFrame(const Rect& frame) override { m_record.frame = frame; }
    void setContent(std::shared_ptr<const SurfaceContent> content) override {
        m_record.content = std::move(content);
        ++m_record.contentsSet;
    }
    void setAccessibleDescription(const AccessibleDescription&) override {}
    void setIgnoresMouseEvents(bool ignores) override { m_record.ignoresMouse = ignores; }
    void setCursor(CursorShape) override {}
    void orderFront() override {
        m_record.isShown = true;
        ++m_record.ordersFront;
    }
    void orderOut() override { m_record.isShown = false; }

    Record& m_record;
};

struct Surfaces final : OverlaySurfaces {
    std::unique_ptr<OverlaySurface> createSurface(const SurfaceDescription& description,
                                                  SurfaceDelegate*) override {
        record.description = description;
        return std::make_unique<Surface>(record);
    }
    void beginBatch() override {}
    void endBatch() override {}

    const QList<GuideLine>& guides() const {
        return dynamic_cast<const GuideView&>(*record.content).guides();
    }
    Surface::Record record;
};

TEST(GuideOverlayWindow, IsMadeHiddenEmptyAndClickThrough) {
    Surfaces surfaces;
    const GuideOverlayWindow window(surfaces);
    EXPECT_EQ(surfaces.record.description.frame, Rect());
    EXPECT_FALSE(surfaces.record.description.maskID);
    EXPECT_FALSE(surfaces.record.isShown);
    EXPECT_TRUE(surfaces.record.ignoresMouse);
}

TEST(GuideOverlayWindow, ShowsGuidesInTheCoordinatesOfTheVisibleFrame) {
    Surfaces surfaces;
    GuideOverlayWindow window(surfaces);
    const Rect visible{-1280, 40, 1280, 700};
    const QList<GuideLine> guides{GuideLine::vertical(-640), GuideLine::horizontal(390)};

    window.show(guides, visible);
    EXPECT_TRUE(surfaces.record.isShown);
    EXPECT_EQ(surfaces.record.frame, visible);
    EXPECT_EQ(surfaces.guides(),
              (QList<GuideLine>{GuideLine::vertical(640), GuideLine::horizontal(350)}));

    window.show(guides, visible);
    EXPECT_EQ(surfaces.record.contentsSet, 1) << "unchanged guides are not painted again";
    EXPECT_EQ(surfaces.record.ordersFront, 2);

    window.show({}, visible);
    EXPECT_FALSE(surfaces.record.isShown);

    window.show({GuideLine::vertical(10)}, {0, 0, 800, 600});
    EXPECT_TRUE(surfaces.record.isShown);
    EXPECT_EQ(surfaces.record.frame, (Rect{0, 0, 800, 600}));
    EXPECT_EQ(surfaces.guides(), QList<GuideLine>{GuideLine::vertical(10)});
}

}  // namespace
