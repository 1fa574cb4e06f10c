// utiDialogsTerminal.h: what the types of terminals differ in for the dialogs. Stands on nothing.
#pragma once

#include <cstdint>

namespace uti {

struct TerminalTraits {
    bool hasOtherKeys = false;    // F1 erases, empties an input and changes its letters
    bool setsControlKeys = false; // inputs get their control keys whatever the description says
    bool scrollsByKey = false;    // lists go up and down with keys that no description gives
};

// The traits of a terminal by its `Terminal_GetType`.
constexpr TerminalTraits traitsOf(int32_t type) {
    switch (type) {
    case 19:
    case 20:
        return {.hasOtherKeys = true, .setsControlKeys = true};
    case 23:
    case 24:
        return {.scrollsByKey = true};
    case 26:
        return {.setsControlKeys = true};
    default:
        return {};
    }
}

} // namespace uti
