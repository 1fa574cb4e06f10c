// log_wording.h: the wording of log records, from the resource files of their modules. Stands on
// the tools' own reader of resource files.
#pragma once

#include "tools/code_pages.h"
#include "tools/log_text.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>

namespace uti::tool {

class LogWording {
public:
    // Looks for resource files in `folder`, or in that of each log when it is empty. An empty
    // `language` means the terminal's (the environment variable default_lang, or else "ru") and,
    // for what that lacks, the first language of the file that has it. Modules are named in
    // the common one of the code pages. Wordings are spelled for `form`.
    LogWording(std::filesystem::path folder, std::string language, CodePages codePages, Form form)
        : folder_(std::move(folder)), language_(std::move(language)),
          codePages_(std::move(codePages)), form_(form),
          spelling_(codePages_.common(), Form::line) {}

    // From now on records are those of a log in this folder.
    void enter(const std::filesystem::path &logFolder);

    // The wording of a message as the terminal would use it, or null when there is none.
    const Wording *find(std::string_view module, uint16_t messageId);

    // Why `find` gave null, the first time for a module in a folder; empty later on, and when a
    // damaged file, which has been told, is the reason.
    std::string explain(std::string_view module, uint16_t messageId);

    // True when some resource file is damaged; what is wrong has been printed.
    bool hasErrors() const { return hasErrors_; }

private:
    struct Module {
        std::unordered_map<uint16_t, Wording> wordings;
        std::set<std::string> languages; // of its files
        bool hasFile = false;
        bool isExplained = false;
    };
    using Modules = std::map<std::string, Module, std::less<>>;

    Module load(const std::string &name);
    void addFile(Module &module, const std::string &name);

    std::filesystem::path folder_;
    std::string language_;
    CodePages codePages_;
    Form form_;
    Spelling spelling_; // of the modules' names
    bool hasErrors_ = false;
    std::map<std::filesystem::path, Modules> folders_;
    std::pair<const std::filesystem::path, Modules> *present_ = nullptr;
};

} // namespace uti::tool
