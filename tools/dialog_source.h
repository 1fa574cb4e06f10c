// dialog_source.h: dialogs as a resource source tells them (docs/resource-source.md), read into
// dialog descriptions and written from them. Stands on the TOML reader and the values of dialogs.
#pragma once

#include "tools/code_pages.h"
#include "tools/dialog_values.h"
#include "tools/resource_model.h"
#include "tools/toml_reader.h"

#include <array>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace uti::tool {

// A color as red, green and blue.
using Color = std::array<uint8_t, 3>;

// A node of a description where the source tells it.
struct SourceControl {
    uint8_t tag; // of the node
    Place place;
    std::vector<std::pair<std::string_view, Place>> keys; // its own, not those of its style

    // The place of a key, or that of the control.
    Place at(std::string_view key) const;
};

// Reads the dialogs of one source. Without a code page, which was reported before, its results are
// of no use but its findings are complete.
class DialogReader {
public:
    DialogReader(const CodePages *codePages, const std::vector<Language> &languages,
                 Diagnostics &diagnostics)
        : codePages_(codePages), languages_(languages), diagnostics_(diagnostics) {}

    // The tables that the dialogs refer to; the styles must live as long as the reader.
    void readColors(const toml::table &table);
    void readStyles(const toml::table &table);

    // The description of a dialog in one language. `id` and `languages` are the caller's keys.
    std::string read(const toml::table &dialog, std::string_view language);

    // The nodes of the description that was read last.
    std::vector<SourceControl> takeControls() { return std::move(controls_); }

private:
    using Entries = std::vector<TomlEntry>; // in the order of the nodes that they make
    using ColorPair = std::array<Color, 2>; // foreground, background

    // A child of the root; without a kind it is given in hex.
    struct Part {
        const dialog::Node *kind;
        const toml::table *table;
    };

    void collectParts(const TomlEntry &entry, std::vector<Part> &parts);
    std::string readParts(std::vector<Part> parts);
    std::string readHexPart(const toml::table &table);
    std::string readNode(const dialog::Node &kind, const toml::table &table, Entries entries);
    void appendStyle(const toml::node &name, const dialog::Node &kind,
                     const std::vector<std::string> &omitted, Entries &entries);
    std::vector<std::string> readOmitted(const dialog::Node &kind, const toml::node &value);
    std::string readKey(const dialog::Node &kind, const TomlEntry &entry);
    std::string readField(const dialog::Field &field, const toml::node &value);
    std::optional<uint32_t> readNumber(const dialog::Field &field, const toml::node &value);
    std::string readText(const dialog::Field &field, const toml::node &value);
    std::string readArea(const toml::node &value);
    std::string readColorSet(const toml::node &value);
    std::optional<ColorPair> readColorPair(const toml::node &value);
    std::optional<Color> readColor(const toml::node &value);
    std::string readElements(const toml::node &value);
    char readTextType(const toml::table &dialog);
    void warnOfEmptyEnd(const toml::node &place, std::string_view children);
    std::string readHexNodes(const toml::node &value, std::string_view key);
    const toml::node *inLanguage(std::string_view key, const toml::node &value);

    const CodePage *codePage() const { return codePages_ ? &codePages_->of(language_) : nullptr; }

    const CodePages *codePages_;
    const std::vector<Language> &languages_;
    Diagnostics &diagnostics_;
    std::map<std::string, Color, std::less<>> colors_;
    const toml::table *styles_ = nullptr;
    std::vector<SourceControl> controls_;
    std::string_view language_; // of the present reading
    char textType_ = defaultTextType;
};

// A description in one language.
struct DialogText {
    std::string_view language;
    std::string_view bytes;
};

enum class Coverage : uint8_t { everyLanguage, someLanguages };

// The source of the descriptions that an id has in its languages, or nothing when they are none or
// a source cannot tell them. It compiles to the same bytes.
std::optional<std::string> writeDialog(uint16_t id, const std::vector<DialogText> &texts,
                                       Coverage coverage, const CodePages &codePages);

} // namespace uti::tool
