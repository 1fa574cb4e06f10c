// key_schemes.cpp: the sets of letters that a keypad has printed on it, in Windows-1251.
#include "host/toolkit/key_schemes.h"

namespace uti::host {

namespace {

constexpr std::string_view keyOrder = "123456789*0#";

struct Set {
    std::string_view name;
    std::array<std::string_view, KeySchemes::keys> keys;
};

// In the order of `Letters`. With digits the star gives a decimal point where one fits.
constexpr Set sets[] = {
    {"abc",
     {".,?!'-@/:_1", "abc2", "def3", "ghi4", "jkl5", "mno6", "pqrs7", "tuv8", "wxyz9", "*+-=()%&",
      " 0", "#$\"<>[]"}},
    {"ABC",
     {".,?!'-@/:_1", "ABC2", "DEF3", "GHI4", "JKL5", "MNO6", "PQRS7", "TUV8", "WXYZ9", "*+-=()%&",
      " 0", "#$\"<>[]"}},
    {"\xE0\xE1\xE2",
     {".,?!'-@/:_1", "\xE0\xE1\xE2\xE3\x32", "\xE4\xE5\xE6\xE7\xB8\x33", "\xE8\xE9\xEA\xEB\x34",
      "\xEC\xED\xEE\xEF\x35", "\xF0\xF1\xF2\xF3\x36", "\xF4\xF5\xF6\xF7\x37",
      "\xF8\xF9\xFA\xFB\x38", "\xFC\xFD\xFE\xFF\x39", "*+-=()%&", " 0", "#$\"<>[]\xB9"}},
    {"\xC0\xC1\xC2",
     {".,?!'-@/:_1", "\xC0\xC1\xC2\xC3\x32", "\xC4\xC5\xC6\xC7\xA8\x33", "\xC8\xC9\xCA\xCB\x34",
      "\xCC\xCD\xCE\xCF\x35", "\xD0\xD1\xD2\xD3\x36", "\xD4\xD5\xD6\xD7\x37",
      "\xD8\xD9\xDA\xDB\x38", "\xDC\xDD\xDE\xDF\x39", "*+-=()%&", " 0", "#$\"<>[]\xB9"}},
    {"123", {"1", "2", "3", "4", "5", "6", "7", "8", "9", "*.", "0", "#"}},
};

} // namespace

std::string_view nameOf(Letters letters) {
    return sets[static_cast<std::size_t>(letters)].name;
}

void KeySchemes::set(int32_t number, std::span<const char *const, keys> texts) {
    auto &scheme = schemes_[number];
    for (std::size_t i = 0; i < keys; ++i)
        if (texts[i])
            scheme[i] = texts[i];
}

std::string_view KeySchemes::characters(int32_t scheme, Letters letters, uint8_t key) const {
    const std::size_t index = keyOrder.find(static_cast<char>(key));
    if (index == std::string_view::npos)
        return {};
    const auto own = schemes_.find(scheme);
    if (own != schemes_.end() && !own->second[index].empty())
        return own->second[index];
    return sets[static_cast<std::size_t>(letters)].keys[index];
}

uint8_t KeySchemes::keyOf(char character) {
    for (const Set &set : sets)
        for (std::size_t i = 0; i < keys; ++i)
            if (set.keys[i].find(character) != std::string_view::npos)
                return static_cast<uint8_t>(keyOrder[i]);
    return '1';
}

} // namespace uti::host
