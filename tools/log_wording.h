// log_wording.h: the wording of log records, from the resource files of their modules. Stands on
// the tools' own reader of resource files.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>

namespace uti::tool {

class LogWording {
public:
    // Looks for resource files in `folder`, or in that of each log when it is empty. An empty
    // `language` means the terminal's (the environment variable default_lang, or else "ru") and,
    // for what that lacks, the first language of the file that has it.
    LogWording(std::filesystem::path folder, std::string language)
        : folder_(std::move(folder)), language_(std::move(language)) {}

    // From now on records are those of a log in this folder.
    void enter(const std::filesystem::path &logFolder);

    // The wording of a message as the terminal would use it, or null when there is none.
    const std::string *find(std::string_view module, uint16_t messageId);

    // True when some resource file is damaged; what is wrong has been printed.
    bool hasErrors() const { return hasErrors_; }

private:
    using Texts = std::unordered_map<uint16_t, std::string>;
    using Modules = std::map<std::string, Texts, std::less<>>;

    Texts load(const std::string &module);
    void addFile(Texts &texts, const std::string &module);

    std::filesystem::path folder_;
    std::string language_;
    bool hasErrors_ = false;
    std::map<std::filesystem::path, Modules> folders_;
    std::pair<const std::filesystem::path, Modules> *present_ = nullptr;
};

} // namespace uti::tool
