// utiDialogsKeys.cpp: the toolkit's key codes of the terminal's. Stands on nothing.
#include "uti.h"

#include <array>
#include <cstddef>

namespace {

constexpr uint32_t firstCode = 8;
constexpr uint32_t lastCode = 195;

// Made of its entries other than 0, pairs of terminal code and toolkit code.
constexpr auto KeyCodeTable = [] {
    constexpr uint8_t entries[][2] = {
        {8, 8},     {13, 13},   {26, 69},   {27, 27},   {35, 35},   {42, 42},
        {90, 90},   {91, 91},   {92, 92},   {93, 93},   {94, 94},   {128, 128},
        {129, 59},  {130, 60},  {131, 131}, {132, 132}, {133, 133}, {134, 134},
        {135, 135}, {136, 136}, {177, 177}, {178, 178}, {188, 139}, {189, 103},
        {190, 108}, {191, 103}, {192, 108}, {193, 193}, {194, 194}, {195, 195},
    };
    std::array<uint8_t, lastCode - firstCode + 1> table{};
    for (const auto &[terminal, toolkit] : entries)
        table[terminal - firstCode] = toolkit;
    return table;
}();

} // namespace

int32_t IG_GetIGKeyCode(uint32_t code) {
    const uint32_t index = code - firstCode;
    return index < KeyCodeTable.size() ? KeyCodeTable[index] : 0;
}
