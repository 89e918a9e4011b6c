#include "Platform/Headless/HeadlessDesktop.h"
#include "Services/HotkeyManager.h"
#include "contract/HotKeyContract.h"

#include <optional>

using namespace Qt::Literals::StringLiterals;

namespace {

class HeadlessHotKeyHarness final : public HotKeyHarness {
public:
    HotKeyCenter& hotKeys() override { return m_center; }
    void press(const HotkeyBinding& binding) override {
        m_center.press({binding.keyCode, binding.modifiers});
    }
    void occupy(const HotkeyBinding& binding) override {
        m_center.occupy({binding.keyCode, binding.modifiers});
    }
    void vacate(const HotkeyBinding& binding) override {
        m_center.vacate({binding.keyCode, binding.modifiers});
    }
    void settle() override {}
    bool waitUntil(const std::function<bool()>& condition) override { return condition(); }

private:
    HeadlessHotKeyCenter m_center;
};

INSTANTIATE_TEST_SUITE_P(Headless, HotKeyContract,
                         testing::Values([] { return std::make_unique<HeadlessHotKeyHarness>(); }));

class HotkeyManagerTest : public testing::Test {
protected:
    using Combination = HeadlessHotKeyCenter::Combination;

    static constexpr quint32 modifiers = 4096 + 2048 + 256;
    static constexpr Combination n{45, modifiers}, h{4, modifiers}, l{37, modifiers},
        s{1, modifiers};

    void registerBindings(const QMap<QString, HotkeyBinding>& bindings = {}) {
        manager->registerBindings(bindings, [this](HotkeyAction action) { done.append(action); });
    }
    void press(std::initializer_list<Combination> combinations) {
        for (const Combination& combination : combinations)
            desktop.hotKeyCenter.press(combination);
    }
    void turn() { desktop.mainLoop.advanceBy(std::chrono::milliseconds(0)); }

    HeadlessDesktop desktop;
    HeadlessHotKeyCenter& center = desktop.hotKeyCenter;
    std::optional<HotkeyManager> manager{std::in_place, center, desktop.mainLoop};
    QList<HotkeyAction> done;
};

TEST_F(HotkeyManagerTest, RegistersOneHotKeyForEachActionHoweverOften) {
    const HotkeyBinding other{.keyCode = 12, .modifiers = 768};
    const struct {
        QMap<QString, HotkeyBinding> bindings;
        Combination ofToggleAll;
    } rows[] = {{{}, h},
                {HotkeyBinding::defaults(), h},
                {{{u"createMask"_s, {45, modifiers}}, {u"no action"_s, other}}, h},
                {{{u"toggleAll"_s, other}}, {12, 768}}};
    for (const auto& [bindings, ofToggleAll] : rows) {
        registerBindings(bindings);
        const std::map<Combination, HotKeyIdentifier> expected{{n, {0x5645594c, 1}},
                                                               {ofToggleAll, {0x5645594c, 2}},
                                                               {l, {0x5645594c, 3}},
                                                               {s, {0x5645594c, 4}}};
        EXPECT_EQ(center.registered(), expected);
        EXPECT_EQ(center.handlerCount(), 1);
    }
    manager->unregisterAll();
    EXPECT_TRUE(center.registered().empty());
    EXPECT_EQ(center.handlerCount(), 0);
}

TEST_F(HotkeyManagerTest, PerformsActionsInTheOrderOfThePressesInALaterTurn) {
    registerBindings();
    press({s, n, h, n, l});
    for (const quint32 id : {0U, 5U, 0xffffffffU})
        center.deliver({HotKeyIdentifier{HotkeyManager::signature, id}});
    center.deliver({});
    // The signature does not matter.
    center.deliver({HotKeyIdentifier{1, 2}});
    EXPECT_TRUE(done.isEmpty());
    turn();
    using enum HotkeyAction;
    EXPECT_EQ(done, (QList{toggleDashboard, createMask, toggleAll, createMask, toggleEditing,
                           toggleAll}));
}

TEST_F(HotkeyManagerTest, APressUnderWayGoesToTheCallbackOfThenAndDiesWithTheManager) {
    registerBindings();
    press({n});
    QList<HotkeyAction> later;
    manager->registerBindings({}, [&](HotkeyAction action) {
        later.append(action);
        registerBindings();  // the running callback outlives its replacement
        later.append(action);
    });
    turn();
    EXPECT_TRUE(done.isEmpty());
    EXPECT_EQ(later, (QList{HotkeyAction::createMask, HotkeyAction::createMask}));

    press({h});
    manager.reset();
    turn();
    EXPECT_TRUE(done.isEmpty());
    EXPECT_TRUE(center.registered().empty());
    EXPECT_EQ(center.handlerCount(), 0);
}

TEST_F(HotkeyManagerTest, OneCombinationThatCannotBeHadLeavesTheOthers) {
    center.occupy(h);
    // Two actions with one combination: the first has it.
    registerBindings({{u"toggleDashboard"_s, {45, modifiers}}});
    using enum HotkeyAction;
    EXPECT_TRUE(manager->isRegistered(createMask) && manager->isRegistered(toggleEditing));
    EXPECT_FALSE(manager->isRegistered(toggleAll) || manager->isRegistered(toggleDashboard));
    press({h, n, l});
    turn();
    EXPECT_EQ(done, (QList{createMask, toggleEditing}));
    manager->unregisterAll();
    EXPECT_FALSE(manager->isRegistered(createMask));
}

}  // namespace
