#include "Platform/X11/Overlays/TamperGuard.h"

#include <utility>
#include <xcb/shape.h>

namespace {

// The server does not tell who changed a window, so all who do are one.
const std::vector<Contests::Rival> whoever{0};

}  // namespace

TamperGuard::TamperGuard(XcbConnection& connection, Scheduler& scheduler, SystemLog& log,
                         Client& client)
    : m_connection(connection),
      m_scheduler(scheduler),
      m_log(log),
      m_client(client),
      m_shapeEvent(static_cast<uint8_t>(
          xcb_get_extension_data(connection, &xcb_shape_id)->first_event + XCB_SHAPE_NOTIFY)) {
    m_connection.selectRootEvents(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
    m_subscriptions.keep(
        m_connection.onEvent([this](const xcb_generic_event_t& event) { handleEvent(event); }));
    m_subscriptions.keep(m_connection.onForgedEvent(
        [this](const xcb_generic_event_t& event) { noteForgery(event); }));
    m_subscriptions.keep(m_connection.onBurstEnd([this] { mendWhenDue(); }));
}

void TamperGuard::handleEvent(const xcb_generic_event_t& event) {
    switch (event.response_type) {
        case XCB_UNMAP_NOTIFY: {
            const auto& unmap = reinterpret_cast<const xcb_unmap_notify_event_t&>(event);
            auto* const window = m_client.guardedWindow(unmap.window);
            if (!window || !window->isMapped() || !window->knowsMapping(event)) return;
            window->noteForeignMapping(false);
            m_client.windowWasHidden(unmap.window);
            m_areSomeShownOrHidden = true;
            break;
        }
        case XCB_MAP_NOTIFY: {
            const auto& map = reinterpret_cast<const xcb_map_notify_event_t&>(event);
            auto* const window = m_client.guardedWindow(map.window);
            if (!window || window->isMapped() || !window->knowsMapping(event)) return;
            window->noteForeignMapping(true);
            m_areSomeShownOrHidden = true;
            break;
        }
        case XCB_DESTROY_NOTIFY: {
            const auto& destroy = reinterpret_cast<const xcb_destroy_notify_event_t&>(event);
            auto* const window = m_client.guardedWindow(destroy.window);
            if (!window) return;
            m_client.windowWasHidden(destroy.window);
            m_lost.insert(destroy.window);
            break;
        }
        case XCB_REPARENT_NOTIFY: {
            const auto& reparent = reinterpret_cast<const xcb_reparent_notify_event_t&>(event);
            if (reparent.parent == m_connection.root() || !m_client.guardedWindow(reparent.window))
                return;
            m_client.windowWasHidden(reparent.window);
            m_lost.insert(reparent.window);
            break;
        }
        case XCB_CONFIGURE_NOTIFY:
            noteConfigure(reinterpret_cast<const xcb_configure_notify_event_t&>(event));
            break;
        case XCB_PROPERTY_NOTIFY:
            noteProperty(reinterpret_cast<const xcb_property_notify_event_t&>(event));
            break;
        default:
            if (event.response_type == m_shapeEvent) noteReshape(event);
            break;
    }
}

// Nothing has happened to the window, but mutter and KWin, which were told the same, paint it no
// more. A new one they do.
void TamperGuard::noteForgery(const xcb_generic_event_t& event) {
    constexpr uint8_t withoutMark = 0x7f;
    const uint8_t type = event.response_type & withoutMark;
    const bool isOfWindow = type == XCB_DESTROY_NOTIFY || type == XCB_UNMAP_NOTIFY ||
                            type == XCB_REPARENT_NOTIFY || type == XCB_CONFIGURE_NOTIFY;
    if (!isOfWindow || !m_client.isCompositing()) return;
    // In all of these the window comes at the same place.
    const auto window = reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window;
    if (m_client.guardedWindow(window)) m_lost.insert(window);
}

void TamperGuard::noteConfigure(const xcb_configure_notify_event_t& event) {
    if (event.event != m_connection.root()) return;
    const auto* const window = m_client.guardedWindow(event.window);
    const QRect rect(event.x, event.y, event.width, event.height);
    if (!window || (window->rect() == rect && event.border_width == 0) ||
        !window->knowsPlace(reinterpret_cast<const xcb_generic_event_t&>(event)))
        return;
    m_displaced.insert(event.window);
}

// Our own changes are told as well; the last of them leaves the window as it is wanted.
void TamperGuard::noteReshape(const xcb_generic_event_t& event) {
    const auto& shape = reinterpret_cast<const xcb_shape_notify_event_t&>(event);
    const auto* const window = m_client.guardedWindow(shape.affected_window);
    if (!window) return;
    const bool isWanted =
        (shape.shape_kind == XCB_SHAPE_SK_BOUNDING && window->hasBoundingAreas()) ||
        (shape.shape_kind == XCB_SHAPE_SK_INPUT && window->isInputPassThrough());
    if ((shape.shaped != 0) != isWanted) m_reshaped.insert(shape.affected_window);
}

void TamperGuard::noteProperty(const xcb_property_notify_event_t& event) {
    if (event.atom == m_connection.atoms().netWmWindowOpacity &&
        event.state == XCB_PROPERTY_NEW_VALUE && m_client.guardedWindow(event.window))
        m_faded.insert(event.window);
}

bool TamperGuard::isAnythingToMend() const {
    return m_areSomeShownOrHidden || !m_lost.empty() || !m_displaced.empty() ||
           !m_reshaped.empty() || !m_faded.empty();
}

void TamperGuard::mendWhenDue() {
    if (!isAnythingToMend() || m_delayedMending.isActive()) return;
    if (m_contests.mayAnswer(whoever)) return mend();
    if (m_contests.takeBeginning())
        m_log.write(
            QStringLiteral("Veyla: another program keeps hiding, moving or changing the masks' "
                           "windows; putting them right less often from now on"));
    m_delayedMending = m_scheduler.after(Contests::delay, [this] {
        m_delayedMending.reset();
        mend();
        m_connection.flush();
    });
}

void TamperGuard::mend() {
    m_contests.noteAnswer(whoever);
    m_areSomeShownOrHidden = false;
    for (const xcb_window_t lost : std::exchange(m_lost, {}))
        if (m_client.guardedWindow(lost)) m_client.replaceLostWindow(lost);
    for (const xcb_window_t displaced : std::exchange(m_displaced, {}))
        if (auto* const window = m_client.guardedWindow(displaced)) window->restoreRect();
    for (const xcb_window_t reshaped : std::exchange(m_reshaped, {}))
        if (auto* const window = m_client.guardedWindow(reshaped)) window->restoreShapes();
    for (const xcb_window_t faded : std::exchange(m_faded, {}))
        xcb_delete_property(m_connection, faded, m_connection.atoms().netWmWindowOpacity);
    m_client.showMendedWindows();
}
