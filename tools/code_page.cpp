// code_page.cpp: the table of a code page, asked from iconv(3) byte by byte.
#include "tools/code_page.h"

#include "tools/utf8.h"

#include <algorithm>
#include <cerrno>
#include <memory>

#include <iconv.h>

namespace uti::tool {

namespace {

struct Closer {
    void operator()(iconv_t converter) const { iconv_close(converter); }
};
using Converter = std::unique_ptr<std::remove_pointer_t<iconv_t>, Closer>;

// A suffix such as "//TRANSLIT" would turn characters into others; an empty name means the locale.
bool isName(std::string_view name) {
    constexpr std::string_view forbidden("/\0", 2);
    return !name.empty() && name.find_first_of(forbidden) == std::string_view::npos;
}

} // namespace

std::variant<CodePage, std::string> CodePage::open(const std::string &name) {
    const iconv_t opened =
        isName(name) ? iconv_open("UTF-32LE", name.c_str()) : reinterpret_cast<iconv_t>(-1);
    if (opened == reinterpret_cast<iconv_t>(-1))
        return "unknown code page \"" + name + "\"";

    const Converter converter(opened);
    CodePage page;
    page.name_ = name;
    for (std::size_t byte = 0; byte < page.characters_.size(); ++byte) {
        char in = static_cast<char>(byte);
        unsigned char out[4];
        char *from = &in;
        char *to = reinterpret_cast<char *>(out);
        std::size_t fromLeft = 1;
        std::size_t toLeft = sizeof out;
        iconv(converter.get(), nullptr, nullptr, nullptr, nullptr);
        const bool failed = iconv(converter.get(), &from, &fromLeft, &to, &toLeft) == SIZE_MAX;
        if (failed && errno == EILSEQ)
            page.characters_[byte] = unassigned;
        else if (failed || toLeft > 0)
            return "\"" + name + "\" is not a single-byte code page";
        else
            page.characters_[byte] = static_cast<char32_t>(out[0] | out[1] << 8 | out[2] << 16);
    }
    return page;
}

std::optional<char> CodePage::encode(char32_t character) const {
    const auto found = std::ranges::find(characters_, character);
    if (found == characters_.end())
        return std::nullopt;
    return static_cast<char>(found - characters_.begin());
}

std::optional<std::string> CodePage::decode(std::string_view bytes) const {
    std::string text;
    for (const char byte : bytes) {
        const char32_t character = characters_[static_cast<unsigned char>(byte)];
        if (character == unassigned || encode(character) != byte)
            return std::nullopt;
        appendCharacter(text, character);
    }
    return text;
}

} // namespace uti::tool
