// resource_source.cpp: the source language read: tables to the file they stand for, every mistake
// reported at its place.
#include "tools/resource_source.h"

#include "tools/dialog_source.h"
#include "tools/rules.h"
#include "tools/source_text.h"

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

// What an id may stand for. Dialogs of different languages may share one.
enum class EntryKind : uint8_t { string, dialog };

// A string or dialog by language, and where it is named.
struct Entry {
    EntryKind kind;
    std::string name;
    Place place;
    std::map<std::string, std::string, std::less<>> bytes;
};

// Reads a source once, for `readResourceSource`.
class SourceReader {
public:
    SourceReader(Diagnostics &diagnostics, Missing missing)
        : diagnostics_(diagnostics), missing_(missing) {}

    ResourceSource read();

private:
    void readModule(const TomlText *module);
    std::optional<CodePage> openCodePage(const TomlText &name);
    void readCodePage(const TomlText *codePage);
    void readRootTag(const TomlInteger *tag);
    std::vector<Language> readLanguages(const toml::table &table);
    std::optional<uint16_t> readLanguage(const toml::node &node, const std::string &code);
    void readSections(const toml::table &table);
    void readStrings(const toml::table &table);
    void readString(const toml::key &key, const toml::table &table);
    void readDialogs(const toml::table &table, DialogReader &reader);
    void readDialog(const toml::key &key, const toml::table &table, DialogReader &reader);
    std::vector<Language> readLanguageList(const toml::array &list,
                                           const std::vector<Language> &known);
    void checkName(const toml::key &key);
    Diagnostics::Rules readAllowed(const toml::node *node);
    void reportMissing();
    std::optional<uint16_t> readId(const toml::key &key, const toml::node *node);
    Entry *claim(uint16_t id, EntryKind kind, const toml::key &key, const toml::table &table,
                 const std::vector<Language> &languages);
    void readTexts(TableReader &reader, const std::vector<Language> &languages, Entry &entry,
                   StringName &name);
    std::string readBytes(const toml::node &node, std::string_view name);
    const CodePages *codePages() const { return source_.codePages ? &*source_.codePages : nullptr; }
    const CodePage *codePage(std::string_view language) const {
        return source_.codePages ? &source_.codePages->of(language) : nullptr;
    }
    const std::vector<Language> &languagesOf(std::optional<uint16_t> id) const;
    void fillSection(uint8_t section);

    Diagnostics &diagnostics_;
    const Missing missing_;
    std::map<std::string, std::vector<std::pair<std::string, Place>>> lacking_; // by language
    ResourceSource source_;
    std::vector<Language> languages_;
    std::map<uint8_t, std::vector<Language>> sectionLanguages_;
    std::map<uint16_t, Entry> strings_;
    std::map<std::string, Place> places_; // of the names
    StringIds stringIds_;                 // of the strings alone
};

ResourceSource SourceReader::read() {
    const std::optional<toml::table> document = parseToml(diagnostics_);
    if (!document)
        return {};

    TableReader reader(*document, diagnostics_);
    diagnostics_.setAllowed(readAllowed(reader.find(allowKey)));
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
    reportMissing();
    for (const StringName &string : source_.names)
        stringIds_.emplace(string.name, string.id);
    DialogReader dialogs(codePages(), languages_, diagnostics_);
    if (const auto *colors = reader.find<toml::table>("colors"))
        dialogs.readColors(*colors);
    if (const auto *styles = reader.find<toml::table>("styles"))
        dialogs.readStyles(*styles);
    if (const auto *tables = reader.find<toml::table>("dialogs"))
        readDialogs(*tables, dialogs);
    reader.reportUnknownKeys();
    source_.languages = languages_;
    source_.sectionLanguages = sectionLanguages_;

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
    source_.modulePlace = begin(*module);
    if (!isModuleName(source_.module))
        diagnostics_.error(begin(*module), "a module's name is 1 to ", longestModuleName,
                           " letters, digits and underscores and begins with no digit");
}

// A code page, or nothing and an error at its name.
std::optional<CodePage> SourceReader::openCodePage(const TomlText &name) {
    auto opened = CodePage::open(name.get());
    if (auto *page = std::get_if<CodePage>(&opened))
        return std::move(*page);
    diagnostics_.error(begin(name), wrongCodePage(name.get(), std::get<std::string>(opened)));
    return std::nullopt;
}

void SourceReader::readCodePage(const TomlText *codePage) {
    const TomlText usual(defaultCodePage);
    if (auto page = openCodePage(codePage ? *codePage : usual))
        source_.codePages.emplace(*std::move(page));
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
        languages.push_back({code, readLanguage(*node, code).value_or(0)});
    }
    return languages;
}

