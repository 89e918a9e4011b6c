#pragma once

#include "Platform/Headless/HeadlessScreens.h"
#include "Platform/OverlaySurfaces.h"

#include <cstdint>
#include <vector>

class HeadlessOverlaySurfaces;

/// A surface that only remembers what was asked of it.
class HeadlessSurface final : public OverlaySurface {
public:
    HeadlessSurface(HeadlessOverlaySurfaces& owner, SurfaceDescription description,
                    SurfaceDelegate* delegate);
    ~HeadlessSurface() override;

    Rect frame() const override { return m_description.frame; }
    void setFrame(const Rect& frame) override;
    void setContent(std::shared_ptr<const SurfaceContent> content) override;
    void setAccessibleDescription(const AccessibleDescription& description) override;
    void setIgnoresMouseEvents(bool ignores) override;
    void setCursor(CursorShape shape) override { m_cursor = shape; }
    void orderFront() override;
    void orderOut() override;

    const std::optional<QUuid>& maskID() const { return m_description.maskID; }
    const std::shared_ptr<const SurfaceContent>& content() const { return m_content; }
    const AccessibleDescription& accessibleDescription() const { return m_accessible; }
    bool ignoresMouseEvents() const { return m_ignoresMouseEvents; }
    bool isShown() const { return m_isShown; }
    CursorShape cursor() const { return m_cursor; }
    SurfaceDelegate* delegate() const { return m_delegate; }

private:
    friend class HeadlessOverlaySurfaces;

    HeadlessOverlaySurfaces& m_owner;
    SurfaceDescription m_description;
    SurfaceDelegate* m_delegate;
    std::shared_ptr<const SurfaceContent> m_content;
    AccessibleDescription m_accessible;
    bool m_ignoresMouseEvents = false;
    bool m_isShown = false;
    CursorShape m_cursor = CursorShape::arrow;
    // The later a surface was last raised, the higher it lies.
    std::uint64_t m_raised = 0;
};

/// Overlay surfaces of an imagined desktop, with a mouse that its owner moves and presses.
class HeadlessOverlaySurfaces final : public OverlaySurfaces {
public:
    explicit HeadlessOverlaySurfaces(HeadlessScreens& screens);

    std::unique_ptr<OverlaySurface> createSurface(const SurfaceDescription& description,
                                                  SurfaceDelegate* delegate) override;
    void beginBatch() override { ++m_openBatches; }
    void endBatch() override;

    /// The shown surfaces, bottom to top.
    const std::vector<HeadlessSurface*>& shownSurfaces() const { return m_shown; }
    /// Every surface that exists, in order of creation.
    const std::vector<HeadlessSurface*>& allSurfaces() const { return m_all; }
    /// The existing surface of a mask, null when there is none.
    HeadlessSurface* surfaceOf(const QUuid& maskID) const;

    /// Counts everything that would have been painted or sent to a server.
    int changeCount() const { return m_changeCount; }

    /// Moves the mouse, delivering what a real one would. The pointer of the screens follows.
    void moveMouse(Point global);
    /// Presses and releases the left button where the mouse is.
    void pressMouse();
    void releaseMouse();

private:
    friend class HeadlessSurface;

    void forget(HeadlessSurface* surface);
    void noteChange() { ++m_changeCount; }
    void restackUnlessBatched();
    void restack();
    void endGestureOf(const HeadlessSurface* surface);
    void followScreens();
    HeadlessSurface* surfaceAt(Point global) const;
    static Point positionIn(const HeadlessSurface& surface, Point global);

    HeadlessScreens& m_screens;
    QList<ScreenInfo> m_knownScreens;
    std::vector<HeadlessSurface*> m_all;
    std::vector<HeadlessSurface*> m_shown;
    HeadlessSurface* m_pressed = nullptr;
    HeadlessSurface* m_hovered = nullptr;
    int m_openBatches = 0;
    int m_changeCount = 0;
    bool m_needsRestack = false;
    std::uint64_t m_lastRaise = 0;
    Subscription m_screensChanged;
};
