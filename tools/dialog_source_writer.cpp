// dialog_source_writer.cpp: dialog descriptions as source. A node is told key by key, in its order;
// what no key can tell stands in hex where it was. Descriptions that differ from language to
// language in values alone become one dialog, others one each.
#include "tools/dialog_source.h"

#include "tools/resource_source.h"
#include "tools/source_text.h"

#include <algorithm>

namespace uti::tool {

namespace {

using dialog::Field;
using dialog::Kind;
using dialog::Node;
using dialog::Spelling;

// A key of a node with its value as the source spells it.
struct Line {
    std::string key;
    std::string value;
};
using Lines = std::vector<Line>;

// A table of the source: the dialog itself, whose heading is empty, or a child of the root.
struct Table {
    std::string heading;
    const Node *kind; // null for a child in hex, and a dialog whose first child is no parameters
    Lines lines;
};
using Tables = std::vector<Table>;

// A group of languages whose descriptions have the same keys, with the tables of each.
struct Variant {
    std::vector<std::string_view> languages;
    std::vector<Tables> tables;
};

bool hasKey(const Lines &lines, std::string_view key) {
    return std::ranges::find(lines, key, &Line::key) != lines.end();
}

std::string inBrackets(const std::vector<std::string> &items) {
    return "[" + join(items, ", ") + "]";
}

// The values of a node's children when they are exactly these numbers in this order.
template <std::size_t count>
std::optional<std::array<uint32_t, count>> numbersIn(const NodeView &node, uint8_t tag,
                                                     const Field (&fields)[count]) {
    const auto children = splitNodes(node.value);
    if (node.tag != tag || !children || children->size() != count)
        return std::nullopt;
    std::array<uint32_t, count> numbers;
    for (std::size_t i = 0; i < count; ++i) {
        const std::optional<uint32_t> number = numberIn(fields[i].row, (*children)[i]);
        if (!number)
            return std::nullopt;
        numbers[i] = *number;
    }
    return numbers;
}

std::optional<std::string> writeArea(const NodeView &node) {
    const auto positions = splitNodes(node.value);
    if (!positions || positions->size() != 2)
        return std::nullopt;
    const auto from = numbersIn((*positions)[0], dialog::tagPosition, dialog::positionFields);
    const auto to = numbersIn((*positions)[1], dialog::tagPosition, dialog::positionFields);
    if (!from || !to || (*to)[0] < (*from)[0] || (*to)[1] < (*from)[1])
        return std::nullopt;
    return concat('[', (*from)[0], ", ", (*from)[1], ", ", (*to)[0] - (*from)[0], ", ",
                  (*to)[1] - (*from)[1], ']');
}

std::optional<std::string> writeColors(const NodeView &node) {
    const auto nodes = splitNodes(node.value);
    if (!nodes || nodes->size() != 4)
        return std::nullopt;
    std::vector<std::string> colors;
    for (const NodeView &color : *nodes) {
        const auto rgb = numbersIn(color, dialog::tagColor, dialog::colorFields);
        if (!rgb)
            return std::nullopt;
        const uint32_t number = (*rgb)[0] << 16 | (*rgb)[1] << 8 | (*rgb)[2];
        colors.push_back("\"#" + concat(Hex{number, 6}).substr(2) + '"');
    }
    const std::string active = inBrackets({colors[0], colors[2]});
    const std::string passive = inBrackets({colors[1], colors[3]});
    return active == passive ? active
                             : concat("{ active = ", active, ", passive = ", passive, " }");
}

// Takes off what a reader gives the node without being told, and names what it must not give.
void leaveOutDefaults(const Node &kind, Lines &lines) {
    std::vector<Default> given;
    std::vector<std::string> omitted;
    for (const Default &each : defaultsOf(kind)) {
        if (!each.with.empty() && !hasKey(lines, each.with))
            continue;
        if (hasKey(lines, each.key))
            given.push_back(each);
        else
            omitted.push_back(quote(each.key));
    }
    if (needsArea(kind) && !hasKey(lines, "area"))
        omitted.push_back(quote("area"));

    const auto isGiven = [](const Line &line, const Default &each) {
        return line.key == each.key && line.value == each.value;
    };
    for (std::size_t count = 0; count < lines.size(); ++count) {
        const Lines head(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(count));
        std::vector<Default> behind;
        std::ranges::copy_if(given, std::back_inserter(behind), [&](const Default &each) {
            return !hasKey(head, each.key) && (each.with.empty() || hasKey(head, each.with));
        });
        if (std::ranges::equal(std::span(lines).subspan(count), behind, isGiven)) {
            lines = head;
            break;
        }
    }
    if (!omitted.empty())
        lines.insert(lines.begin(), {"omit", inBrackets(omitted)});
}

// Writes the nodes of one description, for `writeDialog`.
class DescriptionWriter {
public:
    DescriptionWriter(const CodePage &codePage, char textType)
        : codePage_(codePage), textType_(textType) {}

