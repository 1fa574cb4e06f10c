// Code pages, font names and the layout of a line against plain readings of them.
#include "fuzz/terminal.h"

using namespace fuzz;

namespace {

// Characters of one to three bytes by their first one; a byte above 0xF0 is no character.
int32_t sizeOf(const char *text, int32_t left) {
    REQUIRE(left > 0);
    const auto first = static_cast<uint8_t>(*text);
    return first > 0xF0 ? 0 : first > 0xE0 ? 3 : first > 0xC0 ? 2 : 1;
}

} // namespace

void fuzz::run(Input &in) {
    Library library;
    if (in.oneIn(2))
        openLog(TRACE_OUTPUT_SERIAL, 1);
    armFault(in);
    const TextCharacterFunction function = in.oneIn(2) ? sizeOf : nullptr, none = nullptr;
    Text_SetCallBack(&function);

    for (int steps = 0; !in.isOver() && steps < 20; ++steps) {
        const std::string text = in.text(100);
        const support::ExactBlock exact(text), source(text + '\0'), converted(text);
        const auto length = static_cast<int32_t>(text.size());
        const int32_t most = static_cast<int32_t>(in.below(80)) - 5;
        int32_t count = 0, bytes = 0;
        for (int32_t at = 0, next; at < length; at = next, ++count) {
            const int32_t step = function ? sizeOf(&text[static_cast<std::size_t>(at)], 1) : 1;
            next = at + step;
            if (step == 0 || next > length)
                break;
            bytes = count < most ? next : bytes;
        }
        REQUIRE(Text_GetStringLen(exact.data(), length) == count);
        REQUIRE(Text_GetStringLenByte(exact.data(), length, most) == (function ? bytes : most));

        const auto left = static_cast<int32_t>(in.below(80)) - 8;
        const int32_t right = left + static_cast<int32_t>(in.below(90)) - 8;
        const auto justify = static_cast<int32_t>(in.below(4));
        char line[TEXT_LINE + 1] = {};
        line[TEXT_LINE] = '#';
        const int32_t placed = Text_LayoutLine(line, exact.data(), length, justify, left, right);
        REQUIRE(line[TEXT_LINE] == '#' && placed >= 0 && placed <= length && placed <= TEXT_LINE);
        // Where the whole text has room it stands there, and blanks around it.
        const int32_t columns = right - left, free = columns - count;
        if (free >= 0 && columns <= TEXT_LINE && length == count) {
            std::string expected(TEXT_LINE, ' ');
            const int at = justify == TEXT_RIGHT ? free : justify == TEXT_CENTER ? free / 2 : 0;
            expected.replace(static_cast<std::size_t>(at), text.size(), text);
            REQUIRE(std::string_view(line, TEXT_LINE) == expected);
        }
        Text_DrawString(exact.data(), length, justify, 0, left, right, 60, 2);

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
        name = CodePageManager_GetNegativeFontName(language.c_str(), font.c_str());
        REQUIRE(!name || (name[0] == 'n' && std::strlen(name) <= 31));
        CodePageManager_GetCodePage(language.c_str());
        Dialogs_SetDefaultFonts(language.size() >= 2 ? language.c_str() : "en");
    }
    Text_SetCallBack(&none);
}
