// streams.h: bytes of TLV streams for tests and benchmarks: nodes, resource files, and dialog
// descriptions with readable pieces. Stands on nothing.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace support {

// Little-endian numbers.
inline std::string number(uint64_t value, int size) {
    std::string bytes;
    for (int i = 0; i < size; ++i)
        bytes += static_cast<char>(value >> 8 * i);
    return bytes;
}

// A node with a `tagSize`-byte tag and a `lengthSize`-byte length.
inline std::string node(uint32_t tag, std::string_view value, int tagBytes, int lengthBytes) {
    return number(tag, tagBytes) + number(value.size(), lengthBytes) + std::string(value);
}

// A value with its type code in front.
inline std::string typed(char type, std::string_view value) {
    return std::string(1, type).append(value);
}

// A language of a section for `resourceFile`: strings by index.
struct Language {
    std::string code;
    uint16_t info;
    std::vector<std::string> strings;
};

// The bytes of a resource file: sections by number, each with its languages.
inline std::string
resourceFile(uint16_t version, const std::vector<std::pair<int, std::vector<Language>>> &sections) {
    const auto build = [&](uint32_t tablesAt) {
        std::string header = node(0x0001, typed(4, number(version, 2)), 2, 4);
        std::string tables;
        for (const auto &[section, languages] : sections) {
            std::string blocks;
            for (const Language &language : languages) {
                const auto at = static_cast<uint32_t>(tablesAt + tables.size());
                blocks += node(0x8020,
                               node(0x0021, typed(1, language.code), 2, 4) +
                                   node(0x0022, typed(4, number(language.info, 2)), 2, 4) +
                                   node(0x0023, typed(5, number(at, 4)), 2, 4),
                               2, 4);
                std::string index;
                std::string bytes;
                for (const std::string &text : language.strings) {
                    index += number(4 * language.strings.size() + bytes.size(), 2) +
                             number(text.size(), 2);
                    bytes += text;
                }
                tables += index + bytes;
            }
            header += node(0x8100u + static_cast<uint32_t>(section), blocks, 2, 4);
        }
        const std::string tree = node(0x8001, node(0x8002, header, 2, 4), 2, 4);
        return std::pair(tree, tree + tables);
    };
    return build(static_cast<uint32_t>(build(0).first.size())).second;
}

// Nodes of dialog descriptions; the text of several children is their sum.
namespace describe {

inline std::string group(uint32_t tag, std::string_view children = {}) {
    return node(tag, children, 1, 2);
}

inline std::string byte(uint32_t tag, uint32_t value) {
    return group(tag, typed(3, number(value, 1)));
}

inline std::string word(uint32_t tag, uint32_t value) {
    return group(tag, typed(4, number(value, 2)));
}

inline std::string dword(uint32_t tag, uint32_t value) {
    return group(tag, typed(5, number(value, 4)));
}

inline std::string text(uint32_t tag, std::string_view value) {
    return group(tag, typed(1, value));
}

inline std::string position(uint32_t x, uint32_t y) {
    return group(135, word(4, x) + word(5, y));
}

inline std::string area(uint32_t left, uint32_t top, uint32_t right, uint32_t bottom) {
    return group(136, position(left, top) + position(right, bottom));
}

// Colours 0xRRGGBB: active foreground, passive foreground, active background, passive background.
inline std::string colors(const std::vector<uint32_t> &values) {
    std::string children;
    for (const uint32_t value : values)
        children += group(154, byte(1, value >> 16) + byte(2, value >> 8) + byte(3, value));
    return group(155, children);
}

// A description of a dialog type: its parameters node with more values, then its controls, then a
// node that is skipped, since an empty node in the last place is not read.
inline std::string dialog(uint32_t type, std::string_view controls, std::string_view values = {}) {
    return group(0x80, group(129, byte(17, type) + std::string(values)) + std::string(controls) +
                           byte(0, 0));
}

} // namespace describe

} // namespace support
