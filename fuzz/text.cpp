// Code pages, font names and the layout of a line against plain readings of them.
#include "fuzz/terminal.h"

#include <vector>

using namespace fuzz;

namespace {

// Characters of one to three bytes by their first one; a byte above 0xF0 is no character.
int32_t sizeOf(const char *text, int32_t left) {
    REQUIRE(left > 0);
    const auto first = static_cast<uint8_t>(*text);
    return first > 0xF0 ? 0 : first > 0xE0 ? 3 : first > 0xC0 ? 2 : 1;
}

// The characters in front of the first byte that begins none.
std::vector<std::string> split(std::string_view text, bool hasFunction) {
    std::vector<std::string> characters;
    while (!text.empty()) {
        const auto size = hasFunction ? static_cast<std::size_t>(sizeOf(text.data(), 1)) : 1;
        if (size == 0 || size > text.size())
            break;
        characters.emplace_back(text.substr(0, size));
        text.remove_prefix(size);
    }
    return characters;
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size) {
    Library library;
    Input in(data, size);
    if (in.oneIn(2))
        openLog(TRACE_OUTPUT_SERIAL, 1);
    armFault(in);
    const TextCharacterFunction function = in.oneIn(2) ? sizeOf : nullptr;
    Text_SetCallBack(&function);

    for (int steps = 0; !in.isOver() && steps < 20; ++steps) {
        const std::string text = in.text(100);
        const support::ExactBlock exact(text);
        const auto length = static_cast<int32_t>(text.size());
        const std::vector<std::string> characters = split(text, function != nullptr);
        const auto count = static_cast<int32_t>(characters.size());
        REQUIRE(Text_GetStringLen(exact.data(), length) == count);

        const int32_t most = static_cast<int32_t>(in.below(80)) - 5;
        int32_t bytes = 0;
        for (int32_t i = 0; i < most && i < count; ++i)
            bytes += static_cast<int32_t>(characters[static_cast<std::size_t>(i)].size());
        REQUIRE(Text_GetStringLenByte(exact.data(), length, most) == (function ? bytes : most));

        const auto left = static_cast<int32_t>(in.below(80)) - 8;
        const int32_t right = left + static_cast<int32_t>(in.below(90)) - 8;
        const auto justify = static_cast<int32_t>(in.below(4));
        char line[TEXT_LINE + 1] = {};
        line[TEXT_LINE] = '#';
        const int32_t placed = Text_LayoutLine(line, exact.data(), length, justify, left, right);
        const std::string_view laid(line, TEXT_LINE);
        REQUIRE(line[TEXT_LINE] == '#' && placed >= 0 && placed <= length && placed <= TEXT_LINE);
        // Where the whole text has room it stands there, and blanks around it.
        const int32_t columns = right - left;
        if (count <= columns && columns <= TEXT_LINE && length == count) {
            const int32_t free = justify == TEXT_RIGHT    ? columns - count
                                 : justify == TEXT_CENTER ? (columns - count) / 2
                                                          : 0;
            std::string expected = std::string(static_cast<std::size_t>(free), ' ') + text;
            expected.resize(TEXT_LINE, ' ');
            REQUIRE(laid == expected);
        }
        Text_DrawString(exact.data(), length, justify, 0, left, right, 60, 2);

        const support::ExactBlock source(text + '\0');
        const support::ExactBlock converted(std::string(text.size(), '#'));
        const uint32_t codePage = in.below(7);
        ISO8859ToOEM(codePage, source.data(), converted.data());
        for (uint32_t i = 0; i < converted.size(); ++i)
            REQUIRE(text[i] < 'A' || text[i] > 'z' || converted.data()[i] == text[i]);
        ISO8859ToOEM(codePage, source.data(), source.data());
        REQUIRE(std::memcmp(source.data(), converted.data(), text.size()) == 0);

        const std::string language = in.text(3), font = in.text(40), page = in.text(20);
        library.terminal.environment["cp_" + language] = page;
        const char *name = CodePageManager_GetFontName(language.c_str(), font.c_str());
        REQUIRE(!name || std::strlen(name) <= 31);
        const char *negative = CodePageManager_GetNegativeFontName(language.c_str(), font.c_str());
        REQUIRE(!negative || (negative[0] == 'n' && std::strlen(negative) <= 31));
        CodePageManager_GetCodePage(language.c_str());
        Dialogs_SetDefaultFonts(language.size() >= 2 ? language.c_str() : "en");
    }
    const TextCharacterFunction none = nullptr;
    Text_SetCallBack(&none);
    return 0;
}
