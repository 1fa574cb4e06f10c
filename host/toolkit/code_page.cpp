// code_page.cpp: code pages, each opened once.
#include "host/toolkit/code_page.h"

#include <cstdlib>
#include <map>

namespace uti::host {

const CodePage &terminalCodePage() {
    static const CodePage *const page = findCodePage(defaultCodePage);
    if (!page) {
        std::fprintf(stderr, "uti: there is no code page %s\n", defaultCodePage);
        std::exit(2); // nothing could be shown
    }
    return *page;
}

const CodePage *findCodePage(std::string_view numberOrName) {
    constexpr int partsOfIso8859 = 16;
    static std::map<std::string, std::optional<CodePage>, std::less<>> known;
    if (const auto found = known.find(numberOrName); found != known.end())
        return found->second ? &*found->second : nullptr;

    std::string name(numberOrName);
    if (name.size() <= 5 && name.find_first_not_of("0123456789") == name.npos && !name.empty()) {
        const int number = std::stoi(name);
        name = (number <= partsOfIso8859 ? "ISO-8859-" : "CP") + std::to_string(number);
    }
    auto opened = CodePage::open(name);
    auto *const page = std::get_if<CodePage>(&opened);
    auto &kept = known[std::string(numberOrName)];
    if (page)
        kept = std::move(*page);
    return kept ? &*kept : nullptr;
}

} // namespace uti::host
