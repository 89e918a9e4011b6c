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
        m_hotKeys[action] = m_center.registerHotKey(binding.keyCode, binding.modifiers,
                                                    {signature, static_cast<quint32>(action)});
    }
}

void HotkeyManager::unregisterAll() {
    m_hotKeys.clear();
    m_handler.reset();
}

bool HotkeyManager::isRegistered(HotkeyAction action) const {
    const auto found = m_hotKeys.find(action);
    return found != m_hotKeys.end() && found->second;
}

void HotkeyManager::handle(const HotKeyEvent& event) {
    const auto action =
        hotkeyActionFromRawValue(event.directObject.value_or(HotKeyIdentifier{}).id);
    if (!action) return;
    m_scheduler.post(m_lifetime.guard([this, action = *action] {
        if (const OnAction onAction = m_onAction) onAction(action);
    }));
}
