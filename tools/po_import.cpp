// po_import.cpp: translations taken out of PO files, each held against the source.
#include "tools/po.h"

#include "tools/dialog_texts.h"
#include "tools/rules.h"

#include <algorithm>
#include <set>

namespace uti::tool {

namespace {

std::string inQuotes(std::string_view text) {
    constexpr std::size_t most = 60; // characters
    std::string shown = "\"";
    for (std::size_t i = 0; i < most && !text.empty(); ++i) {
        const char32_t character = takeCharacter(text);
        appendCharacter(shown, character == '\n' ? U' ' : character);
    }
    return shown + (text.empty() ? "\"" : "...\"");
}

// Holds the entries of one PO file against the source.
class Importer {
public:
    Importer(const ResourceSource &source, const Diagnostics &sourceText, const PoFile &po,
             Diagnostics &diagnostics)
        : source_(source), sourceText_(sourceText), po_(po), diagnostics_(diagnostics) {
        for (const StringName &string : source.names)
            strings_.emplace(string.name, &string);
    }

    // The language of the file; empty when something is wrong with it.
    std::string readHeader();
    std::optional<Translation> read(const PoEntry &entry, const std::string &language);

private:
    const StringName *findString(const PoEntry &entry, const std::string &language);
    bool checkText(const PoEntry &entry, const StringName &string, const std::string &language);
    // Where the translation or the header has a part, and which line a keyword begins above them.
    Place inTranslation(const PoEntry &entry, std::string_view part) const {
        return diagnostics_.source().find(part, entry.place, entry.end);
    }
    Place placeOf(const PoEntry &entry, std::string_view keyword) const {
        for (uint32_t line = entry.place.line; line >= entry.begin.line && line > 0; --line)
            if (diagnostics_.source().lineFrom(line, 1).starts_with(keyword))
                return {line, 1, static_cast<uint32_t>(keyword.size())};
        return entry.place;
    }
    Place inHeader(std::string_view part) const {
        const Place end{diagnostics_.source().lineCount() + 1, 1};
        return diagnostics_.source().find(part, {1, 1},
                                          po_.entries.empty() ? end : po_.entries.front().place);
    }

