// po_source.cpp: translations put into the text of a source, in their places, so that its comments,
// order and layout stay as they are. Stands on the places that the TOML reader tells.
#include "tools/po.h"

#include "tools/source_text.h"

#include <algorithm>

namespace uti::tool {

namespace {

// Pieces of a text that are to be replaced, by their bytes.
class Editor {
public:
    explicit Editor(const SourceText &source)
        : source_(source),
          lineEnd_(source.text().find("\r\n") == std::string::npos ? "\n" : "\r\n") {}

    std::size_t offsetOf(Place place) const {
        return static_cast<std::size_t>(source_.lineFrom(place.line, place.column).data() -
                                        source_.text().data());
    }
    std::size_t endOfLine(std::size_t offset) const {
        const std::size_t feed = std::min(source_.text().find('\n', offset), source_.text().size());
        return feed - (feed > 0 && source_.text()[feed - 1] == '\r' ? 1 : 0);
    }
    std::string_view lineEnd() const { return lineEnd_; }
    std::string_view text() const { return source_.text(); }

    void replace(std::size_t from, std::size_t to, std::string text) {
        edits_.push_back({from, to, std::move(text)});
    }

    std::string apply() {
        std::ranges::stable_sort(edits_, {}, &Edit::from);
        std::string result;
        std::size_t at = 0;
        for (const Edit &edit : edits_) {
            result.append(text().substr(at, edit.from - at)).append(edit.text);
            at = edit.to;
        }
        return result.append(text().substr(at));
    }

private:
    struct Edit {
        std::size_t from, to;
        std::string text;
    };

    const SourceText &source_;
    const std::string_view lineEnd_;
    std::vector<Edit> edits_;
};

// A quote that does not end a literal text of several lines.
bool isAlone(std::string_view text, std::size_t at) {
    return at + 1 < text.size() && text[at + 1] != text[at];
}

// A text in the quotes that another one has there, if they can hold it.
std::string respelled(std::string_view old, const std::string &text, std::string_view lineEnd) {
    std::string plain = quote(text);
    const bool isLong = old.starts_with("\"\"\"") || old.starts_with("'''");
    const bool isLiteral = old.starts_with('\'');
    if (!isLong && !isLiteral)
        return plain;

    // Literal, a text has no escapes; it must not need any.
    std::string_view needs(plain);
    needs = needs.substr(1, needs.size() - 2);
    std::string body;
    for (std::size_t at = 0; at < needs.size(); ++at) {
        const char next = needs[at] == '\\' ? needs[at + 1] : '\0';
        if (isLong && next == 'n')
            body += lineEnd;
        else if (isLiteral && (next == '\\' || next == '"'))
            body += next;
        else if (isLiteral &&
                 (next != '\0' || (needs[at] == '\'' && !(isLong && isAlone(needs, at)))))
            return plain;
        else
            body.append(needs.substr(at, next == '\0' ? 1 : 2));
        at += next == '\0' ? 0 : 1;
    }
    const std::string quotes(old.substr(0, isLong ? 3 : 1));
    const std::string_view behind = old.substr(quotes.size());
    const bool startsBelow = isLong && (behind.starts_with('\n') || behind.starts_with("\r\n"));
    // A line end right behind the quotes is not part of the text.
    const bool needsLine = isLong && (startsBelow || text.starts_with('\n'));
    return quotes + (needsLine ? std::string(lineEnd) : "") + body + quotes;
}

// Puts texts into the tables of their strings.
class Placer {
public:
    Placer(const ResourceSource &source, const toml::table &strings, Editor &editor)
        : source_(source), strings_(strings), editor_(editor) {}

    void put(const Translation &translation);

private:
    // A text that stands in the source, with its key.
    struct Found {
        const toml::key *key = nullptr;
        const toml::node *node = nullptr;
    };
    static Found findIn(const toml::table *table, std::string_view code) {
        const auto found = table ? table->find(code) : toml::table::const_iterator();
        return table && found != table->end() ? Found{&found->first, &found->second} : Found{};
    }
    void insertBehind(const Found &anchor, bool isInline, const std::string &key,
                      const std::string &text);

