// converters.cpp: letter case in the terminal's code page Windows-1251, numbers as texts, and
// numbers as bytes in either order. Stands on the C++ standard library's headers and
// common/bytes.h.
#include "common/bytes.h"
#include "host/terminal/copy_text.h"
#include "terminal.h"

#include <array>
#include <bit>
#include <charconv>

namespace uti::host {
namespace {

using CaseTable = std::array<uint8_t, 256>;

// Letters of Windows-1251 whose capitals lie at no fixed distance: {capital, small}.
constexpr uint8_t otherLetters[][2] = {
    {0x80, 0x90}, {0x81, 0x83}, {0x8A, 0x9A}, {0x8C, 0x9C}, {0x8D, 0x9D},
    {0x8E, 0x9E}, {0x8F, 0x9F}, {0xA1, 0xA2}, {0xA3, 0xBC}, {0xA5, 0xB4},
    {0xA8, 0xB8}, {0xAA, 0xBA}, {0xAF, 0xBF}, {0xB2, 0xB3}, {0xBD, 0xBE},
};

struct CaseTables {
    CaseTable lower;
    CaseTable upper;
};

consteval CaseTables buildCaseTables() {
    CaseTables tables{};
    for (unsigned byte = 0; byte < 256; ++byte)
        tables.lower[byte] = tables.upper[byte] = static_cast<uint8_t>(byte);

    const auto pair = [&](unsigned capital, unsigned small) {
        tables.lower[capital] = static_cast<uint8_t>(small);
        tables.upper[small] = static_cast<uint8_t>(capital);
    };
    for (unsigned capital = 'A'; capital <= 'Z'; ++capital)
        pair(capital, capital + 32);
    for (unsigned capital = 0xC0; capital <= 0xDF; ++capital)
        pair(capital, capital + 32);
    for (const auto &letter : otherLetters)
        pair(letter[0], letter[1]);
    return tables;
}

constexpr CaseTables cases = buildCaseTables();

void convertCase(const char *source, char *destination, uint32_t count, const CaseTable &table) {
    if (!source || !destination)
        return;
    for (uint32_t i = 0; i < count; ++i)
        destination[i] = static_cast<char>(table[static_cast<uint8_t>(source[i])]);
}

template <class Number>
char *formatDecimal(Number value, char *out, uint32_t size) {
    char digits[20]; // of the longest, with its sign
    const char *end = std::to_chars(std::begin(digits), std::end(digits), value).ptr;
    copyText({digits, static_cast<std::size_t>(end - digits)}, out, size);
    return out;
}

// The number at a byte address of any alignment, 0 at a null one.
template <class Number>
Number readNumber(const void *buffer, ByteOrder order) {
    const auto *bytes = static_cast<const uint8_t *>(buffer);
    return bytes ? static_cast<Number>(getNumber(bytes, sizeof(Number), order)) : Number{0};
}

void writeBigEndian(void *buffer, uint64_t value, unsigned size) {
    if (buffer)
        putNumber(static_cast<uint8_t *>(buffer), value, size, ByteOrder::big);
}

} // namespace
} // namespace uti::host

using namespace uti::host;
using uti::ByteOrder;

void TextToLowercase(const char *source, char *destination, uint32_t count) {
    convertCase(source, destination, count, cases.lower);
}

void TextToUppercase(const char *source, char *destination, uint32_t count) {
    convertCase(source, destination, count, cases.upper);
}

// Radix 10 is signed; any other shows the number as unsigned 32 bits. Digits past 9 are small
// letters. A radix outside 2 to 36 gives an empty text; a null `out` is given back.
char *ltoa(int32_t value, char *out, int32_t radix) {
    if (!out)
        return out;
    char *end = out;
    if (radix == 10)
        end = std::to_chars(out, out + 33, value).ptr;
    else if (radix >= 2 && radix <= 36)
        end = std::to_chars(out, out + 33, static_cast<uint32_t>(value), radix).ptr;
    *end = '\0';
    return out;
}

// A size of 0 writes nothing, here and in `UInt64ToStr`.
char *Int64ToStr(int64_t value, char *out, uint32_t size) {
    return formatDecimal(value, out, size);
}

char *UInt64ToStr(uint64_t value, char *out, uint32_t size) {
    return formatDecimal(value, out, size);
}

uint16_t BufferToWord(const void *buffer) {
    return readNumber<uint16_t>(buffer, ByteOrder::little);
}

uint32_t BufferToDword(const void *buffer) {
    return readNumber<uint32_t>(buffer, ByteOrder::little);
}

double BufferToDouble(const void *buffer) {
    return std::bit_cast<double>(readNumber<uint64_t>(buffer, ByteOrder::little));
}

int16_t BEBufferToShort(const void *buffer) {
    return readNumber<int16_t>(buffer, ByteOrder::big);
}

void ShortToBEBuffer(int16_t value, void *buffer) {
    writeBigEndian(buffer, static_cast<uint16_t>(value), sizeof value);
}

void LongToBEBuffer(int32_t value, void *buffer) {
    writeBigEndian(buffer, static_cast<uint32_t>(value), sizeof value);
}
