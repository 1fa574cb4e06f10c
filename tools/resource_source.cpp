// resource_source.cpp: the source language read: tables to the file they stand for, every mistake
// reported at its place.
#include "resource_source.h"

#include "toml_reader.h"
#include "utf8.h"

#include <algorithm>
#include <set>

namespace uti::tool {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isIdentifier(std::string_view name) {
    return !name.empty() && !isDigit(name[0]) && std::ranges::all_of(name, isNamePart);
}

int hexDigit(char c) {
    if (isDigit(c))
        return c - '0';
    const char letter = static_cast<char>(c | 0x20);
    return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

// A string by language, and where it is named.
struct Entry {
    std::string name;
    Position position;
    std::map<std::string, std::string, std::less<>> bytes;
};

// Reads a source once, for `readResourceSource`.
class SourceReader {
public:
    explicit SourceReader(Diagnostics &diagnostics) : diagnostics_(diagnostics) {}

    ResourceSource read();

private:
    void readModule(const TomlText *module);
    void readCodePage(const TomlText *codePage);
    void readRootTag(const TomlInteger *tag);
    std::vector<Language> readLanguages(const toml::table &table);
    void readSections(const toml::table &table);
    void readStrings(const toml::table &table);
    void readString(const toml::key &key, const toml::table &table);
    std::optional<uint16_t> readId(const TomlInteger *value, const toml::key &key);
    void readTexts(TableReader &reader, const std::vector<Language> &languages, Entry &entry);
    std::string readBytes(const toml::node &node, std::string_view name);
    std::string encode(const TomlText &text);
    std::string decodeHex(const TomlText &text);
    const std::vector<Language> &languagesOf(std::optional<uint16_t> id) const;
    void fillSection(uint8_t section);

    Diagnostics &diagnostics_;
    ResourceSource source_;
    std::optional<CodePage> codePage_;
    std::vector<Language> languages_;
    std::map<uint8_t, std::vector<Language>> sectionLanguages_;
    std::map<uint16_t, Entry> strings_;
};

ResourceSource SourceReader::read() {
    const std::optional<toml::table> document = parseToml(diagnostics_);
    if (!document)
        return {};

    TableReader reader(*document, diagnostics_);
    readModule(reader.find<TomlText>("module"));
    source_.file.version = reader.findNumber("version", UINT16_MAX);
    readCodePage(reader.find<TomlText>("code_page"));
    readRootTag(reader.find<TomlInteger>("root_tag"));
    if (const auto *languages = reader.find<toml::table>("languages"))
        languages_ = readLanguages(*languages);
    if (const auto *sections = reader.find<toml::table>("sections"))
        readSections(*sections);
    if (const auto *strings = reader.find<toml::table>("strings"))
        readStrings(*strings);
    reader.reportUnknownKeys();

    for (uint8_t section = 0; section <= sectionOf(lastStringId); ++section)
        fillSection(section);
    return std::move(source_);
}

void SourceReader::readModule(const TomlText *module) {
    if (!module) {
        diagnostics_.error({1, 1}, "the module's name is missing: module = \"name\"");
        return;
    }
    source_.module = module->get();
    source_.modulePosition = begin(*module);
    if (!isModuleName(source_.module))
        diagnostics_.error(begin(*module), "a module's name is 1 to ", longestModuleName,
                           " letters, digits and underscores and begins with no digit");
}

void SourceReader::readCodePage(const TomlText *codePage) {
    auto opened = CodePage::open(codePage ? codePage->get() : defaultCodePage);
    if (auto *page = std::get_if<CodePage>(&opened))
        codePage_ = std::move(*page);
    else
        diagnostics_.error(codePage ? begin(*codePage) : Position{1, 1},
                           std::get<std::string>(opened));
}

void SourceReader::readRootTag(const TomlInteger *tag) {
    if (!tag)
        return;
    if (tag->get() < firstRootTag || tag->get() > UINT16_MAX)
        diagnostics_.error(begin(*tag), "root_tag must be 0x8000 to 0xFFFF");
    else
        source_.file.rootTag = static_cast<uint16_t>(tag->get());
}

std::vector<Language> SourceReader::readLanguages(const toml::table &table) {
    std::vector<Language> languages;
    for (const auto &[key, node] : entriesInOrder(table)) {
        const std::string code(key->str());
        if (!isLanguageCode(code))
            diagnostics_.error(begin(*key), "a language code is two lower-case letters");
        const auto info = expectNumber(*node, code, UINT16_MAX, diagnostics_);
        languages.push_back({code, info.value_or(0)});
    }
    return languages;
}

void SourceReader::readSections(const toml::table &table) {
    for (const auto &[key, node] : entriesInOrder(table)) {
        const std::string_view name = key->str();
        if (name.size() != 1 || name[0] < '0' || name[0] > '0' + sectionOf(lastStringId)) {
            diagnostics_.error(begin(*key), "a section is 0 to 5");
            continue;
        }
        const auto *languages = expect<toml::table>(*node, concat("section ", name), diagnostics_);
        if (!languages)
            continue;

        if (languages->empty())
            diagnostics_.error(begin(*node), "a section needs a language");
        for (const auto &[code, info] : *languages) {
            const auto known = std::ranges::find(languages_, code.str(), &Language::code);
            if (isLanguageCode(code.str()) && known == languages_.end())
                diagnostics_.error(begin(code), '"', code.str(), "\" is not in [languages]");
        }
        sectionLanguages_[static_cast<uint8_t>(name[0] - '0')] = readLanguages(*languages);
    }
}

void SourceReader::readStrings(const toml::table &table) {
    if (languages_.empty() && !table.empty())
        diagnostics_.error(begin(table), "strings need languages: [languages] and en = 0");
    for (const auto &[key, node] : entriesInOrder(table)) {
        if (const auto *string = expect<toml::table>(*node, key->str(), diagnostics_))
            readString(*key, *string);
    }
}

void SourceReader::readString(const toml::key &key, const toml::table &table) {
    if (!isIdentifier(key.str()))
        diagnostics_.error(begin(key), '"', key.str(), "\" is no identifier of C");

    TableReader reader(table, diagnostics_);
    const std::optional<uint16_t> id = readId(reader.find<TomlInteger>("id"), key);
    const TomlText *hex = reader.find<TomlText>("hex");
    if (!id && !table.contains("id"))
        diagnostics_.error(begin(key), key.str(), " has no id");
    if (languages_.empty())
        return;

    Entry unnumbered;
    Entry &entry = id ? strings_[*id] : unnumbered;
    const std::vector<Language> &languages = languagesOf(id);
    readTexts(reader, languages, entry);
    reader.reportUnknownKeys();
    if (hex && !entry.bytes.empty())
        diagnostics_.error(begin(*hex), "hex stands for every language; no text goes with it");
    const std::string bytes = hex ? decodeHex(*hex) : "";
    for (const Language &language : languages) {
        if (hex)
            entry.bytes[language.code] = bytes;
        else if (!entry.bytes.empty() && !entry.bytes.contains(language.code))
            diagnostics_.warning(begin(key), key.str(), " has no text in ", language.code);
    }
    if (entry.bytes.empty() && !table.contains("hex"))
        diagnostics_.error(begin(key), key.str(), " has neither a text nor hex");
}

std::optional<uint16_t> SourceReader::readId(const TomlInteger *value, const toml::key &key) {
    if (!value)
        return std::nullopt;
    if (value->get() < 0 || value->get() > lastStringId) {
        diagnostics_.error(begin(*value), "id must be 0x0000 to 0x5FFF: a section, 0 to 5, and a "
                                          "three-digit index");
        return std::nullopt;
    }
    const auto id = static_cast<uint16_t>(value->get());
    const std::string name(key.str());
    const auto [taken, isFree] = strings_.try_emplace(id, Entry{name, begin(key), {}});
    if (!isFree) {
        diagnostics_.error(begin(*value), "id ", Hex{id, 4}, " is taken by ", taken->second.name,
                           " in line ", taken->second.position.line);
        return std::nullopt;
    }
    source_.names.push_back({name, id, begin(key)});
    return id;
}

// Takes the texts of a string: `en = ...`, or `text.id = ...` where the key alone would mean
// another thing.
void SourceReader::readTexts(TableReader &reader, const std::vector<Language> &languages,
                             Entry &entry) {
    const toml::table none;
    const auto *text = reader.find<toml::table>("text");
    TableReader inner(text ? *text : none, diagnostics_);
    for (const auto &[code, info] : languages_) {
        const toml::node *direct = code == "id" ? nullptr : reader.find(code);
        for (const toml::node *node : {direct, inner.find(code)}) {
            if (!node)
                continue;
            if (std::ranges::find(languages, code, &Language::code) == languages.end())
                diagnostics_.error(begin(*node), "[sections] does not list ", code, " here");
            if (!entry.bytes.emplace(code, readBytes(*node, code)).second)
                diagnostics_.error(begin(*node), code, " is given twice");
        }
    }
    inner.reportUnknownKeys();
}

// The bytes of a text in one language: "text" or { hex = "..." }.
std::string SourceReader::readBytes(const toml::node &node, std::string_view language) {
    const toml::table *table = node.as_table();
    if (!table) {
        const auto *text = expect<TomlText>(node, language, diagnostics_);
        return text ? encode(*text) : "";
    }

    TableReader reader(*table, diagnostics_);
    const auto *hex = reader.find<TomlText>("hex");
    if (!table->contains("hex"))
        diagnostics_.error(begin(node), language, " must be a text or { hex = \"...\" }");
    reader.reportUnknownKeys();
    return hex ? decodeHex(*hex) : "";
}

std::string SourceReader::encode(const TomlText &text) {
    std::string bytes;
    std::set<char32_t> lacking;
    for (std::string_view rest = text.get(); codePage_ && !rest.empty();) {
        const std::string_view before = rest;
        const char32_t character = takeCharacter(rest);
        if (const std::optional<char> byte = codePage_->encode(character)) {
            bytes += *byte;
        } else if (lacking.insert(character).second) {
            const std::string_view spelled = before.substr(0, before.size() - rest.size());
            diagnostics_.error(diagnostics_.find(spelled, begin(text), end(text)),
                               describe(character), " is not in ", codePage_->name());
        }
    }
    return bytes;
}

std::string SourceReader::decodeHex(const TomlText &text) {
    constexpr std::string_view blanks = " \t\r\n";
    const std::string &digits = text.get();
    std::string bytes;
    for (std::size_t at = 0; (at = digits.find_first_not_of(blanks, at)) != digits.npos; at += 2) {
        const int high = hexDigit(digits[at]);
        const int low = at + 1 < digits.size() ? hexDigit(digits[at + 1]) : -1;
        if (high < 0 || low < 0) {
            const std::string_view wrong = std::string_view(digits).substr(at, 2);
            diagnostics_.error(diagnostics_.find(wrong, begin(text), end(text)),
                               "a byte is two hex digits");
            break;
        }
        bytes += static_cast<char>(high << 4 | low);
    }
    return bytes;
}

const std::vector<Language> &SourceReader::languagesOf(std::optional<uint16_t> id) const {
    const auto own = id ? sectionLanguages_.find(sectionOf(*id)) : sectionLanguages_.end();
    return own == sectionLanguages_.end() ? languages_ : own->second;
}

// Makes the tables of a section. A language has one when it has a string there, or when the source
// lists the section's languages itself.
void SourceReader::fillSection(uint8_t section) {
    std::vector<LanguageTable> tables;
    const bool isListed = sectionLanguages_.contains(section);
    for (const Language &language : languagesOf(stringId(section, 0))) {
        LanguageTable table{language, {}};
        const auto end = strings_.upper_bound(stringId(section, 0xFFF));
        for (auto string = strings_.lower_bound(stringId(section, 0)); string != end; ++string) {
            const auto &[id, entry] = *string;
            if (const auto found = entry.bytes.find(language.code); found != entry.bytes.end())
                table.strings[indexOf(id)] = found->second;
        }
        if (isListed || !table.strings.empty())
            tables.push_back(std::move(table));
    }

    for (const auto &[language, strings] : tables) {
        if (const auto index = firstBeyondLimit(strings, indexSize(tables)))
            diagnostics_.error(strings_[stringId(section, *index)].position,
                               "the table of section ", +section, " in ", language.code,
                               " ends here: it holds 65536 bytes with its index");
    }
    if (!tables.empty())
        source_.file.sections[section] = std::move(tables);
}

} // namespace

bool isNamePart(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || isDigit(c) || c == '_';
}

bool isModuleName(std::string_view name) {
    return isIdentifier(name) && name.size() <= longestModuleName;
}

ResourceSource readResourceSource(Diagnostics &diagnostics) {
    return SourceReader(diagnostics).read();
}

} // namespace uti::tool
