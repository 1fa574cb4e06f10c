// code_page.h: a single-byte code page by its name, as a table between its bytes and UTF-8. Stands
// on iconv(3).
#pragma once

#include "common/utf8.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include <iconv.h>
#include <locale.h>

namespace uti {

// The terminal's own.
inline constexpr const char *defaultCodePage = "windows-1251";

class CodePage {
public:
    // The code page of that name, or what is wrong with it.
    static std::variant<CodePage, std::string> open(const std::string &name);

    const std::string &name() const { return name_; }

    // The byte of a character, or nothing when the code page lacks it.
    std::optional<char> encode(char32_t character) const {
        if (character < characters_.size() && characters_[character] == character)
            return static_cast<char>(character);
        const auto found = std::ranges::find(characters_, character);
        if (found == characters_.end())
            return std::nullopt;
        return static_cast<char>(found - characters_.begin());
    }

    // What the code page has in place of a character that it lacks, in UTF-8: a letter without its
    // marks, say, or two for a ligature. Empty when there is nothing near.
    std::string nearest(char32_t character) const;

    // The character of a byte; the replacement character when it has none.
    char32_t decode(char byte) const {
        const char32_t character = characters_[static_cast<unsigned char>(byte)];
        return character == unassigned ? replacementCharacter : character;
    }

    // The bytes of a text in UTF-8, with question marks for what the code page lacks.
    std::string fromUtf8(std::string_view text) const {
        std::string bytes;
        while (!text.empty())
            bytes += encode(takeCharacter(text)).value_or('?');
        return bytes;
    }

    // The text in UTF-8, with replacement characters for bytes without a meaning.
    std::string toUtf8(std::string_view bytes) const {
        std::string text;
        for (const char byte : bytes)
            appendCharacter(text, decode(byte));
        return text;
    }

    // The text in UTF-8, or nothing when the code page gives no meaning to some byte, or would
    // write it back as another one.
    std::optional<std::string> decode(std::string_view bytes) const {
        const auto comesBack = [&](char byte) { return encode(decode(byte)) == byte; };
        return std::ranges::all_of(bytes, comesBack) ? std::optional(toUtf8(bytes)) : std::nullopt;
    }

private:
    static constexpr char32_t unassigned = 0xFFFFFFFF;

    std::string name_;
    std::array<char32_t, 256> characters_{};
};

inline std::variant<CodePage, std::string> CodePage::open(const std::string &name) {
    // A suffix such as "//TRANSLIT" would turn characters into others; an empty name means the
    // locale.
    constexpr std::string_view forbidden("/\0", 2);
    const bool isName = !name.empty() && name.find_first_of(forbidden) == std::string::npos;
    const auto none = reinterpret_cast<iconv_t>(-1);
    const iconv_t converter = isName ? iconv_open("UTF-32LE", name.c_str()) : none;
    if (converter == none)
        return "unknown code page \"" + name + "\"";

    CodePage page;
    page.name_ = name;
    bool isSingleByte = true;
    for (std::size_t byte = 0; byte < page.characters_.size() && isSingleByte; ++byte) {
        char in = static_cast<char>(byte);
        unsigned char out[4];
        char *from = &in;
        char *to = reinterpret_cast<char *>(out);
        std::size_t fromLeft = 1;
        std::size_t toLeft = sizeof out;
        iconv(converter, nullptr, nullptr, nullptr, nullptr);
        const bool failed = iconv(converter, &from, &fromLeft, &to, &toLeft) == SIZE_MAX;
        if (failed && errno == EILSEQ)
            page.characters_[byte] = unassigned;
        else if (failed || toLeft > 0)
            isSingleByte = false;
        else
            page.characters_[byte] = static_cast<char32_t>(out[0] | out[1] << 8 | out[2] << 16);
    }
    iconv_close(converter);
    if (!isSingleByte)
        return "\"" + name + "\" is not a single-byte code page";
    return page;
}

// The C library knows what stands for what, in a locale of UTF-8 that has no language of its own.
inline std::string CodePage::nearest(char32_t character) const {
    static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    const auto none = reinterpret_cast<iconv_t>(-1);
    const iconv_t converter = iconv_open((name_ + "//TRANSLIT").c_str(), "UTF-8");
    if (converter == none || !locale)
        return {};
    std::string in;
    appendCharacter(in, character);
    char bytes[8];
    char *from = in.data();
    char *to = bytes;
    std::size_t fromLeft = in.size();
    std::size_t toLeft = sizeof bytes;
    const locale_t before = uselocale(locale);
    const bool isDone = iconv(converter, &from, &fromLeft, &to, &toLeft) != SIZE_MAX;
    uselocale(before);
    iconv_close(converter);
    const std::string_view found(bytes, sizeof bytes - toLeft);
    return isDone && found != "?" ? toUtf8(found) : std::string();
}

} // namespace uti
