#pragma once

#include "Platform/HotKeyCenter.h"

#include <map>
#include <memory>
#include <set>
#include <utility>

/// A table of hot keys. Its owner presses the keys, and says which combinations others hold.
class HeadlessHotKeyCenter final : public HotKeyCenter {
public:
    /// Key code, then modifier mask.
    using Combination = std::pair<quint32, quint32>;

    Subscription installEventHandler(Handler handler) override;
    std::unique_ptr<HotKeyRegistration> registerHotKey(quint32 keyCode, quint32 modifiers,
                                                       const HotKeyIdentifier& identifier) override;
    Subscription suspendHotKeys() override;

    /// From now on another program holds the combination; what is registered is lost to it when a
    /// suspension ends.
    void occupy(const Combination& combination) { m_state->occupied.insert(combination); }
    /// The other program gives the combination back.
    void vacate(const Combination& combination) { m_state->occupied.erase(combination); }
    /// A key goes down; false when the combination is not registered, is lost, or is suspended.
    bool press(const Combination& combination);
    /// Delivers an event as it is.
    void deliver(const HotKeyEvent& event);
    const std::map<Combination, HotKeyIdentifier>& registered() const {
        return m_state->registered;
    }
    int handlerCount() const { return m_state->handler ? 1 : 0; }
    bool isSuspended() const { return m_state->suspensions > 0; }

private:
    class Registration;
    struct State {
        void resume();

        Handler handler;
        quint64 handlerNumber = 0;
        std::map<Combination, HotKeyIdentifier> registered;
        std::map<Combination, Registration*> registrations;
        std::set<Combination> occupied;
        int suspensions = 0;
    };

    std::shared_ptr<State> m_state = std::make_shared<State>();  // lets handles outlive the center
};
