// dialog_texts.cpp: the texts of dialogs read from a source, and put together.
#include "tools/dialog_texts.h"

#include "tools/source_text.h"

#include <algorithm>

namespace uti::tool {

namespace {

constexpr std::size_t mostButtons = 2;
constexpr std::size_t mostArgs = 32;
constexpr std::size_t widestPlaceholder = 256;

// Reads the table of one dialog.
class TextsReader {
public:
    TextsReader(const StringIds &strings, const CodePages *codePages,
                const std::vector<std::string> &languages, Diagnostics &diagnostics)
        : strings_(strings), codePages_(codePages), languages_(languages),
          diagnostics_(diagnostics) {}

    DialogTexts read(const toml::table &table, const std::vector<std::string> &labels);

private:
    TextChoice readChoice(const toml::node *node, std::string_view key);
    std::vector<TextChoice> readChoices(const toml::node *node, std::string_view key);
    std::optional<NamedText> readText(const toml::node &node, std::string_view key);
    std::optional<NamedText> readName(const toml::node &node, std::string_view key);
    std::vector<NamedText> readArgs(const toml::array &array);
    NamedText literal(const TomlText &text);
    void readLabels(const toml::table &table, const std::vector<std::string> &names,
                    DialogTexts &texts);

    const StringIds &strings_;
    const CodePages *codePages_;
    const std::vector<std::string> &languages_;
    Diagnostics &diagnostics_;
};

NamedText TextsReader::literal(const TomlText &text) {
    for (const std::string &language : languages_) // for what it has to say
        encodeText(text, codePages_ ? &codePages_->of(language) : nullptr, diagnostics_);
    return {std::nullopt, text.get(), {}, begin(text)};
}

std::optional<NamedText> TextsReader::readName(const toml::node &node, std::string_view key) {
    const auto *name = expect<TomlText>(node, key, diagnostics_);
    if (!name)
        return std::nullopt;
    if (const auto found = strings_.find(name->get()); found != strings_.end())
        return NamedText{found->second, "", {}, begin(node)};
    std::vector<std::string_view> names;
    for (const auto &[known, id] : strings_)
        if (!diagnostics_.isCrowded())
            names.push_back(known);
    const std::string near = hint(name->get(), names);
    diagnostics_.error(begin(node), '"', name->get(), "\" is not in [strings]",
                       near.empty() ? "; a text of its own is { literal = \"...\" }" : near);
    return std::nullopt;
}

// What stands for placeholders: texts and numbers, or strings by name.
std::vector<NamedText> TextsReader::readArgs(const toml::array &array) {
    std::vector<NamedText> args;
    if (array.size() > mostArgs)
        diagnostics_.error(begin(array), "a text has at most ", mostArgs, " arguments");
    for (const toml::node &node : array) {
        if (const TomlInteger *number = node.as_integer()) {
            args.push_back({std::nullopt, std::to_string(number->get()), {}, begin(node)});
        } else if (const toml::table *table = node.as_table()) {
            TableReader reader(*table, diagnostics_);
            const toml::node *name = reader.find("string");
            reader.reportUnknownKeys();
            if (!name)
                diagnostics_.error(begin(node), "an argument needs string = \"NAME\"");
            args.push_back((name ? readName(*name, "string") : std::nullopt).value_or(NamedText{}));
        } else if (const auto *text = expect<TomlText>(node, "an argument", diagnostics_)) {
            args.push_back(literal(*text));
        }
    }
    return args;
}

// "NAME", { string = "NAME", args = [...] } or { literal = "..." }.
std::optional<NamedText> TextsReader::readText(const toml::node &node, std::string_view key) {
    const toml::table *table = node.as_table();
    if (!table)
        return readName(node, key);

    TableReader reader(*table, diagnostics_);
    const toml::node *name = reader.find("string");
    const auto *own = reader.find<TomlText>("literal");
    const auto *args = reader.find<toml::array>("args");
    reader.reportUnknownKeys();
    if (table->contains("string") == table->contains("literal")) {
        diagnostics_.error(begin(node), key, " needs string = \"NAME\" or literal = \"...\"");
        return std::nullopt;
    }
    std::optional<NamedText> text;
    if (name)
        text = readName(*name, "string");
    else if (own)
        text = literal(*own);
    if (text && args)
        text->args = readArgs(*args);
    return text;
}

// A text, or an array of those that may stand in its place.
TextChoice TextsReader::readChoice(const toml::node *node, std::string_view key) {
    TextChoice choice;
    const toml::array *array = node ? node->as_array() : nullptr;
    for (std::size_t i = 0; i < (array ? array->size() : node ? 1 : 0); ++i) {
        if (auto text = readText(array ? (*array)[i] : *node, key))
            choice.push_back(std::move(*text));
    }
    return choice;
}

std::vector<TextChoice> TextsReader::readChoices(const toml::node *node, std::string_view key) {
    std::vector<TextChoice> choices;
    const auto *array = node ? expect<toml::array>(*node, key, diagnostics_) : nullptr;
    for (std::size_t i = 0; array && i < array->size(); ++i)
        choices.push_back(readChoice(&(*array)[i], key));
    return choices;
}

void TextsReader::readLabels(const toml::table &table, const std::vector<std::string> &names,
                             DialogTexts &texts) {
    const std::vector<std::string_view> known(names.begin(), names.end());
    for (const auto &[key, node] : entriesInOrder(table)) {
        const auto name = std::ranges::find(names, key->str());
        if (name == names.end() && codePages_)
            diagnostics_.error(begin(*key), "the dialog has no label \"", key->str(), '"',
                               hint(key->str(), known));
        TextChoice choice = readChoice(node, key->str());
        if (name != names.end())
            texts.labels.emplace_back(*name, std::move(choice));
    }
}

DialogTexts TextsReader::read(const toml::table &table, const std::vector<std::string> &labels) {
    DialogTexts texts;
    texts.place = begin(table);
    TableReader reader(table, diagnostics_);
    texts.caption = readChoice(reader.find("caption"), "caption");
    texts.text = readChoice(reader.find("text"), "text");
    const toml::node *buttons = reader.find("buttons");
    texts.buttons = readChoices(buttons, "buttons");
    if (texts.buttons.size() > mostButtons)
        diagnostics_.error(begin(*buttons), "an application gives texts to ", mostButtons,
                           " buttons at most");
    texts.items = readChoices(reader.find("items"), "items");
    if (const auto *image = reader.find<TomlText>("image"))
        texts.image = image->get();
    if (const auto *suffixes = reader.find<toml::array>("suffixes"))
        for (const toml::node &node : *suffixes)
            if (const auto *suffix = expect<TomlText>(node, "a suffix", diagnostics_))
                texts.suffixes.push_back(suffix->get());
    if (const auto *all = reader.find<toml::table>("labels"))
        readLabels(*all, labels, texts);
    reader.reportUnknownKeys();
    return texts;
}

// {0} to {99}
std::optional<Placeholder> bracedAt(std::string_view text, std::size_t at) {
    const std::size_t close = text.find('}', at);
    if (text[at] != '{' || close == text.npos || close == at + 1 || close > at + 3)
        return std::nullopt;
    std::size_t number = 0;
    for (const char digit : text.substr(at + 1, close - at - 1)) {
        if (digit < '0' || digit > '9')
            return std::nullopt;
        number = number * 10 + static_cast<std::size_t>(digit - '0');
    }
    return Placeholder{at, close - at + 1, '{', number};
}

// %d, %-5s, %02d, %lu, %%; a blank behind the sign is none, as in "50 % of".
std::optional<Placeholder> conversionAt(std::string_view text, std::size_t at) {
    if (text[at] != '%')
        return std::nullopt;
    Placeholder found{at, 0, 0, 0};
    const auto skip = [&](std::string_view known, auto take) {
        for (; ++at < text.size() && known.find(text[at]) != known.npos;)
            take(text[at]);
        --at;
    };
    skip("-+#0", [&](char flag) {
        found.isLeft = found.isLeft || flag == '-';
        found.isZeroFilled = found.isZeroFilled || flag == '0';
    });
    skip("0123456789", [&](char digit) {
        found.width =
            std::min(found.width * 10 + static_cast<std::size_t>(digit - '0'), widestPlaceholder);
    });
    skip(".0123456789", [](char) {});
    skip("hlLjzt", [](char) {});
    if (++at >= text.size() || std::string_view("diouxXcsfFeEgGp%").find(text[at]) == text.npos)
        return std::nullopt;
    found.kind = text[at];
    found.length = at + 1 - found.at;
    return found;
}

std::string filled(std::string text, const Placeholder &place) {
    const std::size_t lacking = place.width - std::min(place.width, text.size());
    if (place.isLeft)
        return text + std::string(lacking, ' ');
    const bool isNumber = place.kind != 's' && place.kind != 'c';
    return text.insert(0, lacking, place.isZeroFilled && isNumber ? '0' : ' ');
}

// A text with what stands for its placeholders. Without an argument a conversion is as wide as it
// says, and stays what it is when it says nothing.
std::string putIn(std::string_view text, const std::vector<std::string> &args) {
    std::string result;
    std::size_t from = 0;
    for (const Placeholder &place : placeholdersOf(text)) {
        result += text.substr(from, place.at - from);
        from = place.at + place.length;
        if (place.kind == '%')
            result += '%';
        else if (place.number < args.size())
            result += filled(args[place.number], place);
        else if (place.width > 0)
            result += std::string(place.width, place.kind == 's' ? 'x' : '0');
        else
            result += text.substr(place.at, place.length);
    }
    return result + std::string(text.substr(from));
}

} // namespace

DialogTexts readDialogTexts(const toml::table &table, const StringIds &strings,
                            const std::vector<std::string> &labels, const CodePages *codePages,
                            const std::vector<std::string> &languages, Diagnostics &diagnostics) {
    return TextsReader(strings, codePages, languages, diagnostics).read(table, labels);
}

std::vector<Placeholder> placeholdersOf(std::string_view text) {
    std::vector<Placeholder> braced;
    std::vector<Placeholder> conversions;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (const auto found = bracedAt(text, at))
            braced.push_back(*found);
        if (auto found = conversionAt(text, at)) {
            const auto isReal = [](const Placeholder &each) { return each.kind != '%'; };
            found->number = static_cast<std::size_t>(std::ranges::count_if(conversions, isReal));
            conversions.push_back(*found);
            at += found->length - 1;
        }
    }
    const bool areSigns =
        std::ranges::all_of(conversions, [](const Placeholder &each) { return each.kind == '%'; });
    if (!braced.empty())
        return braced;
    return areSigns ? std::vector<Placeholder>() : conversions;
}

