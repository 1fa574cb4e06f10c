// code_pages.cpp: names of code pages, and the option that gives them.
#include "tools/code_pages.h"

#include "tools/resource_model.h"
#include "tools/toml_reader.h"

#include <iostream>

namespace uti::tool {

namespace {

// Those that terminals have, of the hundreds that iconv knows.
constexpr std::string_view usualNames[] = {
    "windows-1250", "windows-1251", "windows-1252", "windows-1253", "windows-1254", "windows-1255",
    "windows-1256", "windows-1257", "windows-1258", "ISO-8859-1",   "ISO-8859-2",   "ISO-8859-3",
    "ISO-8859-4",   "ISO-8859-5",   "ISO-8859-6",   "ISO-8859-7",   "ISO-8859-8",   "ISO-8859-9",
    "ISO-8859-10",  "ISO-8859-13",  "ISO-8859-14",  "ISO-8859-15",  "ISO-8859-16",  "KOI8-R",
    "KOI8-U",       "CP437",        "CP850",        "CP852",        "CP855",        "CP857",
    "CP866",        "CP1251",       "CP1252",       "LATIN1",       "LATIN2"};

} // namespace

std::string wrongCodePage(const std::string &name, const std::string &fault) {
    return fault + hint(name, usualNames);
}

std::optional<CodePages> openCodePages(const std::vector<std::string> &options) {
    std::optional<CodePages> pages;
    const auto open = [&](const std::string &name) -> std::optional<CodePage> {
        auto opened = CodePage::open(name);
        if (auto *page = std::get_if<CodePage>(&opened))
            return std::move(*page);
        std::cerr << "uti: " << wrongCodePage(name, std::get<std::string>(opened)) << '\n';
        return std::nullopt;
    };
    const auto isForOne = [](const std::string &option) {
        return option.size() > 2 && option[2] == '=' && isLanguageCode(option.substr(0, 2));
    };

    std::string common = defaultCodePage;
    for (const std::string &option : options)
        if (!isForOne(option))
            common = option;
    if (auto page = open(common))
        pages.emplace(*std::move(page));
    for (const std::string &option : options) {
        if (!pages || !isForOne(option))
            continue;
        if (auto page = open(option.substr(3)))
            pages->set(option.substr(0, 2), *std::move(page));
        else
            pages.reset();
    }
    return pages;
}

} // namespace uti::tool
