#include "Platform/X11/Overlays/BackdropPainter.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace {

/// How long a frame of a usual display lasts.
constexpr std::chrono::milliseconds displayFrame{16};
/// How many pixels are composed before the server is given a rest: some two milliseconds' work.
constexpr int portionPixels = 1 << 19;
/// What it takes to compose anything at all, in pixels.
constexpr int requestsInPixels = 1 << 12;

/// Takes about that many pixels away from a region, from its top.
QRegion takePortion(QRegion& region, int pixels) {
    QRegion portion;
    int left = pixels;
    for (const QRect& rect : region) {
        const int rows = std::clamp(left / rect.width(), 1, rect.height());
        portion += QRect(rect.topLeft(), QSize(rect.width(), rows));
        left -= rows * rect.width();
        if (left <= 0) break;
    }
    region -= portion;
    return portion;
}

}  // namespace

BackdropPainter::BackdropPainter(XcbConnection& connection, Scheduler& scheduler,
                                 ShownMasks shownMasks, BackdropSource::IsOwnWindow isOwnWindow)
    : m_connection(connection),
      m_scheduler(scheduler),
      m_shownMasks(std::move(shownMasks)),
      m_kit(connection),
      m_scratch(m_kit),
      m_source(m_kit, std::move(isOwnWindow)) {
    m_source.onChanged = [this](const QRegion& region) { noteChange(region); };
    m_source.onDamaged = [this] { schedule(); };
    m_source.ownRegion = [this] {
        QRegion region;
        for (const Mask& mask : m_shownMasks())
            region += mask.window->rect();
        return region;
    };
}

std::unique_ptr<ComposedPicture> BackdropPainter::makePicture(NativeOverlayWindow& window) {
    return std::make_unique<ComposedPicture>(m_kit, m_scratch, window);
}

bool BackdropPainter::follow(bool isNeeded) {
    const bool wasActive = m_source.isActive();
    m_source.setActive(isNeeded);
    if (m_source.isActive() == wasActive) return false;
    m_changes.clear();
    m_isRefreshing = false;
    m_pendingRefresh.reset();
    m_lifetime.reset();
    if (wasActive)
        m_scratch.clear();
    else
        m_lifetime.emplace();
    return !wasActive;
}

void BackdropPainter::noteChange(const QRegion& region) {
    if (!m_source.isActive()) return;
    m_changes.push_back(region);
    schedule();
}

bool BackdropPainter::isChangeBelowMask() const {
    const auto masks = m_shownMasks();
    return std::any_of(masks.begin(), masks.end(), [&](const Mask& mask) {
        return mask.picture &&
               std::any_of(m_changes.begin(), m_changes.end(), [&](const QRegion& change) {
                   return change.intersects(mask.window->rect());
               });
    });
}

QRegion BackdropPainter::interest() const {
    QRegion region;
    for (const Mask& mask : m_shownMasks())
        if (mask.picture)
            region += mask.picture->seeThrough().translated(mask.window->rect().topLeft());
    return region;
}

ComposedPicture::DrawGround BackdropPainter::groundOf(const std::vector<Mask>& masks,
                                                      std::size_t index) {
    if (!m_source.isKnown()) return nullptr;
    std::vector<BackdropSource::OwnLayer> below;
    const NativeOverlayWindow& window = *masks[index].window;
    for (std::size_t i = 0; i < index; ++i) {
        const NativeOverlayWindow& other = *masks[i].window;
        if (other.rect().intersects(window.rect()))
            below.push_back({other.id(), other.rect(), other.visual().visual(), other.picture()});
    }
    return [this, below = std::move(below), &window, position = window.rect().topLeft()](
               ServerPicture& target, QPoint origin, const QRegion& area) {
        m_source.draw(target, position + origin, area.translated(position), below, window.id());
    };
}

void BackdropPainter::renew(ComposedPicture& picture) {
    const auto masks = m_shownMasks();
    const auto found = std::find_if(masks.begin(), masks.end(),
                                    [&](const Mask& mask) { return mask.picture == &picture; });
    picture.renew(found == masks.end()
                      ? nullptr
                      : groundOf(masks, static_cast<std::size_t>(found - masks.begin())));
}

