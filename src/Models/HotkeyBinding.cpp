#include "Models/HotkeyBinding.h"

#include "Models/Json.h"

#include <QHashFunctions>
#include <algorithm>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr std::size_t namedKeyCodes = 127;

/// Names by virtual key code of the Carbon Event Manager; null for a code without one.
constexpr auto keyNames = [] {
    std::array<const char16_t*, namedKeyCodes> names{
        u"A",    u"S", u"D",    u"F", u"H", u"G", u"Z", u"X", u"C",   u"V",      // 0 to 9
        nullptr, u"B", u"Q",    u"W", u"E", u"R", u"Y", u"T", u"1",   u"2",      // 10 to 19
        u"3",    u"4", u"6",    u"5", u"=", u"9", u"7", u"-", u"8",   u"0",      // 20 to 29
        u"]",    u"O", u"U",    u"[", u"I", u"P", u"↩", u"L", u"J",   u"'",      // 30 to 39
        u"K",    u";", u"\\",   u",", u"/", u"N", u"M", u".", u"Tab", u"Space",  // 40 to 49
        u"`",    u"⌫", nullptr, u"⎋"};                                           // 50 to 53
    names[96] = u"F5";
    names[97] = u"F6";
    names[98] = u"F7";
    names[99] = u"F3";
    names[100] = u"F8";
    names[101] = u"F9";
    names[103] = u"F11";
    names[109] = u"F10";
    names[111] = u"F12";
    names[118] = u"F4";
    names[120] = u"F2";
    names[122] = u"F1";
    names[123] = u"←";
    names[124] = u"→";
    names[125] = u"↓";
    names[126] = u"↑";
    return names;
}();

/// What keyboards on Linux call keys for which the display text has a sign or none.
constexpr std::array<std::pair<quint32, const char16_t*>, 14> keyWords{{
    {36, u"Enter"},
    {51, u"Backspace"},
    {53, u"Escape"},
    {76, u"Keypad Enter"},
    {114, u"Insert"},
    {115, u"Home"},
    {116, u"Page Up"},
    {117, u"Delete"},
    {119, u"End"},
    {121, u"Page Down"},
    {123, u"Left"},
    {124, u"Right"},
    {125, u"Down"},
    {126, u"Up"},
}};

/// A modifier in the event's flags, in the binding and in the texts.
struct Modifier {
    quint64 eventFlag;
    quint32 carbonBit;
    QChar symbol;
    const char16_t* word;
};

/// In the order of the texts.
constexpr std::array<Modifier, 4> modifierTable{{
    {quint64{1} << 18, HotkeyBinding::controlModifier, u'⌃', u"Ctrl"},
    {quint64{1} << 19, HotkeyBinding::optionModifier, u'⌥', u"Alt"},
    {quint64{1} << 17, HotkeyBinding::shiftModifier, u'⇧', u"Shift"},
    {quint64{1} << 20, HotkeyBinding::commandModifier, u'⌘', u"Super"},
}};

}  // namespace

const QMap<QString, HotkeyBinding>& HotkeyBinding::defaults() {
    static constexpr quint32 modifiers = controlModifier + optionModifier + commandModifier;
    static const QMap<QString, HotkeyBinding> bindings{
        {hotkeyBindingKey(HotkeyAction::createMask), {.keyCode = 45, .modifiers = modifiers}},
        {hotkeyBindingKey(HotkeyAction::toggleAll), {.keyCode = 4, .modifiers = modifiers}},
        {hotkeyBindingKey(HotkeyAction::toggleEditing), {.keyCode = 37, .modifiers = modifiers}},
        {hotkeyBindingKey(HotkeyAction::toggleDashboard), {.keyCode = 1, .modifiers = modifiers}},
    };
    return bindings;
}

QString HotkeyBinding::displayString() const {
    QString text;
    for (const Modifier& modifier : modifierTable) {
        if ((modifiers & modifier.carbonBit) != 0) text += modifier.symbol;
    }
    return text + keyCodeToString(keyCode);
}

QString HotkeyBinding::keyboardText() const {
    QString text;
    for (const Modifier& modifier : modifierTable) {
        if ((modifiers & modifier.carbonBit) != 0) text += QString::fromUtf16(modifier.word) + u'+';
    }
    const auto* const found =
        std::find_if(keyWords.begin(), keyWords.end(),
                     [this](const auto& each) { return each.first == keyCode; });
    return text +
           (found == keyWords.end() ? keyCodeToString(keyCode) : QString::fromUtf16(found->second));
}

QString HotkeyBinding::keyCodeToString(quint32 keyCode) {
    if (keyCode < keyNames.size() && keyNames[keyCode] != nullptr) {
        return QString::fromUtf16(keyNames[keyCode]);
    }
    return u"Key"_s + QString::number(keyCode);
}

quint32 HotkeyBinding::carbonModifiers(quint64 eventModifierFlags) {
    quint32 carbonMask = 0;
    for (const Modifier& modifier : modifierTable) {
        if ((eventModifierFlags & modifier.eventFlag) != 0) carbonMask |= modifier.carbonBit;
    }
    return carbonMask;
}

HotkeyBinding HotkeyBinding::fromJson(const JsonObjectReader& reader) {
    return {.keyCode = reader.unsigned32("keyCode"_L1),
            .modifiers = reader.unsigned32("modifiers"_L1)};
}

QJsonObject HotkeyBinding::toJson() const {
    QJsonObject object;
    object.insert("keyCode"_L1, qint64{keyCode});
    object.insert("modifiers"_L1, qint64{modifiers});
    return object;
}

std::size_t qHash(const HotkeyBinding& binding, std::size_t seed) noexcept {
    return qHashMulti(seed, binding.keyCode, binding.modifiers);
}

std::optional<HotkeyAction> hotkeyActionFromRawValue(quint32 rawValue) {
    for (const HotkeyAction action : allHotkeyActions) {
        if (static_cast<quint32>(action) == rawValue) return action;
    }
    return std::nullopt;
}

QString hotkeyBindingKey(HotkeyAction action) {
    switch (action) {
        case HotkeyAction::createMask:
            return u"createMask"_s;
        case HotkeyAction::toggleAll:
            return u"toggleAll"_s;
        case HotkeyAction::toggleEditing:
            return u"toggleEditing"_s;
        case HotkeyAction::toggleDashboard:
            return u"toggleDashboard"_s;
    }
    Q_UNREACHABLE();
}

QString hotkeyActionTitle(HotkeyAction action) {
    switch (action) {
        case HotkeyAction::createMask:
            return u"Create New Mask"_s;
        case HotkeyAction::toggleAll:
            return u"Toggle All Masks"_s;
        case HotkeyAction::toggleEditing:
            return u"Lock/Unlock Editing"_s;
        case HotkeyAction::toggleDashboard:
            return u"Toggle Dashboard"_s;
    }
    Q_UNREACHABLE();
}
