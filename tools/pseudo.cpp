// pseudo.cpp: letters with accents, words that are stretched.
#include "tools/pseudo.h"

#include <algorithm>

namespace uti::tool {

namespace {

// A letter and what looks like it with an accent, the best first; the Cyrillic ones serve code
// pages without accents.
struct Accents {
    char letter;
    std::u32string_view forms;
};

constexpr Accents accents[] = {
    {'A', U"ÅÁÄÂÀÃĂĄĀΆ"}, {'C', U"ÇČĆĈ"},      {'D', U"ĎĐÐ"},        {'E', U"ÉÊËÈĘĚĒЁΈ"},
    {'G', U"ĜĞĢĠ"},       {'H', U"ĤĦΉ"},       {'I', U"ÎÍÏÌİĪЇΊ"},   {'J', U"Ĵ"},
    {'K', U"ĶЌ"},         {'L', U"ŁĽĹĻ"},      {'N', U"ÑŇŃŅ"},       {'O', U"ÖÓÔÒÕØŐŌΌ"},
    {'R', U"ŘŔŖ"},        {'S', U"ŠŚŞŜ"},      {'T', U"ŤŢŦ"},        {'U', U"ÜÚÛÙŮŰŪ"},
    {'Y', U"ÝŸЎΎ"},       {'Z', U"ŽŹŻ"},       {'a', U"åáäâàãăąāά"}, {'c', U"çčćĉ"},
    {'d', U"ďđð"},        {'e', U"éêëèęěēё"},  {'g', U"ĝğģġ"},       {'h', U"ĥħћ"},
    {'i', U"îíïìīїί"},    {'j', U"ĵ"},         {'k', U"ķќ"},         {'l', U"łľĺļ"},
    {'n', U"ñňńņ"},       {'o', U"öóôòõøőōό"}, {'r', U"řŕŗ"},        {'s', U"šśşŝ"},
    {'t', U"ťţŧ"},        {'u', U"üúûùůűūύ"},  {'y', U"ýÿў"},        {'z', U"žźż"},
};

char32_t accented(char32_t letter, const CodePage &codePage) {
    const auto known = std::ranges::find(
        accents, letter, [](const Accents &each) { return static_cast<char32_t>(each.letter); });
    if (known == std::end(accents))
        return letter;
    const auto form = std::ranges::find_if(
        known->forms, [&](char32_t each) { return codePage.encode(each).has_value(); });
    return form == known->forms.end() ? letter : *form;
}

bool isLetter(char32_t character) {
    return (character | 0x20) - U'a' < 26u ||
           (character >= 0xC0 && character != U'×' && character != U'÷' && character < 0x2000);
}

// What is taken over as it is at the start of `rest`: a placeholder, or a backslash with the letter
// that it stands before, of which applications make a line break. 0 for an ordinary character.
std::size_t wholeAt(std::string_view rest, std::size_t at,
                    const std::vector<Placeholder> &placeholders) {
    const auto here = std::ranges::find(placeholders, at, &Placeholder::at);
    if (here != placeholders.end())
        return here->length;
    return rest.starts_with("{}") || (rest.starts_with('\\') && rest.size() > 1) ? 2 : 0;
}

// The name of a file, which would name another one: no blanks, and a folder or an ending.
bool isFileName(std::string_view text) {
    const std::size_t dot = text.rfind('.');
    const bool hasEnding = dot != text.npos && text.size() - dot > 1 && text.size() - dot <= 5 &&
                           std::ranges::all_of(text.substr(dot + 1), isNamePart);
    return text.find_first_of(" \n") == text.npos && (hasEnding || text.find('/') != text.npos);
}

// The table of the language in a section. A string is that of the first language which has it.
LanguageTable pseudoTable(const ResourceSource &source, uint8_t section,
                          const std::vector<LanguageTable> &tables, const Language &language) {
    std::vector<const LanguageTable *> models;
    for (const Language &each : source.languages)
        for (const LanguageTable &table : tables)
            if (table.language.code == each.code)
                models.push_back(&table);

    LanguageTable pseudo{models.front()->language, {}};
    pseudo.language.code = language.code;
    const CodePage &codePage = source.codePageOf(source.languages.front().code);
    for (const LanguageTable *model : models)
        pseudo.strings.insert(model->strings.begin(), model->strings.end());
    for (const StringName &string : source.names) {
        const auto model = std::ranges::find_if(models, [&](const LanguageTable *table) {
            return table->strings.contains(indexOf(string.id));
        });
        if (sectionOf(string.id) != section || model == models.end() ||
            !string.texts.contains((*model)->language.code))
            continue;
        std::string &bytes = pseudo.strings[indexOf(string.id)];
        std::string text = source.codePageOf((*model)->language.code).toUtf8(bytes);
        if (!isFileName(text))
            text = pseudoText(text, codePage);
        bytes.clear();
        for (std::string_view rest = text; !rest.empty();)
            bytes += codePage.encode(takeCharacter(rest)).value_or('?');
    }
    return pseudo;
}

} // namespace

std::string pseudoText(std::string_view text, const CodePage &codePage) {
    constexpr std::size_t percent = 40;
    const std::size_t first = text.find_first_not_of("\r\n");
    if (first == text.npos)
        return std::string(text);
    const std::size_t last = text.find_last_not_of("\r\n") + 1;
    // Those of both kinds, whichever the application fills.
    std::vector<Placeholder> placeholders = placeholdersOf(text);
    std::string unbraced(text);
    std::ranges::replace(unbraced, '{', ' ');
    std::ranges::copy(placeholdersOf(unbraced), std::back_inserter(placeholders));

    std::string pseudo = std::string(text.substr(0, first)) + '[';
    std::size_t owed = percent - 1; // hundredths of a character; whatever was begun is given
    for (std::string_view rest = text.substr(0, last).substr(first); !rest.empty();) {
        if (const std::size_t count = wholeAt(rest, last - rest.size(), placeholders)) {
            pseudo += rest.substr(0, count);
            rest.remove_prefix(count);
            continue;
        }
        const char32_t character = takeCharacter(rest);
        const char32_t form = accented(character, codePage);
        appendCharacter(pseudo, form);
        owed += character < U' ' ? 0 : percent;
        if (isLetter(character) && owed >= 100) {
            appendCharacter(pseudo, form);
            owed -= 100;
        }
    }
    pseudo.append(owed / 100, '~'); // for what has no letters
    return pseudo + ']' + std::string(text.substr(last));
}

void addPseudoLanguage(ResourceSource &source, const std::string &code, Diagnostics &diagnostics) {
    if (source.languages.empty())
        return;
    if (std::ranges::count(source.languages, code, &Language::code) > 0) {
        diagnostics.error({}, "the source has the language ", code,
                          " itself; name another one with --pseudo");
        return;
    }

    const std::string first = source.languages.front().code;
    source.codePages->set(code, CodePage(source.codePageOf(first)));
    Language language = source.languages.front();
    language.code = code;
    for (auto &[section, tables] : source.file.sections) {
        tables.push_back(pseudoTable(source, section, tables, language));
        if (const auto index = firstBeyondLimit(tables.back().strings, indexSize(tables))) {
            const auto place =
                std::ranges::find(source.names, stringId(section, *index), &StringName::id)->place;
            diagnostics.error(place, "the table of section ", +section, " in ", code,
                              " ends here: it holds 65536 bytes with its index");
        }
    }
    source.languages.push_back(language);
    for (SourceDialog &dialog : source.dialogs)
        if (std::ranges::count(dialog.languages, first) > 0)
            dialog.languages.push_back(code);
}

} // namespace uti::tool
