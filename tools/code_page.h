// code_page.h: a single-byte code page as a table, between the UTF-8 of the sources and the bytes
// of the resource files. Stands on iconv(3).
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace uti::tool {

inline constexpr const char *defaultCodePage = "windows-1251";

class CodePage {
public:
    // The code page of that name, or what is wrong with it.
    static std::variant<CodePage, std::string> open(const std::string &name);

    const std::string &name() const { return name_; }

    // The byte of a character, or nothing when the code page lacks it.
    std::optional<char> encode(char32_t character) const;

    // The text in UTF-8, or nothing when the code page gives no meaning to some byte, or would
    // write it back as another one.
    std::optional<std::string> decode(std::string_view bytes) const;

private:
    static constexpr char32_t unassigned = 0xFFFFFFFF;

    std::string name_;
    std::array<char32_t, 256> characters_{};
};

} // namespace uti::tool