// The info word of a language: `de = 1` or `de = { info = 1, code_page = "windows-1252" }`, whose
// code page is noted. Without one that is right texts cannot be judged at all.
std::optional<uint16_t> SourceReader::readLanguage(const toml::node &node,
                                                   const std::string &code) {
    const toml::table *table = node.as_table();
    if (!table)
        return expectNumber(node, code, UINT16_MAX, diagnostics_);
    TableReader reader(*table, diagnostics_);
    const auto info = reader.findNumber("info", UINT16_MAX);
    if (const auto *name = reader.find<TomlText>("code_page")) {
        auto page = openCodePage(*name);
        if (!page)
            source_.codePages.reset();
        else if (source_.codePages)
            source_.codePages->set(code, *std::move(page));
    }
    reader.reportUnknownKeys();
    return info;
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
            if (info.is_table())
                diagnostics_.error(begin(info), "[languages] alone says more than the info word");
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

void SourceReader::checkName(const toml::key &key) {
    if (!isIdentifier(key.str()))
        diagnostics_.error(begin(key), '"', key.str(), "\" is no identifier of C");
}

// The names of rules; those that hold around need not be repeated.
Diagnostics::Rules SourceReader::readAllowed(const toml::node *node) {
    Diagnostics::Rules allowed;
    const auto *names = node ? expect<toml::array>(*node, allowKey, diagnostics_) : nullptr;
    for (std::size_t i = 0; names && i < names->size(); ++i) {
        const auto *name = expect<TomlText>((*names)[i], "a rule", diagnostics_);
        if (name && std::ranges::find(rules, name->get(), &Rule::name) == std::end(rules)) {
            std::vector<std::string_view> known;
            std::ranges::transform(rules, std::back_inserter(known), &Rule::name);
            diagnostics_.error(begin(*name), '"', name->get(), "\" is no rule",
                               hint(name->get(), known));
        } else if (name) {
            allowed.insert(name->get());
        }
    }
    return allowed;
}

void SourceReader::reportMissing() {
    for (const auto &[language, strings] : lacking_) {
        const std::size_t more = strings.size() - 1;
        for (const auto &[name, place] : strings) {
            if (missing_ == Missing::named || more == 0) {
                report(diagnostics_, rule::missing, place, lackOf(name, language));
                continue;
            }
            report(diagnostics_, rule::missing, place, name, " and ", more,
                   more == 1 ? " other have" : " others have", " no text in ", language);
            break;
        }
    }
}

std::optional<uint16_t> SourceReader::readId(const toml::key &key, const toml::node *node) {
    if (!node)
        diagnostics_.error(begin(key), key.str(), " has no id");
    const auto *value = node ? expect<TomlInteger>(*node, "id", diagnostics_) : nullptr;
    if (!value)
        return std::nullopt;
    if (value->get() >= 0 && value->get() <= lastStringId)
        return static_cast<uint16_t>(value->get());
    diagnostics_.error(begin(*value), "id must be 0x0000 to 0x5FFF: a section, 0 to 5, and a "
                                      "three-digit index");
    return std::nullopt;
}

// The entry of an id, or null and an error when it is taken.
Entry *SourceReader::claim(uint16_t id, EntryKind kind, const toml::key &key,
                           const toml::table &table, const std::vector<Language> &languages) {
    const std::string name(key.str());
    const auto [place, isFree] = strings_.try_emplace(id, Entry{kind, name, begin(key), {}});
    Entry &entry = place->second;
    const bool areDialogs = kind == EntryKind::dialog && entry.kind == EntryKind::dialog;
    const auto isTaken = [&](const Language &each) { return entry.bytes.contains(each.code); };
    if (!isFree && (!areDialogs || std::ranges::any_of(languages, isTaken))) {
        diagnostics_.error(begin(*table.get("id")), "id ", Hex{id, 4}, " is taken by ", entry.name);
        diagnostics_.note(entry.place, entry.name, " is here");
        return nullptr;
    }
    const auto [other, isNew] = places_.emplace(name, begin(key));
    if (!isNew) {
        diagnostics_.error(begin(key), name,
                           " is the name of a string as well; the header has one "
                           "constant for a name");
        diagnostics_.note(other->second, "the string is here");
        return nullptr;
    }
    source_.names.push_back({name, id, begin(key)});
    return &entry;
}

void SourceReader::readString(const toml::key &key, const toml::table &table) {
    checkName(key);
    TableReader reader(table, diagnostics_);
    const std::optional<uint16_t> id = readId(key, reader.find("id"));
    const TomlText *hex = reader.find<TomlText>("hex");
    if (languages_.empty())
        return;
    for (const auto &[code, node] : table) {
        const bool isKnown =
            std::ranges::find(languages_, code.str(), &Language::code) != languages_.end();
        if (isLanguageCode(code.str()) && !isKnown && code.str() != "id") {
            diagnostics_.error(begin(code), '"', code.str(), "\" is not in [languages]");
            reader.find(code.str());
        }
    }

    Entry unnumbered{};
    Entry *claimed = id ? claim(*id, EntryKind::string, key, table, {}) : nullptr;
    Entry &entry = claimed ? *claimed : unnumbered;
    const std::vector<Language> &languages = languagesOf(id);
    StringName unnamed{};
    StringName &name = claimed ? source_.names.back() : unnamed;
    name.allowed = readAllowed(reader.find(allowKey));
    const AllowedHere allowed(diagnostics_, name.allowed);
    readTexts(reader, languages, entry, name);
    reader.reportUnknownKeys();
    if (hex && !entry.bytes.empty())
        diagnostics_.error(begin(*hex), "hex stands for every language; no text goes with it");
    const std::string bytes = hex ? decodeHex(*hex, diagnostics_) : "";
    for (const Language &language : languages) {
        if (hex)
            entry.bytes[language.code] = bytes;
        else if (!entry.bytes.empty() && !entry.bytes.contains(language.code) &&
                 !diagnostics_.allowed().contains(rule::missing.name))
            lacking_[language.code].emplace_back(key.str(), begin(key));
    }
    if (entry.bytes.empty() && !table.contains("hex"))
        diagnostics_.error(begin(key), key.str(), " has neither a text nor hex");
}

void SourceReader::readDialogs(const toml::table &table, DialogReader &reader) {
    if (languages_.empty() && !table.empty())
        diagnostics_.error(begin(table), "dialogs need languages: [languages] and en = 0");
    for (const auto &[key, node] : entriesInOrder(table)) {
        if (const auto *dialog = expect<toml::table>(*node, key->str(), diagnostics_))
            readDialog(*key, *dialog, reader);
    }
}

void SourceReader::readDialog(const toml::key &key, const toml::table &table,
                              DialogReader &reader) {
    checkName(key);
    const std::optional<uint16_t> id = readId(key, table.get("id"));
    std::vector<Language> languages = languagesOf(id);
    if (const toml::node *list = table.get("languages")) {
        if (const auto *array = expect<toml::array>(*list, "languages", diagnostics_))
            languages = readLanguageList(*array, languages);
    }
    Entry *entry = id ? claim(*id, EntryKind::dialog, key, table, languages) : nullptr;
    SourceDialog dialog{std::string(key.str()), id.value_or(0), begin(key), {}, {}, {}, {}};
    dialog.allowed = readAllowed(table.get(allowKey));
    const AllowedHere allowed(diagnostics_, dialog.allowed);
    std::vector<std::string> labels;
    for (const Language &language : languages) {
        std::string description = reader.read(table, language.code);
        for (const std::string &name : namesOfControls(description, dialog::tagLabel))
            labels.push_back(codePages() ? codePage(language.code)->toUtf8(name) : name);
        dialog.languages.push_back(language.code);
        if (entry)
            entry->bytes.emplace(language.code, std::move(description));
    }
    if (const toml::node *texts = table.get(textsKey))
        if (const auto *named = expect<toml::table>(*texts, textsKey, diagnostics_))
            dialog.texts = readDialogTexts(*named, stringIds_, labels, codePages(),
                                           dialog.languages, diagnostics_);
    dialog.controls = reader.takeControls();
    if (entry)
        source_.dialogs.push_back(std::move(dialog));
}

std::vector<Language> SourceReader::readLanguageList(const toml::array &list,
                                                     const std::vector<Language> &known) {
    std::vector<Language> languages;
    for (const toml::node &node : list) {
        const auto *code = expect<TomlText>(node, "a language", diagnostics_);
        const auto found = std::ranges::find(known, code ? code->get() : "", &Language::code);
        if (found != known.end())
            languages.push_back(*found);
        else if (code)
            diagnostics_.error(begin(node), '"', code->get(), "\" is no language of this section");
    }
    if (list.empty())
        diagnostics_.error(begin(list), "a dialog needs a language");
    return languages;
}

// Takes the texts of a string: `en = ...`, or `text.id = ...` where the key alone would mean
// another thing.
void SourceReader::readTexts(TableReader &reader, const std::vector<Language> &languages,
                             Entry &entry, StringName &name) {
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
            if (!node->is_table())
                name.texts.emplace(code, begin(*node));
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
        return text ? encodeText(*text, codePage(language), diagnostics_) : "";
    }

    TableReader reader(*table, diagnostics_);
    const auto *hex = reader.find<TomlText>("hex");
    if (!table->contains("hex"))
        diagnostics_.error(begin(node), language, " must be a text or { hex = \"...\" }");
    reader.reportUnknownKeys();
    return hex ? decodeHex(*hex, diagnostics_) : "";
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
            diagnostics_.error(strings_[stringId(section, *index)].place, "the table of section ",
                               +section, " in ", language.code,
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

ResourceSource readResourceSource(Diagnostics &diagnostics, Missing missing) {
    return SourceReader(diagnostics, missing).read();
}

} // namespace uti::tool
