#include "Models/VirtualKeyCodes.h"
#include "Platform/X11/Keyboard/HeldKey.h"
#include "Services/HotkeyManager.h"
#include "contract/HotKeyContract.h"
#include "desktop/VeylaTest.h"
#include "support/desktop/X11Harness.h"

#include <QJsonArray>
#include <cstdlib>
#include <map>
#include <set>

using namespace Qt::Literals::StringLiterals;

namespace {

using Keycode = std::uint8_t;
using Keycodes = std::vector<Keycode>;

// As the server numbers them, whatever the layout.
constexpr Keycode controlKey = 37, shiftKey = 50, altKey = 64, superKey = 133;
constexpr Keycode capsLock = 66, numLock = 77, keyS = 39, keyH = 43, keyL = 46, keyN = 57;

Keycodes keycodesOf(const HotkeyBinding& binding) {
    static const std::map<quint32, Keycode> keys{{45, keyN}, {4, keyH}, {37, keyL}, {1, keyS}};
    Keycodes keycodes;
    for (const auto& [modifier, keycode] : {std::pair(HotkeyBinding::controlModifier, controlKey),
                                            std::pair(HotkeyBinding::optionModifier, altKey),
                                            std::pair(HotkeyBinding::shiftModifier, shiftKey),
                                            std::pair(HotkeyBinding::commandModifier, superKey)})
        if ((binding.modifiers & modifier) != 0) keycodes.push_back(keycode);
    keycodes.push_back(keys.at(binding.keyCode));
    return keycodes;
}

class X11HotKeyHarness final : public HotKeyHarness {
public:
    HotKeyCenter& hotKeys() override { return m_desktop.desktop().hotKeyCenter(); }
    void press(const HotkeyBinding& binding) override {
        m_desktop.input().typeChord(keycodesOf(binding));
    }
    void occupy(const HotkeyBinding& binding) override {
        ASSERT_EQ(binding.modifiers,
                  HotkeyBinding::controlModifier + HotkeyBinding::optionModifier);
        ASSERT_TRUE(neighbour.grabKey(keycodesOf(binding).back(), 4 + 8));
    }
    void vacate(const HotkeyBinding& binding) override {
        neighbour.ungrabKey(keycodesOf(binding).back(), 4 + 8);
    }
    void settle() override { m_desktop.settle(); }
    bool waitUntil(const std::function<bool()>& condition) override {
        return m_desktop.waitUntil(condition);
    }

