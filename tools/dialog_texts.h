// dialog_texts.h: the texts that an application will give a dialog, as the source names them for
// the tools: read from it, and put together for a language. The resource file holds none of this.
// Stands on the TOML reader, the code page and the model of resource files.
#pragma once

#include "tools/code_pages.h"
#include "tools/resource_model.h"
#include "tools/toml_reader.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace uti::tool {

// The table of a dialog that holds its texts.
inline constexpr std::string_view textsKey = "texts";

// The key that names the rules which do not hold for a module, a string or a dialog.
inline constexpr std::string_view allowKey = "allow";

// A string of the module, or a text of the source's own, with what stands for its placeholders.
struct NamedText {
    std::optional<uint16_t> string; // its id
    std::string literal;            // without a string; UTF-8
    std::vector<NamedText> args;
    Place place;
};

// What an application may show at one place, one of several.
using TextChoice = std::vector<NamedText>;

struct DialogTexts {
    TextChoice caption;
    TextChoice text;
    std::vector<TextChoice> buttons;                        // the first button's first
    std::vector<std::pair<std::string, TextChoice>> labels; // by names, in UTF-8
    std::vector<TextChoice> items;
    std::string image;                 // a message's
    std::vector<std::string> suffixes; // of the images of a selection's buttons
    Place place;                       // line 0 when the source names no texts

    bool areNamed() const { return place.line > 0; }
};

// The texts of a dialog in one language, in the code page; nothing where the source names none.
struct ResolvedTexts {
    std::optional<std::string> caption;
    std::optional<std::string> text;
    std::vector<std::string> buttons;
    std::vector<std::pair<std::string, std::string>> labels;
    std::vector<std::string> items;
    std::string image;
    std::vector<std::string> suffixes;
};

// The strings of a module by the names of its source.
using StringIds = std::map<std::string, uint16_t, std::less<>>;

// Reads a dialog's table of texts. `labels` are the names that the dialog has for them, in UTF-8.
// What it says itself must be in the code pages of all its languages. Without code pages, of which
// a wrong one was reported before, its findings are complete.
DialogTexts readDialogTexts(const toml::table &table, const StringIds &strings,
                            const std::vector<std::string> &labels, const CodePages *codePages,
                            const std::vector<std::string> &languages, Diagnostics &diagnostics);

// How many ways there are to show the dialog: as many as its longest choice has texts, at least 1.
std::size_t variantsOf(const DialogTexts &texts);

// The texts in a language, of each choice the one of that number, or its last. A string is what the
// library answers for it: empty where the language lacks it, and in sections 3 to 5 the first
// language's when the language has no string there at all.
ResolvedTexts resolveTexts(const DialogTexts &texts, const ResourceFile &file,
                           const CodePage &codePage, std::string_view language,
                           std::size_t variant = 0);

// One text in a language, with its arguments put in.
std::string resolveText(const NamedText &text, const ResourceFile &file, const CodePage &codePage,
                        std::string_view language);

// A string of the file as the library answers it.
std::string_view stringIn(const ResourceFile &file, std::string_view language, uint16_t id);

// A place in a text where something is put in: a conversion of printf, such as %5d, or {0}.
struct Placeholder {
    std::size_t at;     // of its first byte
    std::size_t length; // in bytes
    char kind;          // the conversion's letter, '{' of {0}, '%' of %%
    std::size_t number; // of its argument, from 0
    std::size_t width = 0;
    bool isLeft = false;
    bool isZeroFilled = false;
};

// The placeholders of a text in their order. One that has {0} has no conversions: the trace log and
// applications fill either the ones or the others.
std::vector<Placeholder> placeholdersOf(std::string_view text);

// The placeholders of a text as they must be in every language: conversions in their order, numbers
// in any.
std::vector<std::string> signatureOf(std::string_view text);
std::string spelledOut(const std::vector<std::string> &signature);

} // namespace uti::tool