    const ResourceSource &source_;
    const Diagnostics &sourceText_;
    const PoFile &po_;
    Diagnostics &diagnostics_;
    std::map<std::string_view, const StringName *> strings_;
};

std::string Importer::readHeader() {
    const auto wrong = [&](Place place, const auto &...parts) {
        diagnostics_.error(place, parts...);
        return std::string();
    };
    const std::string type = po_.field("Content-Type");
    constexpr std::string_view key = "charset=";
    const std::size_t at = type.find(key);
    std::string charset = at == type.npos ? "" : type.substr(at + key.size());
    std::ranges::transform(charset, charset.begin(), [](char c) {
        return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    });
    if (charset != "UTF-8")
        return wrong(
            inHeader(key),
            charset.empty() ? "the header names no charset" : "the charset is " + charset,
            "; save the file in UTF-8, with \"Content-Type: text/plain; charset=UTF-8\\n\" "
            "in its header");

    const Place place = inHeader("Language:");
    const std::string field = po_.field("Language");
    std::string language = field.substr(0, field.find_first_of("_-@"));
    if (field.empty())
        return wrong(place,
                     "the header names no language: \"Language: ", source_.languages.back().code,
                     "\\n\"");
    if (std::ranges::count(source_.languages, language, &Language::code) == 0)
        return wrong(place, '"', language, "\" is not in [languages] of ", sourceText_.path());
    if (language == source_.languages.front().code)
        return wrong(place, language,
                     " is the language to translate from; the header must name "
                     "the one to translate into");
    return language;
}

// The string that an entry translates, as it is now.
const StringName *Importer::findString(const PoEntry &entry, const std::string &language) {
    const auto wrong = [&](Place place, const auto &...parts) {
        diagnostics_.error(place, parts...);
        return nullptr;
    };
    if (!entry.context)
        return wrong(placeOf(entry, "msgid"),
                     "an entry without msgctxt, which names the string; export again");
    if (entry.isPlural)
        return wrong(placeOf(entry, "msgid_plural"),
                     "a string of a resource has no plural; export again");
    const auto named = strings_.find(*entry.context);
    const StringName *string = named == strings_.end() ? nullptr : named->second;
    const std::string &first = source_.languages.front().code;
    const auto original = string ? textIn(source_, *string, first) : std::nullopt;
    if (!original)
        return wrong(placeOf(entry, "msgctxt"), '"', *entry.context, "\" is no text of ",
                     sourceText_.path(), "; remove the entry, or export again");
    if (const std::string reason = hindrance(source_, *string, language); !reason.empty())
        return wrong(placeOf(entry, "msgctxt"), *entry.context, reason,
                     "; remove the entry, or export again");
    if (*original != entry.original)
        return wrong(placeOf(entry, "msgid"), *entry.context, " is outdated: ", sourceText_.path(),
                     " has ", inQuotes(*original), " in ", first,
                     " now; export again and look at the translation");
    return string;
}

bool Importer::checkText(const PoEntry &entry, const StringName &string,
                         const std::string &language) {
    const CodePage &codePage = source_.codePageOf(language);
    std::set<char32_t> lacking;
    for (std::string_view rest = entry.translation; !rest.empty();) {
        const std::string_view before = rest;
        const char32_t character = takeCharacter(rest);
        const bool isControl =
            (character < U' ' && std::u32string_view(U"\n\r\t").find(character) == before.npos) ||
            character == 0x7F;
        if ((isControl || !codePage.encode(character)) && lacking.insert(character).second)
            diagnostics_.error(
                inTranslation(entry, before.substr(0, before.size() - rest.size())),
                describe(character), isControl ? " is no character of a text" : " is not in ",
                isControl ? "" : codePage.name(), "; put another character in its place");
    }

    const bool isAllowed = string.allowed.contains(rule::placeholders.name) ||
                           sourceText_.allowed().contains(rule::placeholders.name);
    const auto wanted = signatureOf(entry.original);
    const auto found = signatureOf(entry.translation);
    if (wanted != found && !isAllowed)
        diagnostics_.error(inTranslation(entry, "msgstr"), string.name, " has in ", language,
                           " the placeholders ", spelledOut(found), " and in ",
                           source_.languages.front().code, ' ', spelledOut(wanted),
                           "; a translation keeps them");
    return lacking.empty() && (wanted == found || isAllowed);
}

std::optional<Translation> Importer::read(const PoEntry &entry, const std::string &language) {
    const StringName *string = findString(entry, language);
    if (!string || textIn(source_, *string, language) == entry.translation ||
        !checkText(entry, *string, language))
        return std::nullopt;
    return Translation{string, language, entry.translation};
}

} // namespace

const std::string *bytesIn(const ResourceFile &file, std::string_view language, uint16_t id) {
    const auto section = file.sections.find(sectionOf(id));
    if (section == file.sections.end())
        return nullptr;
    for (const LanguageTable &table : section->second)
        if (table.language.code == language)
            if (const auto found = table.strings.find(indexOf(id)); found != table.strings.end())
                return &found->second;
    return nullptr;
}

std::optional<std::string> textIn(const ResourceSource &source, const StringName &string,
                                  std::string_view language) {
    const std::string *bytes =
        string.texts.contains(language) ? bytesIn(source.file, language, string.id) : nullptr;
    if (!bytes || bytes->find('\0') != bytes->npos)
        return std::nullopt;
    return source.codePageOf(language).toUtf8(*bytes);
}

std::string hindrance(const ResourceSource &source, const StringName &string,
                      std::string_view language) {
    if (std::ranges::count(source.languagesOf(string.id), language, &Language::code) == 0)
        return concat(" has no text in ", language, ", which [sections] does not list for it");
    if (!textIn(source, string, language) && bytesIn(source.file, language, string.id))
        return concat(" is given in bytes in ", language);
    return "";
}

std::string importPo(const ResourceSource &source, const Diagnostics &sourceText, const PoFile &po,
                     Diagnostics &diagnostics, std::vector<Translation> &translations,
                     PoCounts &counts) {
    Importer importer(source, sourceText, po, diagnostics);
    std::string language = importer.readHeader();
    if (language.empty())
        return language;
    for (const PoEntry &entry : po.entries) {
        if (entry.isObsolete)
            continue;
        if (entry.translation.empty()) {
            ++counts.untranslated;
        } else if (entry.isFuzzy) {
            ++counts.fuzzy;
        } else if (auto translation = importer.read(entry, language)) {
            const bool isNew = !translation->string->texts.contains(language);
            ++(isNew ? counts.added : counts.changed);
            translations.push_back(*std::move(translation));
        }
    }
    return language;
}

} // namespace uti::tool
