#include "Models/VirtualKeyCodes.h"

#include <algorithm>
#include <iterator>
#include <linux/input-event-codes.h>

namespace {

struct Key {
    quint8 virtualKey;
    quint8 evdevCode;
};

constexpr int evdevOffset = 8;

/// Each code occurs once on either side.
constexpr Key keys[] = {
    // The letters, digits and signs of the ANSI layout, by row.
    {50, KEY_GRAVE},
    {18, KEY_1},
    {19, KEY_2},
    {20, KEY_3},
    {21, KEY_4},
    {23, KEY_5},
    {22, KEY_6},
    {26, KEY_7},
    {28, KEY_8},
    {25, KEY_9},
    {29, KEY_0},
    {27, KEY_MINUS},
    {24, KEY_EQUAL},
    {12, KEY_Q},
    {13, KEY_W},
    {14, KEY_E},
    {15, KEY_R},
    {17, KEY_T},
    {16, KEY_Y},
    {32, KEY_U},
    {34, KEY_I},
    {31, KEY_O},
    {35, KEY_P},
    {33, KEY_LEFTBRACE},
    {30, KEY_RIGHTBRACE},
    {42, KEY_BACKSLASH},
    {0, KEY_A},
    {1, KEY_S},
    {2, KEY_D},
    {3, KEY_F},
    {5, KEY_G},
    {4, KEY_H},
    {38, KEY_J},
    {40, KEY_K},
    {37, KEY_L},
    {41, KEY_SEMICOLON},
    {39, KEY_APOSTROPHE},
    {6, KEY_Z},
    {7, KEY_X},
    {8, KEY_C},
    {9, KEY_V},
    {11, KEY_B},
    {45, KEY_N},
    {46, KEY_M},
    {43, KEY_COMMA},
    {47, KEY_DOT},
    {44, KEY_SLASH},
    {36, KEY_ENTER},
    {48, KEY_TAB},
    {49, KEY_SPACE},
    {51, KEY_BACKSPACE},
    {53, KEY_ESC},
    // What ISO and Japanese keyboards have beside them: the key right of the left Shift, Yen,
    // the key left of the right Shift, and the ones left and right of the space bar.
    {10, KEY_102ND},
    {93, KEY_YEN},
    {94, KEY_RO},
    {102, KEY_MUHENKAN},
    {104, KEY_HENKAN},
    // The keypad. Num Lock is where Clear was.
    {65, KEY_KPDOT},
    {67, KEY_KPASTERISK},
    {69, KEY_KPPLUS},
    {71, KEY_NUMLOCK},
    {75, KEY_KPSLASH},
    {76, KEY_KPENTER},
    {78, KEY_KPMINUS},
    {81, KEY_KPEQUAL},
    {82, KEY_KP0},
    {83, KEY_KP1},
    {84, KEY_KP2},
    {85, KEY_KP3},
    {86, KEY_KP4},
    {87, KEY_KP5},
    {88, KEY_KP6},
    {89, KEY_KP7},
    {91, KEY_KP8},
    {92, KEY_KP9},
    {95, KEY_KPCOMMA},
    // Function keys.
    {122, KEY_F1},
    {120, KEY_F2},
    {99, KEY_F3},
    {118, KEY_F4},
    {96, KEY_F5},
    {97, KEY_F6},
    {98, KEY_F7},
    {100, KEY_F8},
    {101, KEY_F9},
    {109, KEY_F10},
    {103, KEY_F11},
    {111, KEY_F12},
    {105, KEY_F13},
    {107, KEY_F14},
    {113, KEY_F15},
    {106, KEY_F16},
    {64, KEY_F17},
    {79, KEY_F18},
    {80, KEY_F19},
    {90, KEY_F20},
    // Navigation. Insert is where Help was.
    {114, KEY_INSERT},
    {117, KEY_DELETE},
    {115, KEY_HOME},
    {119, KEY_END},
    {116, KEY_PAGEUP},
    {121, KEY_PAGEDOWN},
    {123, KEY_LEFT},
    {124, KEY_RIGHT},
    {125, KEY_DOWN},
    {126, KEY_UP},
    {110, KEY_COMPOSE},
};

}  // namespace

std::optional<quint8> keycodeForVirtualKey(quint32 keyCode) {
    const auto* const found = std::find_if(std::begin(keys), std::end(keys), [&](const Key& key) {
        return key.virtualKey == keyCode;
    });
    if (found == std::end(keys)) return std::nullopt;
    return static_cast<quint8>(found->evdevCode + evdevOffset);
}

std::optional<quint32> virtualKeyForKeycode(quint8 keycode) {
    const auto* const found = std::find_if(std::begin(keys), std::end(keys), [&](const Key& key) {
        return key.evdevCode + evdevOffset == keycode;
    });
    if (found == std::end(keys)) return std::nullopt;
    return found->virtualKey;
}