std::vector<std::string> signatureOf(std::string_view text) {
    std::vector<std::string> signature;
    for (const Placeholder &each : placeholdersOf(text)) {
        std::string spelled(text.substr(each.at, each.length));
        if (each.kind == '%')
            continue;
        if (each.kind != '{') // the width may differ, the length of the argument must not
            std::erase_if(spelled, [](char c) {
                return std::string_view("0123456789.+-#").find(c) != std::string_view::npos;
            });
        std::ranges::replace(spelled, 'i', 'd');
        signature.push_back(std::move(spelled));
    }
    if (!signature.empty() && signature.front().front() == '{') {
        std::ranges::sort(signature);
        const auto last = std::unique(signature.begin(), signature.end());
        signature.erase(last, signature.end());
    }
    return signature;
}

std::string spelledOut(const std::vector<std::string> &signature) {
    std::string text;
    for (const std::string &each : signature)
        text += (text.empty() ? "" : " ") + each;
    return text.empty() ? "none" : text;
}

std::size_t variantsOf(const DialogTexts &texts) {
    std::size_t most = std::max({texts.caption.size(), texts.text.size(), std::size_t{1}});
    for (const auto *choices : {&texts.buttons, &texts.items})
        for (const TextChoice &choice : *choices)
            most = std::max(most, choice.size());
    for (const auto &[name, choice] : texts.labels)
        most = std::max(most, choice.size());
    return most;
}

