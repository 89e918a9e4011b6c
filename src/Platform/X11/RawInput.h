#pragma once

#include "Platform/X11/XcbConnection.h"
#include "Reactive/Lifetime.h"
#include "Reactive/Subscription.h"

#include <functional>
#include <optional>

/// One kind of raw events of the input extension, which no window and no grab takes away.
class RawInput {
public:
    enum class Kind { buttonPress, keyRelease };

    /// `connection` must outlive the object.
    RawInput(XcbConnection& connection, Kind kind) : m_connection(connection), m_kind(kind) {}

    /// Calls back with the number of the button or key, for one listener at a time. The handle
    /// holds nothing where the server has no such events.
    Subscription listen(std::function<void(uint32_t detail)> callback);

private:
    void select(bool isWanted);
    void handleEvent(const xcb_generic_event_t& event);

    XcbConnection& m_connection;
    Kind m_kind;
    /// Its opcode; nothing before it is first wanted, or without it.
    std::optional<uint8_t> m_extension;
    std::function<void(uint32_t)> m_callback;
    Lifetime m_lifetime;
    Subscription m_events;
};
