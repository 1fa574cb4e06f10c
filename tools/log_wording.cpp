// log_wording.cpp: strings of resource files by message id.
#include "tools/log_wording.h"

#include "Src/utiResource.h"
#include "Src/utiTraceText.h"
#include "tools/files.h"
#include "tools/resource_model.h"

#include <algorithm>
#include <iostream>
#include <utility>

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
void LogWording::addFile(Module &module, const std::string &name) {
    const fs::path path = present_->first / (name + ".res");
    std::error_code failure;
    if (name.size() > RESOURCE_NAME_LENGTH || !fs::is_regular_file(path, failure))
        return;
    const std::optional<std::string> bytes = readFile(path);
    Diagnostics diagnostics(path.string());
    if (!bytes)
        diagnostics.error({}, "cannot read the file");
    const auto file = bytes ? readResourceFile(*bytes, diagnostics) : std::nullopt;
    diagnostics.print(std::cerr);
    hasErrors_ = hasErrors_ || diagnostics.hasErrors();
    module.hasFile = true;
    module.isExplained = module.isExplained || !file;
    if (!file)
        return;

    const std::string wanted = language_.empty() ? terminalLanguage() : language_;
    for (const auto &[section, tables] : file->sections) {
        const auto add = [&, number = section](const LanguageTable &table) {
            const Spelling spelling(codePages_.of(table.language.code), form_);
            for (const auto &[index, string] : table.strings) {
                const std::string text = string.substr(0, string.find('\0')); // cut at a zero
                if (!text.empty())
                    module.wordings.try_emplace(stringId(number, index), text, spelling);
            }
        };
        for (const LanguageTable &table : tables)
            module.languages.insert(table.language.code);
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

LogWording::Module LogWording::load(const std::string &name) {
    Module module;
    if (!isFileName(name))
        return module;
    prepareModules();
    if (CheckExternalResources == 1)
        addFile(module, name + "_ext");
    addFile(module, name);
    return module;
}

const Wording *LogWording::find(std::string_view module, uint16_t messageId) {
    if (const char *text = builtInWording(module, messageId)) {
        static const Wording builtIn(text, spelling_);
        return &builtIn;
    }
    // The trace log says for itself why it refused a record.
    if (module == "TRACE" && messageId == 0) {
        static const Wording refusal("{0}", spelling_);
        return &refusal;
    }
    Modules &modules = present_->second;
    auto found = modules.find(module);
    if (found == modules.end())
        found = modules.emplace(module, load(std::string(module))).first;
    const auto wording = found->second.wordings.find(messageId);
    return wording == found->second.wordings.end() ? nullptr : &wording->second;
}

std::string LogWording::explain(std::string_view name, uint16_t messageId) {
    Module &module = present_->second.find(name)->second;
    if (std::exchange(module.isExplained, true))
        return {};
    const fs::path &folder = present_->first;
    std::string file;
    spelling_.append(file, name);
    const std::string head = concat("no wording for ", file, ": ");
    file += ".res";
    if (!isFileName(name) || name.size() > RESOURCE_NAME_LENGTH)
        return concat(head, "no resource file can have this name");
    if (!module.hasFile)
        return concat(head, "there is no ", file, " in ",
                      folder.empty() ? "this folder" : folder.string(),
                      folder_.empty() ? "; --res names another folder" : "");
    if (language_.empty() || module.languages.contains(language_))
        return concat(head, file, " has no text for message ", messageId, " (", Hex{messageId, 4},
                      ')', language_.empty() ? "" : " in " + language_);
    std::string languages;
    for (const std::string &language : module.languages)
        languages += (languages.empty() ? "" : ", ") + language;
    return concat(head, file, " has no texts in ", language_, "; it has ",
                  languages.empty() ? "none" : languages);
}

} // namespace uti::tool
