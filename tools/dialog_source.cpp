// dialog_source.cpp: dialogs read from a resource source. The keys of a node become its children in
// their order; behind them stand those of its style, then the defaults.
#include "tools/dialog_source.h"

#include "common/utf8.h"
#include "tools/dialog_texts.h"
#include "tools/rules.h"
#include "tools/source_text.h"

#include <algorithm>

namespace uti::tool {

namespace {

using dialog::Field;
using dialog::Kind;
using dialog::Node;
using dialog::Spelling;

constexpr std::size_t displayWidth = 240;
constexpr std::size_t displayHeight = 320;

// One raw key a place: raw, raw_2 and so on.
bool isRawKey(std::string_view key) {
    return key.starts_with(rawKey) && (key.size() == rawKey.size() || key[rawKey.size()] == '_');
}

// A control has a record of its own for each; of the other nodes the last one counts.
bool isControl(const Node &kind) {
    return kind.tag != dialog::tagDialogParameters && kind.tag != dialog::tagCaption;
}

bool hasKey(const std::vector<TomlEntry> &entries, std::string_view key) {
    return std::ranges::any_of(entries,
                               [&](const TomlEntry &entry) { return entry.key->str() == key; });
}

bool contains(const std::vector<std::string> &names, std::string_view name) {
    return std::ranges::find(names, name) != names.end();
}

// The whole numbers of an array, or nothing when it is none of `count` numbers up to `most`.
std::optional<std::vector<uint32_t>> numbersOf(const toml::node &value, std::size_t count,
                                               int64_t most) {
    const toml::array *array = value.as_array();
    if (!array || array->size() != count)
        return std::nullopt;
    std::vector<uint32_t> numbers;
    for (const toml::node &element : *array) {
        const TomlInteger *number = element.as_integer();
        if (!number || number->get() < 0 || number->get() > most)
            return std::nullopt;
        numbers.push_back(static_cast<uint32_t>(number->get()));
    }
    return numbers;
}

// What a number may be, such as: "opaque", "transparent" or 0 to 255.
std::string describeChoices(const Field &field) {
    const Choices choices = choicesOf(field);
    std::vector<std::string> names;
    for (const auto &[name, value] : choices.named)
        names.push_back(choices.areTruth ? std::string(name) : quote(name));
    if (field.spelling == Spelling::character)
        names.emplace_back("one character");
    const std::string list = join(names, ", ");
    return concat(list, list.empty() ? "" : " or ", "0 to ", choices.most);
}

bool isDuration(const Field &field) {
    return std::string_view(field.name) == "timeout";
}

std::vector<std::string_view> namesOf(const Choices &choices) {
    std::vector<std::string_view> names;
    for (const Choice &each : choices.named)
        if (!choices.areTruth)
            names.push_back(each.name);
    return names;
}

// The name by which a value may stand for a number; empty for none.
std::string_view spelledName(const toml::node &value, const Choices &choices) {
    if (const toml::value<bool> *truth = value.as_boolean(); truth && choices.areTruth)
        return truth->get() ? "true" : "false";
    const TomlText *text = value.as_string();
    return text && !choices.areTruth ? std::string_view(text->get()) : "";
}

bool isOneCharacter(std::string_view text) {
    if (text.empty())
        return false;
    takeCharacter(text);
    return text.empty();
}

std::string colorBytes(const Color &color) {
    std::string children;
    for (std::size_t i = 0; i < color.size(); ++i)
        children += numberBytes(dialog::colorFields[i].row, color[i]);
    return nodeBytes(dialog::tagColor, children);
}

std::string positionBytes(uint32_t x, uint32_t y) {
    const auto &[xField, yField] = dialog::positionFields;
    return nodeBytes(dialog::tagPosition, numberBytes(xField.row, x) + numberBytes(yField.row, y));
}

std::vector<std::string_view> keysOf(const Node &kind) {
    std::vector<std::string_view> keys{"style", "omit", rawKey};
    for (const Field &field : kind.fields)
        keys.emplace_back(field.name);
    if (hasElements(kind))
        keys.push_back(elementsKey);
    if (kind.tag == dialog::tagDialogParameters) {
        keys.insert(keys.end(),
                    {"id", "languages", "root_tag", textTypeKey, hexNodeKey, textsKey, allowKey});
        for (const Node &node : dialog::nodes)
            keys.emplace_back(node.name);
    }
    return keys;
}

std::vector<std::string_view> keysOfControls() {
    std::vector<std::string_view> keys;
    for (const Node &kind : std::span(dialog::nodes).subspan(1)) {
        for (const Field &field : kind.fields)
            keys.emplace_back(field.name);
    }
    return keys;
}

// The defaults of a node as a table; each is parsed once.
const toml::table &defaultTable(const Node &kind) {
    static std::map<dialog::Tag, toml::table> tables;
    const auto [place, isNew] = tables.try_emplace(kind.tag);
    if (isNew) {
        std::string source;
        for (const Default &each : defaultsOf(kind))
            source += concat(each.key, " = ", each.value, '\n');
        place->second = toml::parse(source).table();
    }
    return place->second;
}

// Puts the defaults behind what a node has from its source and style.
void appendDefaults(const Node &kind, const std::vector<std::string> &omitted,
                    std::vector<TomlEntry> &entries) {
    for (const auto &[key, value, with] : defaultsOf(kind)) {
        const auto entry = defaultTable(kind).find(key);
        if ((with.empty() || hasKey(entries, with)) && !hasKey(entries, key) &&
            !contains(omitted, key))
            entries.push_back({&entry->first, &entry->second});
    }
}

// The keys of a table that are fields of the node, with the places of their values.
std::vector<std::pair<std::string_view, Place>> placesOf(const Node &kind,
                                                         const std::vector<TomlEntry> &entries) {
    std::vector<std::pair<std::string_view, Place>> places;
    for (const auto &[key, node] : entries)
        if (const Field *field = findField(kind, key->str()))
            places.emplace_back(field->name, begin(*node));
    return places;
}

} // namespace

Place SourceControl::at(std::string_view key) const {
    const auto found = std::ranges::find(keys, key, &std::pair<std::string_view, Place>::first);
    return found == keys.end() ? place : found->second;
}

void DialogReader::readColors(const toml::table &table) {
    for (const auto &[key, value] : entriesInOrder(table)) {
        const Color color = readColor(*value).value_or(Color());
        colors_[std::string(key->str())] = color;
    }
}

// A style is checked where it stands, by the first control that has each key, so that the mistakes
// of one that is not used yet are reported as well.
void DialogReader::readStyles(const toml::table &table) {
    styles_ = &table;
    if (languages_.empty())
        return;
    language_ = languages_[0].code;
    const std::span<const Node> controls = std::span(dialog::nodes).subspan(1);
    for (const auto &[name, value] : entriesInOrder(table)) {
        const auto *style = expect<toml::table>(*value, name->str(), diagnostics_);
        for (const TomlEntry &entry : style ? entriesInOrder(*style) : Entries()) {
            const auto hasField = [&](const Node &kind) {
                return findField(kind, entry.key->str());
            };
            const auto kind = std::ranges::find_if(controls, hasField);
            if (kind != controls.end())
                readKey(*kind, entry);
            else
                reportUnknownKey(*entry.key, keysOfControls(), diagnostics_);
        }
    }
}

std::string DialogReader::read(const toml::table &dialog, std::string_view language) {
    language_ = language;
    controls_.clear();
    textType_ = readTextType(dialog);
    uint16_t rootTag = defaultDialogTag;
    Entries values;
    std::vector<Part> parts;
    for (const TomlEntry &entry : entriesInOrder(dialog)) {
        const std::string_view key = entry.key->str();
        if (key == "root_tag")
            rootTag = expectNumber(*entry.node, key, UINT8_MAX, diagnostics_).value_or(rootTag);
        else if (key == hexNodeKey || findNode(key))
            collectParts(entry, parts);
        else if (key != "id" && key != "languages" && key != textTypeKey && key != textsKey &&
                 key != allowKey)
            values.push_back(entry);
    }
    if (rootTag < firstCompoundTag)
        diagnostics_.error(begin(*dialog.get("root_tag")), "root_tag must be 128 to 255");

    const auto mayHoldType = [](const Part &part) {
        return !part.kind || part.kind->tag == dialog::tagDialogParameters;
    };
    if (!hasKey(values, "type") && std::ranges::none_of(parts, mayHoldType))
        diagnostics_.error(begin(dialog), "a dialog needs a type: ",
                           describeChoices(*findField(dialog::nodes[0], "type")));
    const bool hasValues = !values.empty();
    if (hasValues)
        controls_.push_back(
            {dialog::tagDialogParameters, begin(dialog), placesOf(dialog::nodes[0], values)});
    std::string description =
        hasValues ? readNode(dialog::nodes[0], dialog, std::move(values)) : "";
    if (hasValues && parts.empty())
        warnOfEmptyEnd(dialog, description);
    description += readParts(std::move(parts));
    if (description.size() > UINT16_MAX)
        diagnostics_.error(begin(dialog), "the dialog takes ", description.size(),
                           " bytes; it may take ", UINT16_MAX);
    return nodeBytes(static_cast<uint8_t>(rootTag), description);
}

char DialogReader::readTextType(const toml::table &dialog) {
    const toml::node *node = dialog.get(textTypeKey);
    const auto type = node ? expectNumber(*node, textTypeKey, otherTextType, diagnostics_)
                           : std::optional<uint16_t>();
    if (type == 0)
        diagnostics_.error(begin(*node), textTypeKey, " must be 1 or 2");
    return static_cast<char>(type.value_or(defaultTextType));
}

// A node without a value that ends its parent is as good as not there.
void DialogReader::warnOfEmptyEnd(const toml::node &place, std::string_view children) {
    const auto nodes = splitNodes(children);
    if (nodes && !nodes->empty() && nodes->back().value.empty())
        report(diagnostics_, rule::emptyNode, begin(place), "the last node, ",
               Hex{nodes->back().tag, 2}, ", is empty; the library does not read it");
}

// A kind of control is a table, or an array of them: `caption = { ... }`, `[[dialogs.NAME.edit]]`.
void DialogReader::collectParts(const TomlEntry &entry, std::vector<Part> &parts) {
    const Node *kind = findNode(entry.key->str());
    const auto collect = [&](const toml::node &node) {
        if (const auto *table = expect<toml::table>(node, entry.key->str(), diagnostics_))
            parts.push_back({kind, table});
    };
    const toml::array *array = entry.node->as_array();
    if (!array)
        return collect(*entry.node);
    for (const toml::node &element : *array)
        collect(element);
}

std::string DialogReader::readParts(std::vector<Part> parts) {
    std::ranges::stable_sort(parts, {}, [](const Part &part) { return begin(*part.table); });
    std::string bytes;
    std::map<const Node *, std::size_t> counts;
    for (const auto &[kind, table] : parts) {
        if (!kind) {
            const std::string nodes = readHexPart(*table);
            for (const NodeView &node : splitNodes(nodes).value_or(std::vector<NodeView>()))
                controls_.push_back({node.tag, begin(*table), {}});
            bytes += nodes;
            continue;
        }
        if (++counts[kind] > DIALOG_CONTROLS && isControl(*kind))
            diagnostics_.error(begin(*table), kind->name, ' ', counts[kind],
                               ": a dialog has at most ", +DIALOG_CONTROLS, " of a kind");
        Entries entries = entriesInOrder(*table);
        controls_.push_back({kind->tag, begin(*table), placesOf(*kind, entries)});
        bytes += readNode(*kind, *table, std::move(entries));
    }
    if (!parts.empty())
        warnOfEmptyEnd(*parts.back().table, bytes);
    return bytes;
}

std::string DialogReader::readHexPart(const toml::table &table) {
    TableReader reader(table, diagnostics_);
    const toml::node *hex = reader.find("hex");
    reader.reportUnknownKeys();
    if (!hex)
        diagnostics_.error(begin(table), hexNodeKey, " needs hex = \"...\"");
    const toml::node *value = hex ? inLanguage("hex", *hex) : nullptr;
    return value ? readHexNodes(*value, "hex") : "";
}

std::string DialogReader::readNode(const Node &kind, const toml::table &table, Entries entries) {
    std::vector<std::string> omitted;
    const toml::node *style = nullptr;
    std::erase_if(entries, [&](const TomlEntry &entry) {
        if (entry.key->str() == "omit")
            omitted = readOmitted(kind, *entry.node);
        else if (entry.key->str() == "style")
            style = entry.node;
        else
            return false;
        return true;
    });
    if (style)
        appendStyle(*style, kind, omitted, entries);
    appendDefaults(kind, omitted, entries);
    if (needsArea(kind) && !hasKey(entries, "area") && !contains(omitted, "area"))
        diagnostics_.error(begin(table), kind.name, " needs area = [left, top, width, height]");

    std::string children;
    for (const TomlEntry &entry : entries)
        children += readKey(kind, entry);
    warnOfEmptyEnd(table, children);
    if (children.size() > UINT16_MAX)
        diagnostics_.error(begin(table), kind.name, " takes ", children.size(),
                           " bytes; it may take ", UINT16_MAX);
    return nodeBytes(kind.tag, children);
}

// Puts the keys of a style behind those that a node gives itself, as far as its kind has them.
void DialogReader::appendStyle(const toml::node &name, const Node &kind,
                               const std::vector<std::string> &omitted, Entries &entries) {
    const auto *text = expect<TomlText>(name, "style", diagnostics_);
    if (!text)
        return;
    const toml::node *style = styles_ ? styles_->get(text->get()) : nullptr;
    if (!style) {
        std::vector<std::string_view> names;
        for (const TomlEntry &entry :
             styles_ && !diagnostics_.isCrowded() ? entriesInOrder(*styles_) : Entries())
            names.push_back(entry.key->str());
        diagnostics_.error(begin(name), '"', text->get(), "\" is not in [styles]",
                           hint(text->get(), names));
        return;
    }
    for (const TomlEntry &entry :
         style->is_table() ? entriesInOrder(*style->as_table()) : Entries()) {
        const std::string_view key = entry.key->str();
        if (findField(kind, key) && !hasKey(entries, key) && !contains(omitted, key))
            entries.push_back(entry);
    }
}

std::vector<std::string> DialogReader::readOmitted(const Node &kind, const toml::node &value) {
    std::vector<std::string> names;
    const auto *array = expect<toml::array>(value, "omit", diagnostics_);
    for (std::size_t i = 0; array && i < array->size(); ++i) {
        const auto *name = expect<TomlText>((*array)[i], "omit", diagnostics_);
        if (name && !findField(kind, name->get()))
            diagnostics_.error(begin(*name), kind.name, " has no key \"", name->get(), '"',
                               hint(name->get(), keysOf(kind)));
        else if (name)
            names.push_back(name->get());
    }
    return names;
}

std::string DialogReader::readKey(const Node &kind, const TomlEntry &entry) {
    const std::string_view key = entry.key->str();
    const Field *field = findField(kind, key);
    const bool areElements = hasElements(kind) && key == elementsKey;
    if (!field && !areElements && !isRawKey(key)) {
        reportUnknownKey(*entry.key, keysOf(kind), diagnostics_);
        return "";
    }

    const toml::node *value = inLanguage(key, *entry.node);
    if (!value)
        return "";
    if (field)
        return readField(*field, *value);
    return areElements ? readElements(*value) : readHexNodes(*value, key);
}

// The value itself, or its value in the present language when it is a table of languages.
const toml::node *DialogReader::inLanguage(std::string_view key, const toml::node &value) {
    const toml::table *table = value.as_table();
    if (!table || std::ranges::none_of(
                      *table, [](const auto &entry) { return isLanguageCode(entry.first.str()); }))
        return &value;

    for (auto &&[code, node] : *table) {
        if (std::ranges::find(languages_, code.str(), &Language::code) == languages_.end())
            diagnostics_.error(begin(code), '"', code.str(), "\" is not in [languages]");
    }
    const toml::node *own = table->get(language_);
    if (!own)
        diagnostics_.error(begin(value), key, " has no value in ", language_);
    return own;
}

std::string DialogReader::readField(const Field &field, const toml::node &value) {
    if (field.row.kind == Kind::area)
        return readArea(value);
    if (field.row.kind == Kind::colors)
        return readColorSet(value);
    if (isText(field.row.kind))
        return textBytes(field.row, readText(field, value), textType_);
    return numberBytes(field.row, readNumber(field, value).value_or(0));
}

std::optional<uint32_t> DialogReader::readNumber(const Field &field, const toml::node &value) {
    const Choices choices = choicesOf(field);
    const TomlText *text = value.as_string();
    if (field.spelling == Spelling::character && text && isOneCharacter(text->get())) {
        const std::string bytes = encodeText(*text, codePage(), diagnostics_);
        return bytes.empty() ? 0 : static_cast<uint8_t>(bytes[0]);
    }

    const auto named = std::ranges::find(choices.named, spelledName(value, choices), &Choice::name);
    const TomlInteger *number = value.as_integer();
    std::optional<uint32_t> result;
    if (named != choices.named.end())
        result = named->value;
    else if (number && number->get() >= 0 && number->get() <= int64_t{choices.most})
        result = static_cast<uint32_t>(number->get());
    else
        diagnostics_.error(begin(value), field.name, " must be ",
                           isDuration(field) ? "milliseconds, " : "", describeChoices(field),
                           text ? hint(text->get(), namesOf(choices)) : "");

    if (field.spelling == Spelling::keyCode && result.value_or(0) != 0 &&
        IG_GetIGKeyCode(*result) == 0)
        report(diagnostics_, rule::key, begin(value), "dialogs do not know the key ", *result);
    return result;
}

std::string DialogReader::readText(const Field &field, const toml::node &value) {
    const toml::array *array = field.spelling == Spelling::pieces ? value.as_array() : nullptr;
    std::vector<std::string> pieces;
    for (std::size_t i = 0; i < (array ? array->size() : 1); ++i) {
        const toml::node &piece = array ? (*array)[i] : value;
        const auto *text = expect<TomlText>(piece, field.name, diagnostics_);
        pieces.push_back(text ? encodeText(*text, codePage(), diagnostics_) : "");
    }
    if (pieces.size() > DIALOG_KEY_SCHEME)
        diagnostics_.error(begin(value), field.name, " has ", pieces.size(), " texts; it may have ",
                           +DIALOG_KEY_SCHEME);
    std::string bytes = join(pieces, pieceSeparator);
    if (bytes.size() > field.row.limit)
        diagnostics_.error(begin(value), field.name, " takes ", bytes.size(),
                           " bytes; it may take ", field.row.limit);
    return bytes;
}

std::string DialogReader::readArea(const toml::node &value) {
    const auto numbers = numbersOf(value, 4, UINT16_MAX);
    const uint32_t right = numbers ? (*numbers)[0] + (*numbers)[2] : 0;
    const uint32_t bottom = numbers ? (*numbers)[1] + (*numbers)[3] : 0;
    if (!numbers || right > UINT16_MAX || bottom > UINT16_MAX) {
        diagnostics_.error(begin(value), "area must be [left, top, width, height] of 0 to ",
                           UINT16_MAX);
        return "";
    }
    if (right > displayWidth || bottom > displayHeight)
        report(diagnostics_, rule::outside, begin(value), "area reaches to ", right, " x ", bottom,
               "; the display has ", displayWidth, " x ", displayHeight);
    return nodeBytes(dialog::tagArea,
                     positionBytes((*numbers)[0], (*numbers)[1]) + positionBytes(right, bottom));
}

std::string DialogReader::readColorSet(const toml::node &value) {
    std::optional<ColorPair> active;
    std::optional<ColorPair> passive;
    if (const toml::table *table = value.as_table()) {
        TableReader reader(*table, diagnostics_);
        const toml::node *nodes[] = {reader.find("active"), reader.find("passive")};
        reader.reportUnknownKeys();
        if (!nodes[0] || !nodes[1])
            diagnostics_.error(begin(value),
                               "colors needs active and passive, or two colors alone");
        active = nodes[0] ? readColorPair(*nodes[0]) : std::nullopt;
        passive = nodes[1] ? readColorPair(*nodes[1]) : std::nullopt;
    } else {
        active = passive = readColorPair(value);
    }
    if (!active || !passive)
        return "";
    std::string children;
    for (std::size_t ground = 0; ground < active->size(); ++ground)
        children += colorBytes((*active)[ground]) + colorBytes((*passive)[ground]);
    return nodeBytes(dialog::tagColors, children);
}

std::optional<DialogReader::ColorPair> DialogReader::readColorPair(const toml::node &value) {
    const toml::array *array = value.as_array();
    if (!array || array->size() != 2) {
        diagnostics_.error(begin(value), "two colors are needed: [foreground, background]");
        return std::nullopt;
    }
    const auto foreground = readColor((*array)[0]);
    const auto background = readColor((*array)[1]);
    if (!foreground || !background)
        return std::nullopt;
    return ColorPair{*foreground, *background};
}

std::optional<Color> DialogReader::readColor(const toml::node &value) {
    const auto make = [](uint32_t red, uint32_t green, uint32_t blue) {
        return Color{static_cast<uint8_t>(red), static_cast<uint8_t>(green),
                     static_cast<uint8_t>(blue)};
    };
    if (const auto numbers = numbersOf(value, 3, UINT8_MAX))
        return make((*numbers)[0], (*numbers)[1], (*numbers)[2]);

    const TomlText *text = value.as_string();
    const std::string name = text ? text->get() : "";
    if (const auto known = colors_.find(name); known != colors_.end())
        return known->second;
    if (name.size() == 7 && name[0] == '#' &&
        name.find_first_not_of("0123456789ABCDEFabcdef", 1) == name.npos) {
        const auto rgb = static_cast<uint32_t>(std::stoul(name.substr(1), nullptr, 16));
        return make(rgb >> 16, rgb >> 8 & 0xFF, rgb & 0xFF);
    }

    std::vector<std::string_view> names;
    for (const auto &[each, color] : colors_)
        if (!diagnostics_.isCrowded())
            names.push_back(each);
    diagnostics_.error(begin(value),
                       "a color is \"#RRGGBB\", [red, green, blue] or a name of [colors]",
                       hint(name, names));
    return std::nullopt;
}

std::string DialogReader::readElements(const toml::node &value) {
    std::string bytes;
    const auto *array = expect<toml::array>(value, elementsKey, diagnostics_);
    for (std::size_t i = 0; array && i < array->size(); ++i) {
        const toml::node &element = (*array)[i];
        if (i >= DIALOG_MENU_ELEMENTS)
            diagnostics_.error(begin(element), "element ", i + 1, ": a menu has at most ",
                               +DIALOG_MENU_ELEMENTS);
        if (const auto *table = expect<toml::table>(element, elementsKey, diagnostics_))
            bytes += readNode(dialog::menuElement, *table, entriesInOrder(*table));
    }
    return bytes;
}

std::string DialogReader::readHexNodes(const toml::node &value, std::string_view key) {
    const auto *text = expect<TomlText>(value, key, diagnostics_);
    std::string bytes = text ? decodeHex(*text, diagnostics_) : "";
    if (!splitNodes(bytes))
        diagnostics_.error(begin(value), key,
                           " must be whole nodes: tag, length in 2 bytes, value");
    return bytes;
}

} // namespace uti::tool