    X11Harness& desktop() { return m_desktop; }
    NeighbourClient neighbour;

private:
    X11Harness m_desktop;
};

INSTANTIATE_TEST_SUITE_P(X11, HotKeyContract,
                         testing::Values([] { return std::make_unique<X11HotKeyHarness>(); }));

TEST(VirtualKeyCodes, NameTheSamePlaceBothWays) {
    std::set<Keycode> places;
    for (quint32 code = 0; code <= 300; ++code) {
        const auto keycode = keycodeForVirtualKey(code);
        if (!keycode) continue;
        EXPECT_TRUE(places.insert(*keycode).second) << code;
        EXPECT_EQ(virtualKeyForKeycode(*keycode), code);
    }
    // Letters, digits and function keys lie where the server's layout for Americans has them.
    const XTestInput input;
    for (quint32 code = 0; code <= 126; ++code) {
        const QString name = HotkeyBinding::keyCodeToString(code);
        const bool isFunctionKey = name.size() > 1 && name.at(0) == u'F';
        if ((name.size() != 1 && !isFunctionKey) || name.at(0).unicode() > 0x7e) continue;
        const quint32 keysym =
            isFunctionKey ? 0xffbd + name.mid(1).toUInt() : name.at(0).toLower().unicode();
        EXPECT_EQ(keycodeForVirtualKey(code), input.keycodeFor(keysym)) << code;
    }
    const std::pair<quint32, quint32> others[] = {
        {36, 0xff0d},  {51, 0xff08},  {53, 0xff1b},  {69, 0xffab},  {123, 0xff51},
        {126, 0xff52}, {117, 0xffff}, {115, 0xff50}, {121, 0xff56}, {76, 0xff8d}};
    for (const auto& [code, keysym] : others)
        EXPECT_EQ(keycodeForVirtualKey(code), input.keycodeFor(keysym)) << code;
    EXPECT_EQ(keycodeForVirtualKey(55), std::nullopt);
    EXPECT_EQ(virtualKeyForKeycode(shiftKey), std::nullopt);
}

TEST(X11HotKeys, ARefusalIsLoggedAndLeavesNothingTaken) {
    X11HotKeyHarness harness;
    const auto take = [&](quint32 keyCode, quint32 modifiers) {
        return harness.hotKeys().registerHotKey(keyCode, modifiers, {});
    };
    harness.occupy({45, 4096 + 2048});
    const auto own = take(1, 256);
    const std::pair<HotkeyBinding, QString> rows[] = {
        {{45, 4096 + 2048}, u"⌃⌥N (Ctrl+Alt+N): another program holds it"_s},
        {{1, 256}, u"⌘S (Super+S): Veyla has registered it already"_s},
        {{200, 512}, u"⇧Key200 (Shift+Key200): the keyboard has no such key"_s}};
    QStringList expected;
    for (const auto& [binding, text] : rows) {
        EXPECT_FALSE(take(binding.keyCode, binding.modifiers));
        expected.append(u"Veyla cannot use the shortcut "_s + text);
    }
    EXPECT_EQ(harness.desktop().log().lines, expected);
    // Only the plain combination was refused; those with Caps Lock and Num Lock were not.
    NeighbourClient another;
    for (const int locks : {2, 16, 18})
        EXPECT_TRUE(another.grabKey(keyN, static_cast<std::uint16_t>(12 | locks))) << locks;
    EXPECT_FALSE(another.grabKey(keyS, 64 | 2));
}

TEST(X11HotKeys, AHeldKeyActsOnce) {
    X11HotKeyHarness harness;
    std::optional<HotkeyManager> manager(std::in_place, harness.hotKeys(),
                                         harness.desktop().mainLoop());
    QList<HotkeyAction> done;
    manager->registerBindings({}, [&](HotkeyAction action) { done.append(action); });
    int events = 0;
    int repetitions = 0;
    const Subscription count =
        harness.desktop().desktop().connection().onEvent([&](const xcb_generic_event_t& event) {
            const auto& key = reinterpret_cast<const xcb_key_press_event_t&>(event);
            const bool isPress = (event.response_type & 0x7f) == XCB_KEY_PRESS;
            events += isPress && key.detail == keyN;
            repetitions += isPress && key.detail == keyH;
        });
    XTestInput& input = harness.desktop().input();
    for (const Keycode key : {controlKey, altKey, superKey, keyN})
        input.pressKeycode(key);
    EXPECT_TRUE(harness.waitUntil([&] { return events >= 3; })) << "the server does not repeat";
    using enum HotkeyAction;
    EXPECT_EQ(done, QList{createMask});
    // Another hot key while the first is held, and the first once more.
    for (const Keycode key : {keyH, keyH, keyN, keyN, keyN}) {
        input.releaseKeycode(key);
        input.pressKeycode(key);
    }
    EXPECT_TRUE(harness.waitUntil([&] { return done.size() >= 6; }));
    EXPECT_EQ(done, (QList{createMask, toggleAll, toggleAll, createMask, createMask, createMask}));

    // One that is pressed before the other is let go of repeats then in a grab of its own.
    input.releaseKeycode(keyN);
    input.releaseKeycode(keyH);
    harness.settle();
    done.clear();
    input.pressKeycode(keyN);
    input.pressKeycode(keyH);
    input.releaseKeycode(keyN);
    harness.settle();
    repetitions = 0;
    EXPECT_TRUE(harness.waitUntil([&] { return repetitions >= 3; })) << "it does not repeat";
    EXPECT_EQ(done, (QList{createMask, toggleAll}));
    // Nobody but the focused window is told when it goes up before it repeats.
    for (const auto& [key, isDown] :
         {std::pair(keyN, true), {keyH, false}, {keyN, false}, {keyN, true}, {keyN, false}}) {
        isDown ? input.pressKeycode(key) : input.releaseKeycode(key);
        harness.settle();
    }
    input.pressKeycode(keyH);
    EXPECT_TRUE(harness.waitUntil([&] { return done.size() >= 5; }));
    EXPECT_EQ(done, (QList{createMask, toggleAll, createMask, createMask, toggleAll}));
    manager.reset();
    input.releaseKeycode(keyH);
    const xcb_window_t window = harness.neighbour.open({.isOverrideRedirect = true});
    xcb_set_input_focus(harness.neighbour.connection(), XCB_INPUT_FOCUS_NONE, window,
                        XCB_CURRENT_TIME);
    EXPECT_TRUE(harness.waitUntil([&] {
        input.typeChord({keyN});
        return !harness.neighbour.takeInput().isEmpty();
    })) << "the key is still taken";
    EXPECT_EQ(done.size(), 5);
}

TEST(HeldKey, TellsPressesFromRepetitions) {
    struct Step {
        xcb_timestamp_t time;
        int key;  // negative when it goes up
        bool isFirst = false;
        bool isElsewhere = false;
    };
    const struct {
        const char* name;
        bool areRepeatsWithoutRelease;
        std::vector<Step> steps;
    } rows[] = {
        {"a server that pairs them",
         false,
         {{0, 5, true},
          {600, -5},
          {600, 5},
          {630, -5},
          {631, 5},
          {640, -5},
          {700, 5, true},
          {700, -5},
          {700, 6, true}}},
        {"fast fingers elsewhere", true, {{0, 5, true}, {0, -5}, {0, 5, true}, {30, 5}}},
        {"a second key whose release goes elsewhere",
         true,
         {{0, 5, true},
          {100, 6, true},
          {600, 6},
          {700, -5},
          {730, 6},
          {740, -6, false, true},
          {900, 6, true}}},
        {"a modifier let go first",
         true,
         {{0, 5, true}, {100, -9}, {600, 5}, {700, -5}, {800, 5, true}}},
    };
    for (const auto& [name, areRepeatsWithoutRelease, steps] : rows) {
        HeldKey held(areRepeatsWithoutRelease);
        for (const auto& [time, key, isFirst, isElsewhere] : steps) {
            xcb_key_press_event_t event{};
            event.detail = static_cast<Keycode>(std::abs(key));
            event.time = time;
            if (isElsewhere)
                held.releasedElsewhere(event.detail);
            else if (key < 0)
                held.release(event);
            else
                EXPECT_EQ(held.press(event), isFirst) << name << " at " << time;
        }
    }
}

class HotKeys : public VeylaTest {
protected:
    /// Starts the program, and returns when it listens and another program has the keyboard.
    void startBehindNeighbour() {
        start();
        ASSERT_TRUE(waitUntil([&] { return registered().size() == 4; }));
        const xcb_window_t window = neighbour.open({.frame = {0, 0, 200, 200}});
        neighbour.requestActivation(window);
        ASSERT_TRUE(waitUntil([&] { return probe.focus() == window; }));
    }