void BackdropPainter::prepareOrder(const std::vector<Mask>& wanted,
                                   const std::vector<xcb_window_t>& before) {
    std::unordered_map<xcb_window_t, std::size_t> placeBefore;
    for (std::size_t i = 0; i < before.size(); ++i)
        placeBefore.emplace(before[i], i);
    const auto place = [&](const Mask& mask) -> std::optional<std::size_t> {
        const auto found = placeBefore.find(mask.window->id());
        return found == placeBefore.end() ? std::nullopt : std::optional(found->second);
    };

    int budget = portionPixels;
    // Whether all so far were there before, and in this order.
    bool isAsBefore = true;
    std::optional<std::size_t> lastPlace;
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        const auto own = place(wanted[i]);
        isAsBefore = isAsBefore && own && (!lastPlace || *lastPlace < *own);
        lastPlace = own;
        if (!wanted[i].picture) continue;
        ComposedPicture& picture = *wanted[i].picture;
        const QRect rect = wanted[i].window->rect();
        if (!own || wanted[i].window->picture() == XCB_NONE) {
            // What it showed when it was last on screen may be hidden by others now.
            picture.forgetGlass();
            budget -= rect.width() * rect.height();
            picture.renew(budget > 0 ? groundOf(wanted, i) : nullptr);
            noteChange(rect);
            continue;
        }
        if (isAsBefore) continue;
        QRegion uncovered;
        for (std::size_t j = 0; j < i; ++j) {
            const auto other = place(wanted[j]);
            const bool wasBelow = other && *other < *own;
            if (!wasBelow && wanted[j].window->rect().intersects(rect))
                uncovered += wanted[j].window->rect() & rect;
        }
        if (uncovered.isEmpty()) continue;
        // Of what it took along when it was moved, nobody knows what is hidden there.
        if (picture.settledAt != rect.topLeft()) uncovered = rect;
        const QRegion area = uncovered.translated(-rect.topLeft());
        budget -= pixelsOf(area);
        picture.blacken(area, budget > 0 ? groundOf(wanted, i) : nullptr);
        noteChange(uncovered);
    }
}

void BackdropPainter::schedule() {
    if (m_isRefreshing || m_pendingRefresh.isActive() || !m_source.isKnown()) return;
    if (!isChangeBelowMask()) {
        m_changes.clear();
        if (!m_source.isDamaged(interest())) return;
    }
    using namespace std::chrono;
    const auto wait =
        duration_cast<milliseconds>(m_lastRefresh + displayFrame - steady_clock::now());
    m_pendingRefresh = m_scheduler.after(std::max(wait, milliseconds(0)), [this] { begin(); });
}

void BackdropPainter::begin() {
    m_pendingRefresh.reset();
    if (!m_source.isKnown()) return;
    m_lastRefresh = std::chrono::steady_clock::now();
    m_isRefreshing = true;
    m_source.takeDamage(interest(), m_lifetime->guard([this](const QRegion& changed) {
        m_changes.push_back(changed);
        distribute();
        work();
    }));
    m_connection.flush();
}

void BackdropPainter::distribute() {
    // From the bottom up, because a picture changes those of the masks above it.
    for (const Mask& mask : m_shownMasks()) {
        if (!mask.picture) continue;
        const QRect rect = mask.window->rect();
        ComposedPicture& picture = *mask.picture;
        QRegion below;
        for (const QRegion& change : m_changes)
            if (change.intersects(rect)) below += change & rect;
        below.translate(-rect.topLeft());
        const QRegion affected = picture.spread(below);
        if (below.isEmpty() || affected.isEmpty()) continue;
        picture.uncomposed += affected;
        if (picture.needsCapture()) picture.uncaptured += below;
        m_changes.push_back(affected.translated(rect.topLeft()));
    }
    m_changes.clear();
}

void BackdropPainter::work() {
    const auto masks = m_shownMasks();
    int budget = portionPixels;
    // One is worked on to its end before those above it, which show it.
    for (std::size_t i = 0; i < masks.size(); ++i)
        if (masks[i].picture && !bringUpToDate(masks, i, budget)) return m_connection.flush();
    m_isRefreshing = false;
    m_scratch.trim(portionPixels);
    m_connection.flush();
    schedule();
}

bool BackdropPainter::bringUpToDate(const std::vector<Mask>& masks, std::size_t index,
                                    int& budget) {
    ComposedPicture& picture = *masks[index].picture;
    if (!picture.uncaptured.isEmpty()) {
        picture.capture(takePortion(picture.uncaptured, budget), groundOf(masks, index),
                        m_lifetime->guard([this] { work(); }));
        return false;
    }
    while (!picture.uncomposed.isEmpty()) {
        if (budget <= 0) {
            awaitServer();
            return false;
        }
        const QRegion portion = takePortion(picture.uncomposed, budget);
        budget -= pixelsOf(portion) + requestsInPixels;
        picture.blur(portion);
        picture.compose(portion, groundOf(masks, index));
    }
    picture.settledAt = masks[index].window->rect().topLeft();
    return true;
}

void BackdropPainter::awaitServer() {
    m_connection.whenReplied<xcb_get_input_focus_reply_t>(
        xcb_get_input_focus(m_connection),
        m_lifetime->guard([this](const XcbReply<xcb_get_input_focus_reply_t>&) { work(); }));
}
