#include "Platform/Headless/HeadlessHotKeyCenter.h"

class HeadlessHotKeyCenter::Registration final : public HotKeyRegistration {
public:
    Registration(std::shared_ptr<State> state, Combination combination)
        : m_state(std::move(state)), m_combination(std::move(combination)) {
        m_state->registrations.emplace(m_combination, this);
    }
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;
    ~Registration() override {
        m_state->registered.erase(m_combination);
        m_state->registrations.erase(m_combination);
    }

    const Published<bool>& isHeld() const override { return m_isHeld; }
    void setIsHeld(bool isHeld) {
        if (isHeld != m_isHeld.newest()) m_isHeld.set(isHeld);
    }

private:
    std::shared_ptr<State> m_state;
    Combination m_combination;
    Published<bool> m_isHeld{true};
};

void HeadlessHotKeyCenter::State::resume() {
    if (--suspensions > 0) return;
    // Whoever is told may let go of any of them.
    const auto before = registrations;
    for (const auto& [combination, registration] : before)
        if (registrations.contains(combination))
            registrations.at(combination)->setIsHeld(!occupied.contains(combination));
}

Subscription HeadlessHotKeyCenter::installEventHandler(Handler handler) {
    m_state->handler = std::move(handler);
    return Subscription([state = m_state, number = ++m_state->handlerNumber] {
        if (number == state->handlerNumber) state->handler = nullptr;
    });
}

std::unique_ptr<HotKeyRegistration> HeadlessHotKeyCenter::registerHotKey(
    quint32 keyCode, quint32 modifiers, const HotKeyIdentifier& identifier) {
    const Combination combination{keyCode, modifiers};
    if (m_state->occupied.contains(combination)) return nullptr;
    if (!m_state->registered.emplace(combination, identifier).second) return nullptr;
    return std::make_unique<Registration>(m_state, combination);
}

Subscription HeadlessHotKeyCenter::suspendHotKeys() {
    ++m_state->suspensions;
    return Subscription([state = m_state] { state->resume(); });
}

bool HeadlessHotKeyCenter::press(const Combination& combination) {
    const auto found = m_state->registered.find(combination);
    if (found == m_state->registered.end() || isSuspended()) return false;
    if (!m_state->registrations.at(combination)->isHeld().value()) return false;
    deliver({found->second});
    return true;
}

void HeadlessHotKeyCenter::deliver(const HotKeyEvent& event) {
    if (const Handler handler = m_state->handler) handler(event);
}
