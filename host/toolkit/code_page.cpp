// code_page.cpp: the upper half of Windows-1251 as a table; the lower half is ASCII.
#include "host/toolkit/code_page.h"

#include <array>

namespace uti::host {

namespace {

// 0x80 to 0xBF; above them stand the letters from U+0410 on, in order.
constexpr std::array<char16_t, 64> middle = {
    0x0402, 0x0403, 0x201A, 0x0453, 0x201E, 0x2026, 0x2020, 0x2021, 0x20AC, 0x2030, 0x0409,
    0x2039, 0x040A, 0x040C, 0x040B, 0x040F, 0x0452, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0xFFFD, 0x2122, 0x0459, 0x203A, 0x045A, 0x045C, 0x045B, 0x045F, 0x00A0,
    0x040E, 0x045E, 0x0408, 0x00A4, 0x0490, 0x00A6, 0x00A7, 0x0401, 0x00A9, 0x0404, 0x00AB,
    0x00AC, 0x00AD, 0x00AE, 0x0407, 0x00B0, 0x00B1, 0x0406, 0x0456, 0x0491, 0x00B5, 0x00B6,
    0x00B7, 0x0451, 0x2116, 0x0454, 0x00BB, 0x0458, 0x0405, 0x0455, 0x0457};

} // namespace

char32_t toUnicode(char byte) {
    const auto code = static_cast<unsigned char>(byte);
    if (code < 0x80)
        return code;
    return code < 0xC0 ? char32_t{middle[code - 0x80u]} : char32_t{0x0410u + code - 0xC0u};
}

std::string toUtf8(std::string_view bytes) {
    std::string text;
    for (const char byte : bytes) {
        const char32_t character = toUnicode(byte);
        if (character >= 0x800) {
            text += static_cast<char>(0xE0 | character >> 12);
            text += static_cast<char>(0x80 | (character >> 6 & 0x3F));
        } else if (character >= 0x80) {
            text += static_cast<char>(0xC0 | character >> 6);
        } else {
            text += byte;
            continue;
        }
        text += static_cast<char>(0x80 | (character & 0x3F));
    }
    return text;
}

std::optional<char> fromUtf8(std::string_view text, std::size_t &position) {
    // Every byte's own writing is compared, which leaves no way to be written wrongly.
    for (int code = 0; code < 0x100; ++code) {
        const char byte = static_cast<char>(code);
        const std::string written = toUtf8({&byte, 1});
        if (code != 0x98 && text.substr(position).starts_with(written)) {
            position += written.size();
            return byte;
        }
    }
    // Past the whole character, however it is written.
    do
        ++position;
    while (position < text.size() && (text[position] & 0xC0) == 0x80);
    return std::nullopt;
}

} // namespace uti::host