std::string_view stringIn(const ResourceFile &file, std::string_view language, uint16_t id) {
    constexpr uint8_t firstWithFallback = 3;
    const auto section = file.sections.find(sectionOf(id));
    if (section == file.sections.end())
        return {};
    const std::vector<LanguageTable> &tables = section->second;
    auto table = std::ranges::find_if(
        tables, [&](const LanguageTable &each) { return each.language.code == language; });
    const bool hasNone = table == tables.end() || table->strings.empty();
    if (hasNone && section->first >= firstWithFallback)
        table = tables.begin();
    if (table == tables.end())
        return {};
    const auto string = table->strings.find(indexOf(id));
    return string == table->strings.end() ? std::string_view() : string->second;
}

std::string resolveText(const NamedText &text, const ResourceFile &file, const CodePage &codePage,
                        std::string_view language) {
    std::string bytes = codePage.fromUtf8(text.literal);
    if (text.string)
        bytes = stringIn(file, language, *text.string);

    std::vector<std::string> args;
    for (const NamedText &arg : text.args)
        args.push_back(resolveText(arg, file, codePage, language));
    // What stands for a placeholder is a text as it is, even with a percent sign.
    return text.string || !args.empty() ? putIn(bytes, args) : bytes;
}

ResolvedTexts resolveTexts(const DialogTexts &texts, const ResourceFile &file,
                           const CodePage &codePage, std::string_view language,
                           std::size_t variant) {
    const auto chosen = [&](const TextChoice &choice) -> std::optional<std::string> {
        if (choice.empty())
            return std::nullopt;
        const NamedText &text = choice[std::min(variant, choice.size() - 1)];
        return resolveText(text, file, codePage, language);
    };
    ResolvedTexts resolved;
    resolved.caption = chosen(texts.caption);
    resolved.text = chosen(texts.text);
    for (const TextChoice &choice : texts.buttons)
        resolved.buttons.push_back(chosen(choice).value_or(""));
    for (const auto &[name, choice] : texts.labels)
        resolved.labels.emplace_back(codePage.fromUtf8(name), chosen(choice).value_or(""));
    for (const TextChoice &choice : texts.items)
        resolved.items.push_back(chosen(choice).value_or(""));
    resolved.image = texts.image;
    resolved.suffixes = texts.suffixes;
    return resolved;
}

} // namespace uti::tool
