// code_page.cpp: the terminal's code page, opened once.
#include "host/toolkit/code_page.h"

#include "common/code_page.h"

#include <cstdlib>

namespace uti::host {

namespace {

const CodePage &terminalCodePage() {
    static const CodePage page = [] {
        auto opened = CodePage::open(defaultCodePage);
        if (const auto *fault = std::get_if<std::string>(&opened)) {
            std::fprintf(stderr, "uti: %s\n", fault->c_str());
            std::exit(2); // nothing could be shown
        }
        return std::get<CodePage>(std::move(opened));
    }();
    return page;
}

} // namespace

char32_t toUnicode(char byte) {
    return terminalCodePage().decode(byte);
}

std::string toUtf8(std::string_view bytes) {
    return terminalCodePage().toUtf8(bytes);
}

std::optional<char> fromUtf8(std::string_view text, std::size_t &position) {
    std::string_view rest = text.substr(position);
    const char32_t character = takeCharacter(rest);
    position = text.size() - rest.size();
    return terminalCodePage().encode(character);
}

} // namespace uti::host
