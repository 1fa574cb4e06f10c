// utiDialogsKeys.cpp: the toolkit's key codes of the terminal's. Stands on the table of keys.
#include "common/keys.h"
#include "uti.h"

#include <array>
#include <cstddef>

namespace {

constexpr uint32_t firstCode = 8;
constexpr uint32_t lastCode = 195;

// Its entries other than 0 are the keys that have a code of the terminal.
constexpr auto KeyCodeTable = [] {
    std::array<uint8_t, lastCode - firstCode + 1> table{};
    for (const uti::Key &key : uti::keys)
        if (key.terminal != 0)
            table[key.terminal - firstCode] = key.toolkit;
    return table;
}();

} // namespace

int32_t IG_GetIGKeyCode(uint32_t code) {
    const uint32_t index = code - firstCode;
    return index < KeyCodeTable.size() ? KeyCodeTable[index] : 0;
}
