#pragma once

#include "Models/HotkeyBinding.h"
#include "Platform/HotKeyCenter.h"

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

/// What every back end must do with hot keys. A back end instantiates the suite with its harness.
template <typename Harness>
class HotKeyContract : public testing::Test {
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

    Harness harness;
};

TYPED_TEST_SUITE_P(HotKeyContract);

TYPED_TEST_P(HotKeyContract, EachPressIsToldToTheNewestHandler) {
    const auto first = this->take(this->n, 1);
    const auto second = this->take(this->h, 2);
    ASSERT_TRUE(first && second);
    typename TestFixture::Ids before;
    typename TestFixture::Ids after;
    Subscription replaced = this->recordInto(before);
    EXPECT_TRUE(this->tells({this->n, this->h, this->n}, {1, 2, 1}, before));
    Subscription current = this->recordInto(after);
    replaced.reset();
    EXPECT_TRUE(this->tells({this->h, this->n}, {2, 1}, after));
    EXPECT_EQ(before.size(), 4U);

    current.reset();
    this->harness.press(this->n);
    this->harness.settle();
    const Subscription later = this->recordInto(before);
    EXPECT_TRUE(this->tells({this->h}, {2}, before));
    EXPECT_EQ(after.size(), 3U);
}

TYPED_TEST_P(HotKeyContract, ACombinationHasOneHolderUntilItIsGivenBack) {
    this->harness.occupy(this->l);
    EXPECT_FALSE(this->take(this->l, 3));
    auto first = this->take(this->n, 1);
    const auto last = this->take(this->s, 4);
    ASSERT_TRUE(first && last);
    EXPECT_FALSE(this->take(this->n, 5));
    typename TestFixture::Ids told;
    const Subscription handler = this->recordInto(told);
    EXPECT_TRUE(this->tells({this->n, this->l, this->s}, {1, 4}, told));
    // Other modifiers make another combination.
    EXPECT_TRUE(this->tells({{45, this->control}, {45, this->n.modifiers + this->shift}, this->s},
                            {4}, told));
    first.reset();
    EXPECT_TRUE(this->tells({this->n, this->s}, {4}, told));
    first = this->take(this->n, 5);
    ASSERT_TRUE(first);
    EXPECT_TRUE(this->tells({this->n, this->s}, {5, 4}, told));
}

TYPED_TEST_P(HotKeyContract, NothingIsToldWhileSuspended) {
    const auto first = this->take(this->n, 1);
    typename TestFixture::Ids told;
    const Subscription handler = this->recordInto(told);
    Subscription outer = this->harness.hotKeys().suspendHotKeys();
    Subscription inner = this->harness.hotKeys().suspendHotKeys();
    const auto second = this->take(this->h, 2);
    ASSERT_TRUE(first && second);
    this->harness.press(this->n);
    outer.reset();
    this->harness.press(this->h);
    inner.reset();
    EXPECT_TRUE(this->tells({this->n, this->h}, {1, 2}, told));
    EXPECT_EQ(told.size(), 3U);
}

TYPED_TEST_P(HotKeyContract, WhatIsLostInASuspensionIsToldAndComesBack) {
    const auto lost = this->take(this->l, 3);
    const auto kept = this->take(this->n, 1);
    ASSERT_TRUE(lost && kept);
    typename TestFixture::Ids told;
    const Subscription handler = this->recordInto(told);
    for (const bool isHeld : {true, false, true}) {
        const typename TestFixture::Ids expected =
            isHeld ? std::vector<quint32>{3, 1} : std::vector<quint32>{1};
        Subscription suspension = this->harness.hotKeys().suspendHotKeys();
        this->harness.settle();
        isHeld ? this->harness.vacate(this->l) : this->harness.occupy(this->l);
        EXPECT_TRUE(kept->isHeld().value());
        suspension.reset();
        EXPECT_EQ(lost->isHeld().value(), isHeld);
        EXPECT_TRUE(kept->isHeld().value());
        EXPECT_TRUE(this->tells({this->l, this->n}, expected, told));
    }
}

REGISTER_TYPED_TEST_SUITE_P(HotKeyContract, EachPressIsToldToTheNewestHandler,
                            ACombinationHasOneHolderUntilItIsGivenBack, NothingIsToldWhileSuspended,
                            WhatIsLostInASuspensionIsToldAndComesBack);