    const ResourceSource &source_;
    const toml::table &strings_;
    Editor &editor_;
};

void Placer::put(const Translation &translation) {
    const auto &[string, code, text] = translation;
    const toml::table &table = *strings_.get_as<toml::table>(string->name);
    const auto *inner = table.get_as<toml::table>("text");
    const bool isId = code == "id"; // whose key alone is the string's number
    for (const Found &old : {isId ? Found{} : findIn(&table, code), findIn(inner, code)}) {
        if (!old.node)
            continue;
        const std::size_t from = editor_.offsetOf(begin(*old.node));
        const std::size_t to = editor_.offsetOf(end(*old.node));
        editor_.replace(from, to,
                        respelled(editor_.text().substr(from, to - from), text, editor_.lineEnd()));
        return;
    }

    // Behind the nearest language before it, else any.
    const auto &all = source_.languages;
    const auto own = std::ranges::find(all, code, &Language::code);
    std::vector<std::string> order;
    for (auto each = own; each != all.begin();)
        order.push_back((--each)->code);
    for (auto each = own; each != all.end(); ++each)
        order.push_back(each->code);
    for (const std::string &each : order) {
        const Found direct = each == "id" || (isId && inner) ? Found{} : findIn(&table, each);
        const Found inside = findIn(inner, each);
        if (direct.node)
            return insertBehind(direct, strings_.is_inline() || table.is_inline(),
                                isId ? "text.id" : code, text);
        if (inside.node)
            return insertBehind(inside,
                                strings_.is_inline() || table.is_inline() || inner->is_inline(),
                                code, text);
    }
}

void Placer::insertBehind(const Found &anchor, bool isInline, const std::string &key,
                          const std::string &text) {
    // What stands before the key, such as blanks or "NAME.".
    const std::size_t at = editor_.offsetOf(begin(*anchor.key));
    const std::size_t from =
        std::max(editor_.text().substr(0, at).find_last_of("{,\n") + 1,
                 editor_.offsetOf({begin(*anchor.key).line, 1})); // behind a byte order mark
    const std::string_view prefix = editor_.text().substr(from, at - from);
    const std::size_t value = editor_.offsetOf(begin(*anchor.node));
    const std::size_t behind = editor_.offsetOf(end(*anchor.node));
    const std::string spelled =
        respelled(editor_.text().substr(value, behind - value), text, editor_.lineEnd());
    if (isInline) {
        const std::size_t blanks = std::min(prefix.find_first_not_of(" \t"), prefix.size());
        editor_.replace(behind, behind, concat(", ", prefix.substr(blanks), key, " = ", spelled));
    } else {
        const std::size_t end = editor_.endOfLine(behind);
        editor_.replace(end, end, concat(editor_.lineEnd(), prefix, key, " = ", spelled));
    }
}

// The result must be a source in which just these texts are others.
void verify(const ResourceSource &source, const std::vector<Translation> &translations,
            Diagnostics &diagnostics) {
    const ResourceSource made = readResourceSource(diagnostics);
    if (diagnostics.hasErrors())
        return;
    std::map<std::pair<const StringName *, std::string_view>, std::string_view> meant;
    for (const Translation &each : translations)
        meant[{each.string, each.language}] = each.text;
    for (std::size_t i = 0; i < source.names.size(); ++i)
        for (const Language &language : source.languages) {
            const StringName &string = source.names[i];
            const auto other = meant.find({&string, language.code});
            const std::string *before = bytesIn(source.file, language.code, string.id);
            const std::string *now = bytesIn(made.file, language.code, string.id);
            const bool isHere =
                other != meant.end()
                    ? textIn(made, made.names[i], language.code) == other->second
                    : (before == nullptr) == (now == nullptr) && (!now || *now == *before);
            if (!isHere)
                diagnostics.error(made.names[i].place, string.name, " would not say in ",
                                  language.code, " what was imported; put it in by hand");
        }
}

} // namespace

Diagnostics putInto(const ResourceSource &source, const SourceText &text,
                    std::vector<Translation> translations) {
    Diagnostics original(text.path(), text.text());
    const std::optional<toml::table> document = parseToml(original);
    Editor editor(text);
    Placer placer(source, *document->get_as<toml::table>("strings"), editor);
    std::ranges::stable_sort(translations, {}, [&](const Translation &each) {
        return std::ranges::find(source.languages, each.language, &Language::code) -
               source.languages.begin();
    });
    for (const Translation &translation : translations)
        placer.put(translation);

    Diagnostics made(text.path() + " (translated)", editor.apply());
    verify(source, translations, made);
    return made;
}

} // namespace uti::tool
