// dialog_values.cpp: names, defaults and bytes of the values of dialog descriptions.
#include "tools/dialog_values.h"

#include "common/bytes.h"
#include "common/keys.h"

#include <algorithm>
#include <array>

namespace uti::tool {

namespace {

using dialog::Field;
using dialog::Kind;
using dialog::Node;
using dialog::Spelling;

constexpr Choice flags[] = {{"false", 0}, {"true", 1}};
constexpr Choice withoutFlags[] = {{"true", 0}, {"false", 1}};
constexpr Choice dialogTypes[] = {{"message", DIALOG_MESSAGE},
                                  {"edit", DIALOG_EDIT},
                                  {"list", DIALOG_LIST},
                                  {"confirmation", DIALOG_CONFIRMATION},
                                  {"signature", DIALOG_SIGNATURE}};
constexpr Choice placements[] = {{"display", 0}, {"area", 1}};
constexpr Choice justifications[] = {{"left", 0},        {"right", 1},     {"center", 2},
                                     {"top", 3},         {"bottom", 4},    {"top-left", 5},
                                     {"bottom-left", 6}, {"top-right", 7}, {"bottom-right", 8}};
constexpr Choice borders[] = {{"none", 0}, {"line", 1}, {"rounded", 2}, {"sunken", 3}};
constexpr Choice transparencies[] = {{"opaque", 0}, {"transparent", 1}};
constexpr Choice formTransparencies[] = {{"opaque", 0}, {"half", 1}, {"transparent", 2}};
constexpr Choice inputTypes[] = {{"digits", 0}, {"text", 1}, {"amount", 2}};
constexpr Choice digitFonts[] = {{"dig6x8", 0}, {"12x16", 1}, {"16x24", 2}};
constexpr bool isWritten(const Key &key) {
    return key.name && key.terminal != 0;
}
constexpr auto keyCodes = [] {
    std::array<Choice, std::ranges::count_if(keys, isWritten)> choices{};
    auto out = choices.begin();
    for (const Key &key : keys)
        if (isWritten(key))
            *out++ = {key.name, key.terminal};
    return choices;
}();

constexpr std::string_view plainColors = R"(["#000000", "#FFFFFF"])";
constexpr std::string_view focusColors =
    R"({ active = ["#FFFFFF", "#28B4E8"], passive = ["#000000", "#FFFFFF"] })";
constexpr std::string_view font = R"("12x16")";

constexpr Default dialogDefaults[] = {
    {"timeout", "0"}, {"transparency", R"("opaque")"}, {"placement", R"("area")", "area"}};
constexpr Default captionDefaults[] = {{"font", font}};
constexpr Default staticTextDefaults[] = {{"font", font}, {"colors", plainColors}};
constexpr Default labelDefaults[] = {{"font", font},
                                     {"colors", plainColors},
                                     {"input", R"("text")"},
                                     {"max_length", "255"},
                                     {"read_only", "true"}};
constexpr Default editDefaults[] = {{"font", font},
                                    {"border", R"("line")"},
                                    {"colors", plainColors},
                                    {"input", R"("text")"},
                                    {"max_length", "255"}};
constexpr Default ipEditDefaults[] = {
    {"font", font}, {"border", R"("line")"}, {"colors", plainColors}};
constexpr Default buttonDefaults[] = {
    {"justify", R"("center")"}, {"font", font}, {"border", R"("line")"}, {"colors", focusColors}};
constexpr Default menuDefaults[] = {{"font", font}, {"colors", focusColors}};
constexpr Default boxDefaults[] = {{"border", R"("line")"}, {"colors", plainColors}};
// The bar is filled with the active background.
constexpr Default progressDefaults[] = {{"border", R"("line")"}, {"colors", focusColors}};
constexpr Default elementDefaults[] = {{"enabled", "true"}};

struct NodeDefaults {
    dialog::Tag tag;
    std::span<const Default> defaults;
};

constexpr NodeDefaults nodeDefaults[] = {
    {dialog::tagDialogParameters, dialogDefaults},
    {dialog::tagCaption, captionDefaults},
    {dialog::tagStaticText, staticTextDefaults},
    {dialog::tagLabel, labelDefaults},
    {dialog::tagEdit, editDefaults},
    {dialog::tagIpEdit, ipEditDefaults},
    {dialog::tagButton, buttonDefaults},
    {dialog::tagMenu, menuDefaults},
    {dialog::tagProgressBar, progressDefaults},
    {dialog::tagSignature, boxDefaults},
    {dialog::tagMenuElement, elementDefaults},
};

struct SpelledChoices {
    Spelling spelling;
    Choices choices;
};

// Where nothing is listed, any number will do.
constexpr SpelledChoices spelledChoices[] = {
    {Spelling::flag, {flags, UINT8_MAX, true}},
    {Spelling::without, {withoutFlags, UINT8_MAX, true}},
    {Spelling::dialogType, {dialogTypes, DIALOG_SIGNATURE, false}},
    {Spelling::placement, {placements, 1, false}},
    {Spelling::justify, {justifications, 8, false}},
    {Spelling::border, {borders, UINT8_MAX, false}},
    {Spelling::transparency, {transparencies, UINT8_MAX, false}},
    {Spelling::formTransparency, {formTransparencies, 2, false}},
    {Spelling::inputType, {inputTypes, 2, false}},
    {Spelling::digitFont, {digitFonts, UINT8_MAX, false}},
    {Spelling::keyCode, {keyCodes, UINT8_MAX, false}},
};

// How the value of a number is stored.
struct NumberForm {
    char typeCode;
    unsigned size;
};

constexpr NumberForm formOf(Kind kind) {
    switch (kind) {
    case Kind::word:
        return {4, 2};
    case Kind::dword:
        return {5, 4};
    default:
        return {3, 1};
    }
}

constexpr std::size_t headerSize = 3;

uint32_t littleEndian(std::string_view bytes) {
    return static_cast<uint32_t>(getNumber(reinterpret_cast<const uint8_t *>(bytes.data()),
                                           static_cast<unsigned>(bytes.size()), ByteOrder::little));
}

std::string littleEndian(uint32_t value, unsigned size) {
    uint8_t bytes[4];
    putNumber(bytes, value, size, ByteOrder::little);
    return {reinterpret_cast<const char *>(bytes), size};
}

} // namespace

bool hasElements(const Node &kind) {
    return kind.tag == dialog::tagMenu;
}

Choices choicesOf(const Field &field) {
    const auto *found =
        std::ranges::find(spelledChoices, field.spelling, &SpelledChoices::spelling);
    if (found != std::end(spelledChoices))
        return found->choices;
    return {{}, static_cast<uint32_t>((uint64_t{1} << 8 * formOf(field.row.kind).size) - 1), false};
}

std::span<const Default> defaultsOf(const Node &kind) {
    const auto *found = std::ranges::find(nodeDefaults, kind.tag, &NodeDefaults::tag);
    return found == std::end(nodeDefaults) ? std::span<const Default>() : found->defaults;
}

bool needsArea(const Node &kind) {
    return kind.tag != dialog::tagDialogParameters && kind.tag != dialog::tagCaption &&
           kind.tag != dialog::tagMenu;
}

bool isText(Kind kind) {
    return kind == Kind::text || kind == Kind::lines || kind == Kind::font;
}

const Field *findField(const Node &node, std::string_view name) {
    const auto found = std::ranges::find(node.fields, name, &Field::name);
    return found == node.fields.end() ? nullptr : &*found;
}

const Field *findField(const Node &node, uint8_t tag) {
    const auto found =
        std::ranges::find(node.fields, tag, [](const Field &field) { return field.row.tag; });
    return found == node.fields.end() ? nullptr : &*found;
}

const Node *findNode(std::string_view name) {
    const auto *found = std::ranges::find(dialog::nodes, name, &Node::name);
    return found == std::end(dialog::nodes) ? nullptr : found;
}

const Node *findNode(uint8_t tag) {
    const auto *found = std::ranges::find(dialog::nodes, tag, &Node::tag);
    return found == std::end(dialog::nodes) ? nullptr : found;
}

std::string nodeBytes(uint8_t tag, std::string_view value) {
    return littleEndian(tag, 1) + littleEndian(static_cast<uint32_t>(value.size()), 2) +
           std::string(value);
}

std::string numberBytes(const dialog::Row &row, uint32_t value) {
    const NumberForm form = formOf(row.kind);
    return nodeBytes(row.tag, form.typeCode + littleEndian(value, form.size));
}

std::string textBytes(const dialog::Row &row, std::string_view text, char typeCode) {
    return nodeBytes(row.tag, typeCode + std::string(text));
}

std::optional<std::vector<NodeView>> splitNodes(std::string_view bytes) {
    std::vector<NodeView> nodes;
    while (!bytes.empty()) {
        if (bytes.size() < headerSize)
            return std::nullopt;
        const std::size_t length = littleEndian(bytes.substr(1, 2));
        if (length > bytes.size() - headerSize)
            return std::nullopt;
        nodes.push_back({static_cast<uint8_t>(bytes[0]), bytes.substr(headerSize, length),
                         bytes.substr(0, headerSize + length)});
        bytes.remove_prefix(headerSize + length);
    }
    return nodes;
}

std::vector<std::string> namesOfControls(std::string_view description, dialog::Tag kind) {
    std::vector<std::string> names;
    const dialog::Field *field = findField(*findNode(kind), "name");
    const auto root = splitNodes(description);
    const auto controls =
        root && root->size() == 1 ? splitNodes(root->front().value) : std::nullopt;
    for (const NodeView &control : controls.value_or(std::vector<NodeView>())) {
        const auto values = control.tag == kind ? splitNodes(control.value) : std::nullopt;
        for (const NodeView &value : values.value_or(std::vector<NodeView>()))
            if (value.tag == field->row.tag && value.value.size() > 1)
                names.emplace_back(value.value.substr(1));
    }
    return names;
}

std::optional<uint32_t> numberIn(const dialog::Row &row, const NodeView &node) {
    const NumberForm form = formOf(row.kind);
    if (node.tag != row.tag || node.value.size() != 1 + form.size || node.value[0] != form.typeCode)
        return std::nullopt;
    return littleEndian(node.value.substr(1));
}

std::optional<std::string_view> textIn(const dialog::Row &row, const NodeView &node,
                                       char typeCode) {
    if (node.tag != row.tag || node.value.empty() || node.value[0] != typeCode ||
        node.value.size() - 1 > row.limit)
        return std::nullopt;
    return node.value.substr(1);
}

} // namespace uti::tool
