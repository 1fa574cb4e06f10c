// bytes.h: numbers as bytes and bytes as numbers, in the order that a stored format asks for.
#pragma once

#include <cstdint>
#include <cstring>

namespace uti {

enum class ByteOrder : uint8_t { little, big };

// Writes the low `size` bytes of `value` and returns the address behind them.
constexpr uint8_t *putNumber(uint8_t *out, uint64_t value, unsigned size, ByteOrder order) {
    for (unsigned i = 0; i < size; ++i) {
        const unsigned shift = order == ByteOrder::big ? 8 * (size - 1 - i) : 8 * i;
        out[i] = static_cast<uint8_t>(value >> shift);
    }
    return out + size;
}

// Reads `size` bytes as an unsigned number.
constexpr uint64_t getNumber(const uint8_t *in, unsigned size, ByteOrder order) {
    uint64_t value = 0;
    for (unsigned i = 0; i < size; ++i) {
        const unsigned at = order == ByteOrder::big ? i : size - 1 - i;
        value = value << 8 | in[at];
    }
    return value;
}

} // namespace uti