    // The tables with every key, or nothing when the bytes are no description.
    std::optional<Tables> write(std::string_view bytes);

    int otherTexts() const { return otherTexts_; } // of another type, which stay in hex

private:
    std::optional<Lines> writeNode(const Node &kind, const NodeView &node);
    std::optional<Line> writeChild(const Node &kind, const NodeView &node);
    std::optional<std::string> writeNumber(const Field &field, const NodeView &node);
    std::optional<std::string> writeText(const Field &field, const NodeView &node);
    std::optional<Line> writeElements(std::span<const NodeView> nodes);

    const CodePage &codePage_;
    char textType_;
    int otherTexts_ = 0;
};

std::optional<Tables> DescriptionWriter::write(std::string_view bytes) {
    const auto roots = splitNodes(bytes);
    if (!roots || roots->size() != 1 || (*roots)[0].tag < firstCompoundTag)
        return std::nullopt;
    const auto nodes = splitNodes((*roots)[0].value);
    if (!nodes ||
        std::ranges::find(*nodes, dialog::tagDialogParameters, &NodeView::tag) == nodes->end())
        return std::nullopt;

    Tables tables{{"", nullptr, {}}};
    for (const NodeView &node : *nodes) {
        const Node *kind = findNode(node.tag);
        const std::optional<Lines> lines = kind ? writeNode(*kind, node) : std::nullopt;
        const bool isFirst = &node == nodes->data();
        if (isFirst && kind == &dialog::nodes[0] && lines && hasKey(*lines, "type"))
            tables[0] = {"", kind, *lines};
        else if (lines)
            tables.push_back({kind->name, kind, *lines});
        else
            tables.push_back({std::string(hexNodeKey), nullptr, {{"hex", quoteHex(node.whole)}}});
    }
    if (textType_ != defaultTextType)
        tables[0].lines.insert(tables[0].lines.begin(),
                               {std::string(textTypeKey), concat(+textType_)});
    if ((*roots)[0].tag != defaultDialogTag)
        tables[0].lines.insert(tables[0].lines.begin(),
                               {"root_tag", concat(Hex{(*roots)[0].tag, 2})});
    return tables;
}

std::optional<Lines> DescriptionWriter::writeNode(const Node &kind, const NodeView &node) {
    const auto children = splitNodes(node.value);
    if (!children)
        return std::nullopt;
    Lines lines;
    std::string raw;
    int raws = 0;
    const auto writeRaw = [&] {
        if (raw.empty())
            return;
        const std::string number = ++raws == 1 ? "" : concat('_', raws);
        lines.push_back({concat(rawKey, number), quoteHex(raw)});
        raw.clear();
    };
    for (std::span rest(*children); !rest.empty();) {
        const bool isElement = hasElements(kind) && rest[0].tag == dialog::tagMenuElement;
        std::size_t taken = 1;
        while (isElement && taken < std::min<std::size_t>(rest.size(), DIALOG_MENU_ELEMENTS) &&
               rest[taken].tag == rest[0].tag)
            ++taken;

        const std::optional<Line> line =
            isElement ? writeElements(rest.first(taken)) : writeChild(kind, rest[0]);
        if (line && !hasKey(lines, line->key)) {
            writeRaw();
            lines.push_back(*line);
        } else {
            for (const NodeView &each : rest.first(taken))
                raw += each.whole;
        }
        rest = rest.subspan(taken);
    }
    writeRaw();
    return lines;
}

std::optional<Line> DescriptionWriter::writeChild(const Node &kind, const NodeView &node) {
    const Field *field = findField(kind, node.tag);
    if (!field)
        return std::nullopt;
    const std::optional<std::string> value = field->row.kind == Kind::area     ? writeArea(node)
                                             : field->row.kind == Kind::colors ? writeColors(node)
                                             : isText(field->row.kind) ? writeText(*field, node)
                                                                       : writeNumber(*field, node);
    return value ? std::optional(Line{field->name, *value}) : std::nullopt;
}

std::optional<std::string> DescriptionWriter::writeNumber(const Field &field,
                                                          const NodeView &node) {
    const Choices choices = choicesOf(field);
    const std::optional<uint32_t> number = numberIn(field.row, node);
    if (!number || *number > choices.most)
        return std::nullopt;
    const auto named = std::ranges::find(choices.named, *number, &Choice::value);
    if (named != choices.named.end())
        return choices.areTruth ? std::string(named->name) : quote(named->name);
    const char character = static_cast<char>(*number);
    if (const auto text = readableText({&character, 1}, codePage_);
        field.spelling == Spelling::character && text)
        return quote(*text);
    return concat(*number);
}

std::optional<std::string> DescriptionWriter::writeText(const Field &field, const NodeView &node) {
    const std::optional<std::string_view> bytes = textIn(field.row, node, textType_);
    otherTexts_ += bytes ? 0 : 1;
    const auto text = bytes ? readableText(*bytes, codePage_) : std::nullopt;
    if (!text || field.spelling != Spelling::pieces ||
        text->find(pieceSeparator) == std::string::npos)
        return text ? std::optional(quote(*text)) : std::nullopt;

    std::vector<std::string> pieces;
    std::size_t from = 0;
    for (std::size_t to; (to = text->find(pieceSeparator, from)) != std::string::npos;
         from = to + pieceSeparator.size())
        pieces.push_back(quote(text->substr(from, to - from)));
    pieces.push_back(quote(text->substr(from)));
    return pieces.size() > DIALOG_KEY_SCHEME ? quote(*text) : inBrackets(pieces);
}

std::optional<Line> DescriptionWriter::writeElements(std::span<const NodeView> nodes) {
    std::string list = "[\n";
    for (const NodeView &node : nodes) {
        std::optional<Lines> lines = writeNode(dialog::menuElement, node);
        if (!lines)
            return std::nullopt;
        leaveOutDefaults(dialog::menuElement, *lines);
        std::vector<std::string> assignments;
        for (const auto &[key, value] : *lines)
            assignments.push_back(concat(key, " = ", value));
        list += concat("    { ", join(assignments, ", "), " },\n");
    }
    return Line{std::string(elementsKey), list + "]"};
}

bool haveSameKeys(const Tables &tables, const Tables &others) {
    return std::ranges::equal(tables, others, [](const Table &table, const Table &other) {
        return table.heading == other.heading &&
               std::ranges::equal(table.lines, other.lines, {}, &Line::key, &Line::key);
    });
}

// One value for all languages, or each language's own.
std::string mergeValues(const Variant &variant, std::size_t table, std::size_t line) {
    const auto valueIn = [&](const Tables &tables) { return tables[table].lines[line].value; };
    std::string first = valueIn(variant.tables[0]);
    if (std::ranges::all_of(variant.tables,
                            [&](const Tables &each) { return valueIn(each) == first; }))
        return first;
    std::vector<std::string> values;
    for (std::size_t i = 0; i < variant.languages.size(); ++i)
        values.push_back(concat(variant.languages[i], " = ", valueIn(variant.tables[i])));
    return concat("{ ", join(values, ", "), " }");
}

std::string writeVariant(const Variant &variant, const std::string &name, const Lines &head) {
    std::string source;
    for (std::size_t i = 0; i < variant.tables[0].size(); ++i) {
        auto [heading, kind, lines] = variant.tables[0][i];
        for (std::size_t line = 0; line < lines.size(); ++line)
            lines[line].value = mergeValues(variant, i, line);
        if (kind)
            leaveOutDefaults(*kind, lines);
        if (i == 0)
            lines.insert(lines.begin(), head.begin(), head.end());
        source += i == 0 ? concat("\n[dialogs.", name, "]\n")
                         : concat("\n[[dialogs.", name, '.', heading, "]]\n");
        for (const auto &[key, value] : lines)
            source += concat(key, " = ", value, '\n');
    }
    return source;
}

// True when the source makes the same descriptions.
bool makes(const std::string &dialogs, uint16_t id, const std::vector<DialogText> &texts,
           const CodePages &codePages) {
    std::string source =
        concat("module = \"m\"\ncode_page = ", quote(codePages.common().name()), "\n[languages]\n");
    for (const DialogText &text : texts)
        source += writeLanguage({std::string(text.language)}, codePages) + '\n';
    Diagnostics diagnostics("", source + dialogs);
    const ResourceFile file = readResourceSource(diagnostics).file;
    const auto section = file.sections.find(sectionOf(id));
    if (diagnostics.hasErrors() || section == file.sections.end())
        return false;
    return std::ranges::equal(
        section->second, texts, [&](const LanguageTable &table, const DialogText &text) {
            const auto string = table.strings.find(indexOf(id));
            return table.language.code == text.language && string != table.strings.end() &&
                   string->second == text.bytes;
        });
}

} // namespace

std::optional<std::string> writeDialog(uint16_t id, const std::vector<DialogText> &texts,
                                       Coverage coverage, const CodePages &codePages) {
    std::vector<Variant> variants;
    for (const auto &[language, bytes] : texts) {
        DescriptionWriter usual(codePages.of(language), defaultTextType);
        DescriptionWriter other(codePages.of(language), otherTextType);
        auto tables = usual.write(bytes);
        auto others = usual.otherTexts() > 0 ? other.write(bytes) : std::nullopt;
        if (other.otherTexts() < usual.otherTexts())
            tables = std::move(others);
        if (!tables)
            return std::nullopt;
        const auto same = std::ranges::find_if(variants, [&](const Variant &variant) {
            return haveSameKeys(variant.tables[0], *tables);
        });
        Variant &variant = same != variants.end() ? *same : variants.emplace_back();
        variant.languages.push_back(language);
        variant.tables.push_back(*tables);
    }

    std::string source;
    for (const Variant &variant : variants) {
        const std::string digits = concat(Hex{id, 4});
        std::string name = "DIALOG_" + digits.substr(2);
        if (variants.size() > 1) {
            name += '_';
            for (const char letter : variant.languages[0])
                name += static_cast<char>(letter - 'a' + 'A');
        }
        Lines head{{"id", digits}};
        if (variants.size() > 1 || coverage == Coverage::someLanguages) {
            std::vector<std::string> languages;
            for (const std::string_view language : variant.languages)
                languages.push_back(quote(language));
            head.push_back({"languages", inBrackets(languages)});
        }
        source += writeVariant(variant, name, head);
    }
    return makes(source, id, texts, codePages) ? std::optional(source) : std::nullopt;
}

} // namespace uti::tool
