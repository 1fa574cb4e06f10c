// utf8.h: UTF-8 texts character by character. Stands on the standard library alone.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace uti {

inline constexpr char32_t replacementCharacter = 0xFFFD;

// What some editors put before a text in UTF-8; no part of its first line.
inline constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

// Takes the first character off `text`, which must not be empty. A byte that begins no well-formed
// sequence is taken alone and counts as the replacement character.
constexpr char32_t takeCharacter(std::string_view &text) {
    const auto byteAt = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const unsigned char lead = byteAt(0);
    const std::size_t length = lead < 0x80   ? 1
                               : lead < 0xC2 ? 0
                               : lead < 0xE0 ? 2
                               : lead < 0xF0 ? 3
                               : lead < 0xF5 ? 4
                                             : 0;
    char32_t character = length == 1 ? lead : lead & (0x7Fu >> length);
    bool isWhole = length > 0 && length <= text.size();
    for (std::size_t at = 1; isWhole && at < length; ++at) {
        isWhole = (byteAt(at) & 0xC0) == 0x80;
        character = character << 6 | (byteAt(at) & 0x3Fu);
    }
    // What would have fitted fewer bytes, halves of a pair, what lies past the last character.
    isWhole = isWhole && (length < 3 || character >= (length == 3 ? 0x800u : 0x10000u)) &&
              character <= 0x10FFFF && (character < 0xD800 || character > 0xDFFF);
    text.remove_prefix(isWhole ? length : 1);
    return isWhole ? character : replacementCharacter;
}

constexpr std::size_t countCharacters(std::string_view text) {
    std::size_t count = 0;
    for (; !text.empty(); ++count)
        takeCharacter(text);
    return count;
}

inline void appendCharacter(std::string &text, char32_t character) {
    const auto append = [&](char32_t byte) { text += static_cast<char>(byte); };
    const auto appendRest = [&](int bits) {
        for (; bits >= 0; bits -= 6)
            append(0x80 | (character >> bits & 0x3F));
    };
    if (character < 0x80) {
        append(character);
    } else if (character < 0x800) {
        append(0xC0 | character >> 6);
        appendRest(0);
    } else if (character < 0x10000) {
        append(0xE0 | character >> 12);
        appendRest(6);
    } else {
        append(0xF0 | character >> 18);
        appendRest(12);
    }
}

// "U+20AC" and the character itself, unless it would be invisible.
inline std::string describe(char32_t character) {
    char number[12];
    std::snprintf(number, sizeof number, "U+%04X", static_cast<unsigned>(character));
    std::string text = number;
    if (character > ' ' && (character < 0x7F || character > 0xA0)) {
        text += " '";
        appendCharacter(text, character);
        text += '\'';
    }
    return text;
}

} // namespace uti