    void pressDefault(Keycode key) { input.typeChord({controlKey, altKey, superKey, key}); }

    /// Whether the neighbour has got such a key since the last time.
    bool neighbourGot(const std::set<int>& keys) {
        const auto events = neighbour.takeInput();
        return std::any_of(events.begin(), events.end(), [&](const NeighbourInput& event) {
            return event.isKey && keys.contains(event.detail);
        });
    }

    bool isOn(QLatin1StringView field) { return status().value(field).toBool(); }

    bool turns(QLatin1StringView field, Keycode key) {
        const bool before = isOn(field);
        pressDefault(key);
        return waitUntil([&] { return isOn(field) != before; });
    }

    void expectAllWork() {
        neighbour.takeInput();
        const qsizetype masks = maskWindowCount();
        pressDefault(keyN);
        EXPECT_TRUE(waitUntil([&] { return maskWindowCount() > masks; }));
        EXPECT_TRUE(turns("areMasksVisible"_L1, keyH) && turns("areMasksVisible"_L1, keyH));
        EXPECT_TRUE(turns("isEditingEnabled"_L1, keyL));
        pressDefault(keyS);
        EXPECT_EQ(maskWindowCount(), masks + 1);
        EXPECT_FALSE(neighbourGot({keyN, keyH, keyL, keyS})) << "the focused window got a hot key";
    }

