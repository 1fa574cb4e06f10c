// dialog_values.h: the values of dialog descriptions: their names in a source, what a source may
// leave out, and their bytes. Stands on the tables of the format (Src/utiDialogFormat.h).
#pragma once

#include "Src/utiDialogFormat.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace uti::tool {

inline constexpr uint8_t firstCompoundTag = 0x80;
inline constexpr uint8_t defaultDialogTag = firstCompoundTag;

// What separates the pieces of a text of several: a backslash and an n.
inline constexpr std::string_view pieceSeparator = "\\n";

// What no other key tells: nodes inside of a node, and children of the root, in hex.
inline constexpr std::string_view rawKey = "raw";
inline constexpr std::string_view hexNodeKey = "node";

// The type code of a dialog's texts; the library reads both alike.
inline constexpr std::string_view textTypeKey = "text_type";
inline constexpr char defaultTextType = 1;
inline constexpr char otherTextType = 2;

// The key of a menu's elements, which stand in it one after the other.
inline constexpr std::string_view elementsKey = "elements";

bool hasElements(const dialog::Node &kind);

struct Choice {
    std::string_view name;
    uint32_t value;
};

// How a number is spelled: by name, or as it is up to `most`.
struct Choices {
    std::span<const Choice> named;
    uint32_t most;
    bool areTruth; // the names are true and false, without quotes
};

Choices choicesOf(const dialog::Field &field);

// A key that a node gets when the source does not give it, as the source would spell it.
struct Default {
    std::string_view key;
    std::string_view value;
    std::string_view with = {}; // a key without which this one is not given; empty for none
};

// The defaults of a node in their order: what makes a control usable with nothing but its area and
// name. A description that leaves everything out would be drawn black on black.
std::span<const Default> defaultsOf(const dialog::Node &kind);

// True for nodes that are nowhere without an area.
bool needsArea(const dialog::Node &kind);

bool isText(dialog::Kind kind);

const dialog::Field *findField(const dialog::Node &node, std::string_view name);
const dialog::Field *findField(const dialog::Node &node, uint8_t tag);
const dialog::Node *findNode(std::string_view name);
const dialog::Node *findNode(uint8_t tag);

// The bytes of nodes.
std::string nodeBytes(uint8_t tag, std::string_view value);
std::string numberBytes(const dialog::Row &row, uint32_t value);
std::string textBytes(const dialog::Row &row, std::string_view text, char typeCode);

// A node where it lies.
struct NodeView {
    uint8_t tag;
    std::string_view value;
    std::string_view whole; // with its header
};

// The nodes that fill `bytes` exactly, or nothing when they do not.
std::optional<std::vector<NodeView>> splitNodes(std::string_view bytes);

// The names, in the code page, that the controls of a kind have in a description; empty ones are
// left out.
std::vector<std::string> namesOfControls(std::string_view description, dialog::Tag kind);

// What a value holds, when it has the form in which the source's own are written.
std::optional<uint32_t> numberIn(const dialog::Row &row, const NodeView &node);
std::optional<std::string_view> textIn(const dialog::Row &row, const NodeView &node, char typeCode);

} // namespace uti::tool
