#pragma once

#include "Models/HotkeyBinding.h"
#include "Platform/HotKeyCenter.h"
#include "Reactive/Lifetime.h"
#include "Reactive/Published.h"
#include "Reactive/Scheduler.h"
#include "Reactive/Subscription.h"

#include <QMap>
#include <QString>
#include <functional>
#include <memory>
#include <set>
#include <vector>

/// The four shortcuts that work in every application: one hot key for each HotkeyAction.
///
/// A combination that cannot be had leaves its action without a hot key; the others work. Main
/// thread only.
class HotkeyManager {
public:
    using OnAction = std::function<void(HotkeyAction action)>;

    /// "VEYL": what all hot keys are registered under, with the action's number as the id.
    static constexpr quint32 signature = 0x5645594c;

    /// The references must outlive the manager, which gives all hot keys back when it dies.
    HotkeyManager(HotKeyCenter& center, Scheduler& scheduler)
        : m_center(center), m_scheduler(scheduler) {}
    HotkeyManager(const HotkeyManager&) = delete;
    HotkeyManager& operator=(const HotkeyManager&) = delete;
    ~HotkeyManager() { unregisterAll(); }

    /// Replaces every registration. `bindings` is by binding key; an action without an entry takes
    /// its default one. From now on each press calls `onAction` in a turn of its own, in the order
    /// of the presses; one that is already on its way calls it too.
    void registerBindings(const QMap<QString, HotkeyBinding>& bindings, OnAction onAction);
    /// Gives all combinations back.
    void unregisterAll();

    /// Whether pressing the action's combination reaches Veyla.
    bool isRegistered(HotkeyAction action) const;
    /// The actions whose combinations do; announced when that changes.
    const Published<std::set<HotkeyAction>>& registeredActions() const { return m_registered; }

private:
    void handle(const HotKeyEvent& event);
    void note(HotkeyAction action, bool isHeld);

    HotKeyCenter& m_center;
    Scheduler& m_scheduler;
    Subscription m_handler;
    std::vector<std::unique_ptr<HotKeyRegistration>> m_hotKeys;
    Published<std::set<HotkeyAction>> m_registered;
    OnAction m_onAction;
    Lifetime m_lifetime;
    SubscriptionBag m_holdings;
};