    QList<bool> registered() {
        QList<bool> all;
        const QJsonArray hotkeys = status().value("hotkeys"_L1).toArray();
        for (const auto& hotkey : hotkeys)
            all.append(hotkey["isRegistered"_L1].toBool());
        return all;
    }

    /// Moves Super to Mod3 and Num Lock to Mod5, as another program may.
    void moveModifiers() {
        constexpr std::size_t width = 2;
        Keycodes keys(8 * width, 0);
        const std::pair<std::size_t, Keycode> places[] = {{0, shiftKey},   {1, capsLock},
                                                          {2, controlKey}, {3, altKey},
                                                          {5, superKey},   {7, numLock}};
        for (const auto& [modifier, key] : places)
            keys[modifier * width] = key;
        const XcbPtr<xcb_set_modifier_mapping_reply_t> reply(xcb_set_modifier_mapping_reply(
            neighbour.connection(),
            xcb_set_modifier_mapping(neighbour.connection(), Keycode{width}, keys.data()),
            nullptr));
        ASSERT_TRUE(reply && reply->status == XCB_MAPPING_STATUS_SUCCESS);
    }
};

TEST_F(HotKeys, WorkWithAnotherProgramFocusedWhateverTheKeyboardIsSetTo) {
    const struct {
        const char* name;
        QStringList layout;
        Keycodes locks;
        /// What the server then says of the keyboard: Caps Lock is 2, Num Lock 16, and the second
        /// layout 8192.
        int state;
    } rows[] = {
        {"as it comes", {}, {}, 0},
        {"Caps Lock", {}, {capsLock}, 2},
        {"Num Lock", {}, {numLock}, 16},
        {"both locks", {}, {capsLock, numLock}, 18},
        {"French", {u"fr"_s}, {capsLock}, 2},
        {"Russian", {u"ru"_s}, {numLock}, 16},
        // Scroll Lock switches to the second of the layouts.
        {"the second of two layouts", {u"us,ru"_s, u"-option"_s, u"grp:sclk_toggle"_s}, {78}, 8192},
    };
    setLayout({u"us"_s});
    startBehindNeighbour();
    EXPECT_EQ(registered(), QList<bool>(4, true));
    for (const auto& [name, layout, locks, state] : rows) {
        SCOPED_TRACE(name);
        if (!layout.isEmpty()) setLayout(layout);
        input.typeChord(locks);
        ASSERT_EQ(
            probe
                .reply(xcb_query_pointer_reply, xcb_query_pointer(probe.connection(), probe.root()))
                ->mask,
            state);
        expectAllWork();
        input.typeChord(locks);
    }

    // Taken back at the end.
    EXPECT_EQ(quit(), 0);
    neighbour.takeInput();
    for (const Keycode key : {keyN, keyH, keyL, keyS}) {
        pressDefault(key);
        EXPECT_TRUE(neighbourGot({key}));
    }
}

TEST_F(HotKeys, FollowModifiersThatMove) {
    startBehindNeighbour();
    // The combination of Create Mask, as it will be.
    ASSERT_TRUE(neighbour.grabKey(keyN, 4 + 8 + 32));
    moveModifiers();
    EXPECT_TRUE(waitUntil([&] { return !process->standardError().isEmpty(); }));
    m_expectedLog =
        "Veyla cannot use the shortcut ⌃⌥⌘N (Ctrl+Alt+Super+N): another program holds it\n";
    for (const Keycodes& locks : {Keycodes{}, {numLock}, {capsLock, numLock}}) {
        input.typeChord(locks);
        EXPECT_TRUE(turns("areMasksVisible"_L1, keyH)) << locks.size();
        EXPECT_TRUE(turns("isEditingEnabled"_L1, keyL)) << locks.size();
        input.typeChord(locks);
    }
    neighbour.takeInput();
    pressDefault(keyN);
    EXPECT_TRUE(neighbourGot({keyN}));
    EXPECT_EQ(maskWindowCount(), 0);
}

}  // namespace
