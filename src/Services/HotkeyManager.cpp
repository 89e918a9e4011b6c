#include "Services/HotkeyManager.h"

#include <utility>

void HotkeyManager::registerBindings(const QMap<QString, HotkeyBinding>& bindings,
                                     OnAction onAction) {
    m_onAction = std::move(onAction);
    unregisterAll();
    m_handler = m_center.installEventHandler([this](const HotKeyEvent& event) { handle(event); });
    for (const HotkeyAction action : allHotkeyActions) {
        const QString key = hotkeyBindingKey(action);
        const HotkeyBinding binding = bindings.value(key, HotkeyBinding::defaults().value(key));
        auto hotKey = m_center.registerHotKey(binding.keyCode, binding.modifiers,
                                              {signature, static_cast<quint32>(action)});
        if (!hotKey) continue;
        m_holdings.keep(
            hotKey->isHeld().subscribe([this, action](bool isHeld) { note(action, isHeld); }));
        m_hotKeys.push_back(std::move(hotKey));
    }
}

void HotkeyManager::unregisterAll() {
    m_holdings.clear();
    m_hotKeys.clear();
    m_handler.reset();
    if (!m_registered.newest().empty()) m_registered.set({});
}

bool HotkeyManager::isRegistered(HotkeyAction action) const {
    return m_registered.value().contains(action);
}

void HotkeyManager::note(HotkeyAction action, bool isHeld) {
    if (m_registered.newest().contains(action) == isHeld) return;
    m_registered.update([&](std::set<HotkeyAction>& actions) {
        if (isHeld)
            actions.insert(action);
        else
            actions.erase(action);
    });
}

void HotkeyManager::handle(const HotKeyEvent& event) {
    const auto action =
        hotkeyActionFromRawValue(event.directObject.value_or(HotKeyIdentifier{}).id);
    if (!action) return;
    m_scheduler.post(m_lifetime.guard([this, action = *action] {
        if (const OnAction onAction = m_onAction) onAction(action);
    }));
}
