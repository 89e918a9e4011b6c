#pragma once

#include "Models/HotkeyBinding.h"
#include "Platform/HotKeyCenter.h"
#include "contract/DesktopHarness.h"

#include <functional>
#include <gtest/gtest.h>
#include <vector>

/// What the contract of hot keys needs of a desktop, beside the port.
class HotKeyHarness {
public:
    virtual ~HotKeyHarness() = default;

    virtual HotKeyCenter& hotKeys() = 0;
    /// Presses and releases the keys of the combination; N, H, L and S at least.
    virtual void press(const HotkeyBinding& binding) = 0;
    /// Another program takes the combination.
    virtual void occupy(const HotkeyBinding& binding) = 0;
    /// It gives the combination back.
    virtual void vacate(const HotkeyBinding& binding) = 0;
    /// Returns when what was pressed so far has been told.
    virtual void settle() = 0;
    virtual bool waitUntil(const std::function<bool()>& condition) = 0;
};

/// What every back end must do with hot keys. A back end instantiates the suite with its harness,
/// and includes this in one file.
class HotKeyContract : public testing::TestWithParam<HarnessMaker<HotKeyHarness>> {
protected:
    using Ids = std::vector<quint32>;

    static constexpr quint32 control = HotkeyBinding::controlModifier;
    static constexpr quint32 option = HotkeyBinding::optionModifier;
    static constexpr quint32 shift = HotkeyBinding::shiftModifier;
    static constexpr quint32 command = HotkeyBinding::commandModifier;
    static constexpr HotkeyBinding n{45, control + option + command};
    static constexpr HotkeyBinding h{4, shift + command};
    static constexpr HotkeyBinding l{37, control + option};
    static constexpr HotkeyBinding s{1, control + shift};

    std::unique_ptr<HotKeyRegistration> take(const HotkeyBinding& binding, quint32 id) {
        return harness.hotKeys().registerHotKey(binding.keyCode, binding.modifiers, {7, id});
    }
    Subscription recordInto(Ids& ids) {
        return harness.hotKeys().installEventHandler([&ids](const HotKeyEvent& event) {
            ids.push_back(event.directObject.value_or(HotKeyIdentifier{}).id);
        });
    }
    /// Whether pressing these one after the other, and then the last once more, tells exactly that.
    /// The last one proves that nothing is still to come.
    testing::AssertionResult tells(const std::vector<HotkeyBinding>& pressed, Ids expected,
                                   const Ids& told) {
        const std::size_t before = told.size();
        for (const HotkeyBinding& binding : pressed)
            harness.press(binding);
        harness.press(pressed.back());
        expected.push_back(expected.back());
        static_cast<void>(
            harness.waitUntil([&] { return told.size() >= before + expected.size(); }));
        const Ids news(told.begin() + static_cast<std::ptrdiff_t>(before), told.end());
        if (news == expected) return testing::AssertionSuccess();
        return testing::AssertionFailure() << testing::PrintToString(news);
    }

    const std::unique_ptr<HotKeyHarness> owner = GetParam()();
    HotKeyHarness& harness = *owner;
};

TEST_P(HotKeyContract, EachPressIsToldToTheNewestHandler) {
    const auto first = take(n, 1);
    const auto second = take(h, 2);
    ASSERT_TRUE(first && second);
    Ids before;
    Ids after;
    Subscription replaced = recordInto(before);
    EXPECT_TRUE(tells({n, h, n}, {1, 2, 1}, before));
    Subscription current = recordInto(after);
    replaced.reset();
    EXPECT_TRUE(tells({h, n}, {2, 1}, after));
    EXPECT_EQ(before.size(), 4U);

    current.reset();
    harness.press(n);
    harness.settle();
    const Subscription later = recordInto(before);
    EXPECT_TRUE(tells({h}, {2}, before));
    EXPECT_EQ(after.size(), 3U);
}

TEST_P(HotKeyContract, ACombinationHasOneHolderUntilItIsGivenBack) {
    harness.occupy(l);
    EXPECT_FALSE(take(l, 3));
    auto first = take(n, 1);
    const auto last = take(s, 4);
    ASSERT_TRUE(first && last);
    EXPECT_FALSE(take(n, 5));
    Ids told;
    const Subscription handler = recordInto(told);
    EXPECT_TRUE(tells({n, l, s}, {1, 4}, told));
    // Other modifiers make another combination.
    EXPECT_TRUE(tells({{45, control}, {45, n.modifiers + shift}, s}, {4}, told));
    first.reset();
    EXPECT_TRUE(tells({n, s}, {4}, told));
    first = take(n, 5);
    ASSERT_TRUE(first);
    EXPECT_TRUE(tells({n, s}, {5, 4}, told));
}

TEST_P(HotKeyContract, NothingIsToldWhileSuspended) {
    const auto first = take(n, 1);
    Ids told;
    const Subscription handler = recordInto(told);
    Subscription outer = harness.hotKeys().suspendHotKeys();
    Subscription inner = harness.hotKeys().suspendHotKeys();
    const auto second = take(h, 2);
    ASSERT_TRUE(first && second);
    harness.press(n);
    outer.reset();
    harness.press(h);
    inner.reset();
    EXPECT_TRUE(tells({n, h}, {1, 2}, told));
    EXPECT_EQ(told.size(), 3U);
}

TEST_P(HotKeyContract, WhatIsLostInASuspensionIsToldAndComesBack) {
    const auto lost = take(l, 3);
    const auto kept = take(n, 1);
    ASSERT_TRUE(lost && kept);
    Ids told;
    const Subscription handler = recordInto(told);
    for (const bool isHeld : {true, false, true}) {
        const Ids expected = isHeld ? std::vector<quint32>{3, 1} : std::vector<quint32>{1};
        Subscription suspension = harness.hotKeys().suspendHotKeys();
        harness.settle();
        isHeld ? harness.vacate(l) : harness.occupy(l);
        EXPECT_TRUE(kept->isHeld().value());
        suspension.reset();
        EXPECT_EQ(lost->isHeld().value(), isHeld);
        EXPECT_TRUE(kept->isHeld().value());
        EXPECT_TRUE(tells({l, n}, expected, told));
    }
}
