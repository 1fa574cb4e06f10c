// resource_model.h: a resource file as data, written to bytes and read back from them. The format
// is drawn in Src/utiResource.h. Reading stands on the library's own TLV parser.
#pragma once

#include "common/diagnostics.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace uti::tool {

inline constexpr uint16_t firstRootTag = 0x8000; // the root is a compound node of any tag
inline constexpr uint16_t defaultRootTag = 0x8001;
inline constexpr uint16_t lastStringId = 0x5FFF;
inline constexpr std::size_t tableLimit = 0x10000;
inline constexpr std::size_t entrySize = 4; // of a string table's index

constexpr uint16_t stringId(uint8_t section, uint16_t index) {
    return static_cast<uint16_t>(section << 12 | index);
}

constexpr uint8_t sectionOf(uint16_t id) {
    return static_cast<uint8_t>(id >> 12);
}

constexpr uint16_t indexOf(uint16_t id) {
    return id & 0xFFF;
}

// Two lower-case letters.
bool isLanguageCode(std::string_view code);

struct Language {
    std::string code;
    uint16_t info = 0; // kept for the application
    bool operator==(const Language &) const = default;
};

// Strings in the code page, by index.
using Strings = std::map<uint16_t, std::string>;

// A language of a section with its strings.
struct LanguageTable {
    Language language;
    Strings strings;
    bool operator==(const LanguageTable &) const = default;
};

struct ResourceFile {
    uint16_t rootTag = defaultRootTag;
    std::optional<uint16_t> version;
    std::map<uint8_t, std::vector<LanguageTable>> sections; // languages in file order
    bool operator==(const ResourceFile &) const = default;
};

// Bytes of the index that each table of a section begins with: up to the highest string of any of
// its languages, so that a string which one of them lacks is found to be empty there.
std::size_t indexSize(const std::vector<LanguageTable> &section);

// The index of the first string that lies beyond what the 16-bit offsets of a table reach.
std::optional<uint16_t> firstBeyondLimit(const Strings &strings, std::size_t indexSize);

// The bytes of the file: the tree, then the string tables by section and language. A table is its
// index, holes being all zero, and its strings in the order of the index, none shared. A language
// without strings has no table, its offset is 0. No table may be beyond the limit.
std::string writeResourceFile(const ResourceFile &file);

// The file that the bytes stand for, or nothing and errors. Accepts whatever the library can read:
// unknown nodes are passed over, tables may lie anywhere and share strings. What might be a string
// of a damaged file that nothing leads to is warned of.
std::optional<ResourceFile> readResourceFile(std::string_view bytes, Diagnostics &diagnostics);

} // namespace uti::tool
