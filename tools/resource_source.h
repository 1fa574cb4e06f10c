// resource_source.h: the source language of resource files (docs/resource-source.md), read into the
// file it stands for and written from one. Stands on the TOML reader, the code page and the model.
#pragma once

#include "common/diagnostics.h"
#include "tools/code_pages.h"
#include "tools/dialog_source.h"
#include "tools/dialog_texts.h"
#include "tools/resource_model.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace uti::tool {

// The name of a string, as the source spells it.
struct StringName {
    std::string name;
    uint16_t id;
    Place place;
    std::map<std::string, Place, std::less<>> texts{}; // by language; none of a dialog
    Diagnostics::Rules allowed{};
};

// A dialog of the source: what it says beside the description that goes into the file.
struct SourceDialog {
    std::string name;
    uint16_t id;
    Place place;
    std::vector<std::string> languages;
    DialogTexts texts;
    std::vector<SourceControl> controls; // the nodes of its description, in their order
    Diagnostics::Rules allowed;
};

inline constexpr std::size_t longestModuleName = 12;

// A module's name is 1 to 12 letters, digits and underscores, the first no digit.
bool isModuleName(std::string_view name);

// A letter, a digit or an underscore.
bool isNamePart(char c);

struct ResourceSource {
    std::string module;
    Place modulePlace;
    std::vector<Language> languages;
    std::vector<StringName> names;      // in file order
    std::vector<SourceDialog> dialogs;  // in file order; an id has one for each of its languages
    std::optional<CodePages> codePages; // none when one of them is wrong, which is reported
    std::map<uint8_t, std::vector<Language>> sectionLanguages; // of sections that list their own
    ResourceFile file;

    // The code page of a language's texts.
    const CodePage &codePageOf(std::string_view language) const { return codePages->of(language); }

    // The languages in which a string of that id may stand.
    const std::vector<Language> &languagesOf(uint16_t id) const {
        const auto own = sectionLanguages.find(sectionOf(id));
        return own == sectionLanguages.end() ? languages : own->second;
    }
};

// How many of the texts that a language lacks are reported: each, or one that counts them.
enum class Missing : uint8_t { counted, named };

// Reads the text of `diagnostics`. The result may be used when no error was reported.
ResourceSource readResourceSource(Diagnostics &diagnostics, Missing missing = Missing::counted);

// The source of a file, with the strings named after their ids. What is no readable text in the
// code page of its language stands there in hex.
std::string writeResourceSource(const ResourceFile &file, std::string_view module,
                                const CodePages &codePages);

// A language as [languages] lists it: de = { info = 1, code_page = "windows-1252" }, or ru = 0 when
// it has the code page of the module.
std::string writeLanguage(const Language &language, const CodePages &codePages);

} // namespace uti::tool
