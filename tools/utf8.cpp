// utf8.cpp: UTF-8 decoded, encoded and described.
#include "tools/utf8.h"

#include <cstdio>

namespace uti::tool {

char32_t takeCharacter(std::string_view &text) {
    const auto byteAt = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const unsigned char lead = byteAt(0);
    const std::size_t length = lead < 0x80   ? 1
                               : lead < 0xC0 ? 0
                               : lead < 0xE0 ? 2
                               : lead < 0xF0 ? 3
                               : lead < 0xF8 ? 4
                                             : 0;
    char32_t character = length == 1 ? lead : lead & (0x7Fu >> length);
    bool complete = length > 0 && length <= text.size();
    for (std::size_t at = 1; complete && at < length; ++at) {
        complete = (byteAt(at) & 0xC0) == 0x80;
        character = character << 6 | (byteAt(at) & 0x3Fu);
    }
    text.remove_prefix(complete ? length : 1);
    return complete ? character : replacementCharacter;
}

void appendCharacter(std::string &text, char32_t character) {
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

std::string describe(char32_t character) {
    char number[12];
    snprintf(number, sizeof number, "U+%04X", static_cast<unsigned>(character));
    std::string text = number;
    if (character > ' ' && (character < 0x7F || character > 0xA0)) {
        text += " '";
        appendCharacter(text, character);
        text += '\'';
    }
    return text;
}

} // namespace uti::tool
