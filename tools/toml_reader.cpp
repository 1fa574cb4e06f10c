// toml_reader.cpp: the typed walk over TOML tables.
#include "tools/toml_reader.h"

#include "common/utf8.h"

#include <algorithm>
#include <numeric>

namespace uti::tool {

namespace {

Place placeOf(const toml::source_region &region) {
    const bool isOneLine = region.begin.line == region.end.line;
    const bool hasLength = isOneLine && region.end.column > region.begin.column;
    return {region.begin.line, region.begin.column,
            hasLength ? region.end.column - region.begin.column : 1};
}

constexpr std::size_t mostKeyParts = 8;

std::string_view typeName(toml::node_type type) {
    switch (type) {
    case toml::node_type::table:
        return "a table";
    case toml::node_type::array:
        return "an array";
    case toml::node_type::string:
        return "a text";
    case toml::node_type::integer:
        return "a whole number";
    case toml::node_type::floating_point:
        return "a fraction";
    case toml::node_type::boolean:
        return "a truth value";
    default:
        return "a date or time";
    }
}

// The quotes or the number sign that begin a text or a comment here, or nothing. Quotes right
// behind a word or a number begin none.
std::string_view openingOf(std::string_view rest, char before) {
    constexpr std::string_view placesOfTexts = " \t\r\n=[,{.";
    for (const std::string_view opening : {"\"\"\"", "'''", "\"", "'", "#"}) {
        const bool isPlaced = opening == "#" || placesOfTexts.find(before) != placesOfTexts.npos;
        if (isPlaced && rest.starts_with(opening))
            return opening;
    }
    return {};
}

// Reports a source in another encoding than UTF-8, by the name of the likely one.
bool isOtherEncoding(Diagnostics &diagnostics) {
    const std::string_view text = diagnostics.text();
    const std::string_view head = text.substr(0, 4);
    if (head.starts_with("\xFF\xFE") || head.starts_with("\xFE\xFF") ||
        head.find('\0') != head.npos) {
        diagnostics.error({1, 1}, "the source is in UTF-16; save it as UTF-8");
        return true;
    }
    constexpr std::string_view replacement = "\xEF\xBF\xBD";
    std::optional<Place> first;
    std::size_t wrong = 0;
    std::size_t letters = 0; // that the wrong bytes are in windows-1251
    Place at{1, 1};
    for (std::string_view rest = text; !rest.empty();) {
        const std::string_view before = rest;
        const bool isWrong =
            takeCharacter(rest) == replacementCharacter && !before.starts_with(replacement);
        const auto byte = static_cast<unsigned char>(before[0]);
        wrong += isWrong ? 1 : 0;
        letters += isWrong && (byte >= 0xC0 || byte == 0xA8 || byte == 0xB8) ? 1 : 0;
        if (isWrong && !first)
            first = at;
        at = byte == '\n' ? Place{at.line + 1, 1} : Place{at.line, at.column + 1};
    }
    if (!first)
        return false;
    diagnostics.error(*first, "the source is not in UTF-8",
                      letters * 10 >= wrong * 9 ? ", but in windows-1251, it seems" : "",
                      "; save it as UTF-8");
    return true;
}

std::string_view trimmed(std::string_view line) {
    constexpr std::string_view blanks = " \t";
    const std::size_t from = line.find_first_not_of(blanks);
    return from == line.npos ? std::string_view()
                             : line.substr(from, line.find_last_not_of(blanks) + 1 - from);
}

// What a line gives: the header of a table, or the key before the equals sign.
std::string_view givenBy(std::string_view line) {
    line = trimmed(line);
    return line.starts_with('[') ? trimmed(line.substr(0, line.find('#')))
                                 : trimmed(line.substr(0, line.find('=')));
}

// Where the table or key that a line gives was given before, in the same table; nothing when it is
// spelled in another way there.
std::optional<Place> givenBefore(const SourceText &source, uint32_t line) {
    const std::string_view given = givenBy(source.lineFrom(line, 1));
    const bool isTable = given.starts_with('[');
    while (!given.empty() && --line > 0) {
        const std::string_view text = source.lineFrom(line, 1);
        if (givenBy(text) == given)
            return Place{line, static_cast<uint32_t>(text.find(given[0]) + 1),
                         static_cast<uint32_t>(countCharacters(given))};
        if (!isTable && trimmed(text).starts_with('['))
            break;
    }
    return std::nullopt;
}

// Reports the first character outside of texts and comments that is not ASCII, or a key of too many
// parts. No such character is allowed there, a Cyrillic letter among Latin ones is a likely slip,
// and toml++ has no defined behaviour for some of them; of the parts it makes a table in a table
// each, which take the stack when they are freed.
bool hasStrayCharacter(Diagnostics &diagnostics) {
    constexpr std::string_view endsOfKeys = "\n=[],{}";
    std::size_t parts = 1;
    std::string_view rest = diagnostics.text();
    if (rest.starts_with(byteOrderMark))
        rest.remove_prefix(byteOrderMark.size());

    std::string_view closing; // of the text or comment around; empty outside
    char before = '\n';
    for (Place at{1, 1}; !rest.empty();) {
        std::size_t count = 1;
        if (closing.empty()) {
            const std::string_view opening = openingOf(rest, before);
            closing = opening == "#" ? "\n" : opening;
            count = std::max<std::size_t>(opening.size(), 1);
        } else if (rest.starts_with(closing) || (closing.size() == 1 && rest[0] == '\n')) {
            // A text in triple quotes may end in two quotes of its own.
            count = closing.size();
            while (count >= 3 && count < 5 && count < rest.size() && rest[count] == closing[0])
                ++count;
            closing = {};
        } else if (closing[0] == '"' && rest[0] == '\\' && !rest.starts_with("\\\n")) {
            count = 2;
        }

        for (; count > 0 && !rest.empty(); --count) {
            before = rest[0];
            const char32_t character = takeCharacter(rest);
            if (closing.empty() && character >= 0x80) {
                diagnostics.error(at, describe(character), " stands outside of a text");
                return true;
            }
            if (closing.empty() && character == '.' && ++parts > mostKeyParts) {
                diagnostics.error(at, "a key has at most ", mostKeyParts, " parts");
                return true;
            }
            if (closing.empty() && endsOfKeys.find(before) != endsOfKeys.npos)
                parts = 1;
            at = character == '\n' ? Place{at.line + 1, 1} : Place{at.line, at.column + 1};
        }
    }
    return false;
}

// Longer words are no slips of the hand.
constexpr std::size_t longestHinted = 64;

// How many characters must be inserted, removed, replaced or swapped with the next one to turn one
// word into the other.
std::size_t distance(std::string_view from, std::string_view to) {
    std::vector<std::size_t> last, row(to.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < from.size(); ++i) {
        const std::vector<std::size_t> before = std::exchange(last, row);
        row[0] = i + 1;
        for (std::size_t j = 0; j < to.size(); ++j) {
            row[j + 1] =
                std::min({last[j] + (from[i] == to[j] ? 0 : 1), last[j + 1] + 1, row[j] + 1});
            if (i > 0 && j > 0 && from[i] == to[j - 1] && from[i - 1] == to[j])
                row[j + 1] = std::min(row[j + 1], before[j - 1] + 1);
        }
    }
    return row.back();
}

} // namespace

Place begin(const toml::node &node) {
    return placeOf(node.source());
}

Place begin(const toml::key &key) {
    return placeOf(key.source());
}

Place end(const toml::node &node) {
    return {node.source().end.line, node.source().end.column};
}

std::optional<toml::table> parseToml(Diagnostics &diagnostics) {
    if (isOtherEncoding(diagnostics) || hasStrayCharacter(diagnostics))
        return std::nullopt;
    toml::parse_result result = toml::parse(std::string_view(diagnostics.text()));
    if (!result) {
        const toml::parse_error &error = result.error();
        diagnostics.error(placeOf(error.source()), error.description());
        if (error.description().find("redefine") != std::string_view::npos)
            if (const auto before = givenBefore(diagnostics.source(), error.source().begin.line))
                diagnostics.note(*before, "it is here already");
        return std::nullopt;
    }
    return std::move(result).table();
}

std::vector<TomlEntry> entriesInOrder(const toml::table &table) {
    std::vector<TomlEntry> entries;
    for (auto &&[key, node] : table)
        entries.push_back({&key, &node});
    std::ranges::sort(entries, {}, [](const TomlEntry &entry) { return begin(*entry.key); });
    return entries;
}

void reportType(const toml::node &node, std::string_view name, toml::node_type wanted,
                Diagnostics &diagnostics) {
    diagnostics.error(begin(node), name, " must be ", typeName(wanted), ", not ",
                      typeName(node.type()));
}

std::string hint(std::string_view wrong, std::span<const std::string_view> known) {
    std::string_view nearest;
    std::size_t least = std::max<std::size_t>(1, (wrong.size() + 1) / 3) + 1;
    for (const std::string_view word : known) {
        if (std::max(wrong.size(), word.size()) > longestHinted)
            continue;
        const std::size_t steps = distance(wrong, word);
        if (steps < least) {
            least = steps;
            nearest = word;
        }
    }
    return nearest.empty() ? "" : concat("; did you mean \"", nearest, "\"?");
}

void reportUnknownKey(const toml::key &key, std::span<const std::string_view> known,
                      Diagnostics &diagnostics) {
    diagnostics.error(begin(key), "unknown key \"", key.str(), '"', hint(key.str(), known));
}

std::optional<uint16_t> expectNumber(const toml::node &node, std::string_view name, uint16_t most,
                                     Diagnostics &diagnostics) {
    const auto *number = expect<TomlInteger>(node, name, diagnostics);
    if (!number)
        return std::nullopt;
    if (number->get() >= 0 && number->get() <= most)
        return static_cast<uint16_t>(number->get());
    diagnostics.error(begin(node), name, " must be 0 to ", most);
    return std::nullopt;
}

const toml::node *TableReader::find(std::string_view key) {
    known_.push_back(key);
    return table_.get(key);
}

std::optional<uint16_t> TableReader::findNumber(std::string_view key, uint16_t most) {
    const toml::node *node = find(key);
    return node ? expectNumber(*node, key, most, diagnostics_) : std::nullopt;
}

void TableReader::reportUnknownKeys() const {
    for (auto &&[key, node] : table_) {
        if (std::ranges::find(known_, key.str()) == known_.end())
            reportUnknownKey(key, known_, diagnostics_);
    }
}

} // namespace uti::tool
