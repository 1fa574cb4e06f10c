// po.h: the texts of a resource source as translators see them: PO files, one for each language but
// the first (docs/translators.md).
#pragma once

#include "tools/po_file.h"
#include "tools/resource_source.h"

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace uti::tool {

// The cells that there are for a text. No columns where that is not known, no lines where there are
// as many as one likes.
struct Room {
    int columns = 0;
    int lines = 0;
};

// A place of a dialog that shows one of some texts, such as "caption" or "label total". All items
// of a list are one.
struct TextPlace {
    std::string name;
    std::vector<TextChoice *> choices;
};
std::vector<TextPlace> placesOf(DialogTexts &texts);

// The rooms at the places of each dialog of the source, by its index and a language. Images are
// looked for from the folder. Null in a build without the toolkit.
using Rooms = std::map<std::pair<std::size_t, std::string>, std::vector<Room>>;
using FindRooms = Rooms (*)(const ResourceSource &source, const std::filesystem::path &folder);
Rooms findRooms(const ResourceSource &source, const std::filesystem::path &folder);

// The bytes that the source gives a string in just that language, or null.
const std::string *bytesIn(const ResourceFile &file, std::string_view language, uint16_t id);

// A string's text in a language, in UTF-8; nothing when the source gives none there.
std::optional<std::string> textIn(const ResourceSource &source, const StringName &string,
                                  std::string_view language);

// What keeps a string from having a translation in that language, or nothing.
std::string hindrance(const ResourceSource &source, const StringName &string,
                      std::string_view language);

// The PO file of a language. What was in it before, which may be nothing, is kept where it is the
// translator's own; a translation that the source lacks is an error at its place.
PoFile exportPo(const ResourceSource &source, const SourceText &sourceText,
                const std::string &language, const Rooms &rooms, const PoFile &before,
                Diagnostics &diagnostics);

// A text of a source that is to be another one.
struct Translation {
    const StringName *string;
    std::string language;
    std::string text;
};

// How many entries of a PO file were taken and why others were not.
struct PoCounts {
    std::size_t changed = 0;
    std::size_t added = 0;
    std::size_t fuzzy = 0;
    std::size_t untranslated = 0;
};

// Adds the translations of a PO file that differ from the source; whatever is wrong with them is
// reported. Returns the file's language.
std::string importPo(const ResourceSource &source, const Diagnostics &sourceText, const PoFile &po,
                     Diagnostics &diagnostics, std::vector<Translation> &translations,
                     PoCounts &counts);

// The text of a source with the translations in their places and all else as it was; with errors
// when it would not say just what is meant.
Diagnostics putInto(const ResourceSource &source, const SourceText &text,
                    std::vector<Translation> translations);

} // namespace uti::tool
