// log_wording.cpp: strings of resource files by message id.
#include "tools/log_wording.h"

#include "Src/utiResource.h"
#include "Src/utiTraceText.h"
#include "tools/files.h"
#include "tools/resource_model.h"

#include <algorithm>
#include <iostream>

namespace uti::tool {

namespace fs = std::filesystem;

namespace {

// Sections from this one on read the first language when they lack the one that is asked for.
constexpr uint8_t firstSectionWithFallback = 3;

std::string terminalLanguage() {
    char language[3];
    readDefaultLanguage(language);
    return language;
}

// Records may name any module, but only files of the folder are read.
bool isFileName(std::string_view module) {
    constexpr std::string_view forbidden("/\0", 2);
    return !module.empty() && module.find_first_of(forbidden) == std::string_view::npos;
}

} // namespace

void LogWording::enter(const fs::path &logFolder) {
    present_ = &*folders_.try_emplace(folder_.empty() ? logFolder : folder_).first;
}

// What is there already stays. Empty strings give no wording.
void LogWording::addFile(Texts &texts, const std::string &module) {
    const fs::path path = present_->first / (module + ".res");
    std::error_code failure;
    if (module.size() > RESOURCE_NAME_LENGTH || !fs::is_regular_file(path, failure))
        return;
    const std::optional<std::string> bytes = readFile(path);
    Diagnostics diagnostics(path.string());
    if (!bytes)
        diagnostics.error({}, "cannot read the file");
    const auto file = bytes ? readResourceFile(*bytes, diagnostics) : std::nullopt;
    diagnostics.print(std::cerr);
    hasErrors_ = hasErrors_ || diagnostics.hasErrors();
    if (!file)
        return;

    const std::string wanted = language_.empty() ? terminalLanguage() : language_;
    for (const auto &[section, tables] : file->sections) {
        const auto add = [&, number = section](const LanguageTable &table) {
            for (const auto &[index, string] : table.strings) {
                const std::string text = string.c_str(); // a wording ends at its first zero
                if (!text.empty())
                    texts.emplace(stringId(number, index), text);
            }
        };
        const auto own = std::ranges::find_if(tables, [&](const LanguageTable &table) {
            return table.language.code == wanted && !table.strings.empty();
        });
        if (own != tables.end())
            add(*own);
        else if (section >= firstSectionWithFallback && !tables.empty())
            add(tables.front());
        if (language_.empty())
            std::ranges::for_each(tables, add);
    }
}

LogWording::Texts LogWording::load(const std::string &module) {
    Texts texts;
    if (!isFileName(module))
        return texts;
    const ExternalName external(module.c_str());
    if (external.enabled())
        addFile(texts, external.text());
    addFile(texts, module);
    return texts;
}

const std::string *LogWording::find(std::string_view module, uint16_t messageId) {
    if (const char *builtIn = builtInWording(module, messageId)) {
        static const std::string text = builtIn;
        return &text;
    }
    Modules &modules = present_->second;
    auto found = modules.find(module);
    if (found == modules.end())
        found = modules.emplace(module, load(std::string(module))).first;
    const auto text = found->second.find(messageId);
    return text == found->second.end() ? nullptr : &text->second;
}

} // namespace uti::tool
