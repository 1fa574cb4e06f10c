// keys.h: the keys of the terminal, each by its name in dialog sources and key scripts, its code on
// the terminal and its code on the toolkit. Stands on the two platform headers' codes alone.
#pragma once

#include "terminal.h"
#include "toolkit.h"

#include <cstdint>

namespace uti {

struct Key {
    const char *name; // null for a key that nobody names
    uint8_t terminal; // 0 for a key that dialog descriptions cannot hold
    uint8_t toolkit;
};

// Of several keys with one code the first is meant where the code alone is known.
inline constexpr Key keys[] = {
    {"BACKSPACE", TERMINAL_KEY_BACKSPACE, IG_KEY_BACKSPACE},
    {"ENTER", TERMINAL_KEY_ENTER, IG_KEY_ENTER},
    {"LAYOUT", TERMINAL_KEY_LAYOUT, IG_KEY_LAYOUT},
    {"ESCAPE", TERMINAL_KEY_ESCAPE, IG_KEY_ESCAPE},
    {"#", '#', '#'},
    {"*", '*', '*'},
    {"F1", TERMINAL_KEY_F1, IG_KEY_F1},
    {"F2", TERMINAL_KEY_F2, IG_KEY_F2},
    {"MENU", TERMINAL_KEY_MENU, IG_KEY_MENU},
    {"UP", TERMINAL_KEY_UP, IG_KEY_UP},
    {"DOWN", TERMINAL_KEY_DOWN, IG_KEY_DOWN},
    {"TAB", 0, IG_KEY_TAB},
    {"CLEAR", 0, IG_KEY_CLEAR},
    {"LEFT", 0, IG_KEY_LEFT},
    {"RIGHT", 0, IG_KEY_RIGHT},
    {nullptr, 90, 90},
    {nullptr, 91, 91},
    {nullptr, 92, 92},
    {nullptr, 93, 93},
    {nullptr, 94, 94},
    {nullptr, 128, 128},
    {nullptr, 131, 131},
    {nullptr, 132, 132},
    {nullptr, 133, 133},
    {nullptr, 134, 134},
    {nullptr, 135, 135},
    {nullptr, 136, 136},
    {nullptr, 177, 177},
    {nullptr, 178, 178},
    {nullptr, TERMINAL_KEY_UP_2, IG_KEY_UP},
    {nullptr, TERMINAL_KEY_DOWN_2, IG_KEY_DOWN},
    {nullptr, 193, 193},
    {nullptr, 194, 194},
    {nullptr, 195, 195},
};

} // namespace uti
