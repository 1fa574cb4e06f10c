// resource_source_writer.cpp: a resource file as source. Short strings stand one a line under
// [strings], the others as tables of their own behind them, as TOML has it; dialogs come last.
#include "tools/resource_source.h"

#include "common/utf8.h"
#include "tools/dialog_source.h"
#include "tools/source_text.h"

#include <algorithm>
#include <set>

namespace uti::tool {

namespace {

constexpr std::size_t longestLine = 100;

std::vector<Language> languagesOf(const std::vector<LanguageTable> &tables) {
    std::vector<Language> languages;
    languages.reserve(tables.size());
    for (const LanguageTable &table : tables)
        languages.push_back(table.language);
    return languages;
}

std::string writeInfo(const Language &language) {
    return concat(language.code, " = ", language.info);
}

// Writes a file once, for `writeResourceSource`.
class SourceWriter {
public:
    SourceWriter(const ResourceFile &file, const CodePages &codePages)
        : file_(file), codePages_(codePages) {}

    std::string write(std::string_view module);

private:
    struct Section {
        const std::vector<LanguageTable> &tables;
        bool isListed; // under [sections], since [languages] would give others
        std::size_t languageCount;
    };

    void collectLanguages();
    Section describe(const std::vector<LanguageTable> &tables) const;
    void writeEntry(uint16_t id, const Section &section);
    void writeString(uint16_t id, const Section &section);
    std::optional<std::string> findDialog(uint16_t id, const Section &section) const;
    const std::string *findShared(uint16_t id, const Section &section) const;
    std::string writeBytes(const std::string &bytes, std::string_view language) const;

    const ResourceFile &file_;
    const CodePages &codePages_;
    std::vector<Language> languages_; // of all sections, in the order of their first appearance
    std::string lines_;               // strings of one line
    std::string tables_;              // strings with a table of their own
    std::string dialogs_;
};

void SourceWriter::collectLanguages() {
    for (const auto &[number, tables] : file_.sections) {
        for (const LanguageTable &table : tables) {
            const std::string &code = table.language.code;
            if (std::ranges::find(languages_, code, &Language::code) == languages_.end())
                languages_.push_back(table.language);
        }
    }
}

SourceWriter::Section SourceWriter::describe(const std::vector<LanguageTable> &tables) const {
    std::vector<Language> unlisted;
    for (const Language &language : languages_) {
        const auto isOurs = [&](const LanguageTable &table) {
            return table.language.code == language.code && !table.strings.empty();
        };
        if (std::ranges::any_of(tables, isOurs))
            unlisted.push_back(language);
    }
    const bool isListed = languagesOf(tables) != unlisted;
    return {tables, isListed, isListed ? tables.size() : languages_.size()};
}

std::string SourceWriter::write(std::string_view module) {
    collectLanguages();
    std::string lists;
    for (const auto &[number, tables] : file_.sections) {
        const Section section = describe(tables);
        std::vector<std::string> listed;
        for (const LanguageTable &table : tables)
            listed.push_back(writeInfo(table.language));
        if (section.isListed)
            lists += concat(+number, " = { ", join(listed, ", "), " }\n");

        std::set<uint16_t> indexes;
        for (const LanguageTable &table : tables) {
            for (const auto &[index, bytes] : table.strings)
                indexes.insert(index);
        }
        for (const uint16_t index : indexes)
            writeEntry(stringId(number, index), section);
    }

    std::string source = concat("module = ", quote(module), '\n');
    if (file_.version)
        source += concat("version = ", *file_.version, '\n');
    source += concat("code_page = ", quote(codePages_.common().name()), '\n');
    if (file_.rootTag != defaultRootTag)
        source += concat("root_tag = ", Hex{file_.rootTag, 4}, '\n');
    if (!languages_.empty())
        source += "\n[languages]\n";
    for (const Language &language : languages_)
        source += writeLanguage(language, codePages_) + '\n';
    if (!lists.empty())
        source += "\n[sections]\n" + lists;
    if (!lines_.empty())
        source += "\n[strings]\n" + lines_;
    return source + tables_ + dialogs_;
}

void SourceWriter::writeEntry(uint16_t id, const Section &section) {
    if (const std::optional<std::string> dialog = findDialog(id, section))
        dialogs_ += *dialog;
    else
        writeString(id, section);
}

std::optional<std::string> SourceWriter::findDialog(uint16_t id, const Section &section) const {
    std::vector<DialogText> texts;
    for (const auto &[language, strings] : section.tables) {
        if (const auto found = strings.find(indexOf(id)); found != strings.end())
            texts.push_back({language.code, found->second});
    }
    const Coverage coverage =
        texts.size() == section.languageCount ? Coverage::everyLanguage : Coverage::someLanguages;
    return writeDialog(id, texts, coverage, codePages_);
}

void SourceWriter::writeString(uint16_t id, const Section &section) {
    std::vector<std::string> assignments{concat("id = ", Hex{id, 4})};
    if (const std::string *bytes = findShared(id, section)) {
        assignments.push_back("hex = " + quoteHex(*bytes));
    } else {
        for (const auto &[language, strings] : section.tables) {
            const auto found = strings.find(indexOf(id));
            if (found == strings.end())
                continue;
            const std::string key = language.code == "id" ? "text.id" : language.code;
            assignments.push_back(concat(key, " = ", writeBytes(found->second, language.code)));
        }
    }

    const std::string name = "STRING_" + concat(Hex{id, 4}).substr(2);
    const std::string line = concat(name, " = { ", join(assignments, ", "), " }\n");
    if (line.find('\n') == line.size() - 1 && countCharacters(line) <= longestLine)
        lines_ += line;
    else
        tables_ += concat("\n[strings.", name, "]\n", join(assignments, "\n"), '\n');
}

// The bytes of a string that is no text in any language and the same in each that `hex` stands for.
const std::string *SourceWriter::findShared(uint16_t id, const Section &section) const {
    const std::string *shared = nullptr;
    for (const auto &[language, strings] : section.tables) {
        const auto found = strings.find(indexOf(id));
        if (found == strings.end() || (shared && *shared != found->second) ||
            readableText(found->second, codePages_.of(language.code)))
            return nullptr;
        shared = &found->second;
    }
    const bool isEverywhere = section.tables.size() == section.languageCount;
    return isEverywhere ? shared : nullptr;
}

std::string SourceWriter::writeBytes(const std::string &bytes, std::string_view language) const {
    const std::optional<std::string> text = readableText(bytes, codePages_.of(language));
    return text ? quote(*text) : "{ hex = " + quoteHex(bytes) + " }";
}

} // namespace

std::string writeResourceSource(const ResourceFile &file, std::string_view module,
                                const CodePages &codePages) {
    return SourceWriter(file, codePages).write(module);
}

std::string writeLanguage(const Language &language, const CodePages &codePages) {
    const std::string &name = codePages.of(language.code).name();
    return name == codePages.common().name() ? writeInfo(language)
                                             : concat(language.code, " = { info = ", language.info,
                                                      ", code_page = ", quote(name), " }");
}

} // namespace uti::tool
