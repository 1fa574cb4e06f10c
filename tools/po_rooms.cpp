// po_rooms.cpp: the room that there is for the texts of dialogs, told by the toolkit: each dialog
// is built with texts that no place can show whole.
#include "tools/dialog_pictures.h"
#include "tools/po.h"

#include <cstdlib>

namespace uti::tool {

namespace {

// Wider and higher than the display in its smallest font, and no more than a label takes.
constexpr std::size_t longestLine = 96;
constexpr int lines = 48;
// A button with an image has its text beside it when it is too long for the place below; what is
// then left there is not what a translator can count on.
constexpr int leastColumns = 4;

// A text of common letters; its first one, by which it is known again where it is cut, tells the
// place.
std::string probe(std::size_t place) {
    constexpr std::string_view letters = "etaoinshrdlu";
    std::string text(1, static_cast<char>('A' + place));
    while (text.size() < longestLine)
        text += letters[text.size() % letters.size()];
    for (int line = 1; line < lines; ++line)
        text += "\n-";
    return text;
}

} // namespace

Rooms findRooms(const ResourceSource &source, const std::filesystem::path &folder) {
    setenv("UTI_QUIET", "1", 1); // what does not fit is no news here
    ShownModule module{source.module,
                       source.module,
                       source.file,
                       writeResourceFile(source.file),
                       source.dialogs,
                       {},
                       {},
                       source.codePages};
    for (SourceDialog &dialog : module.dialogs) {
        std::size_t index = 0;
        for (const TextPlace &place : placesOf(dialog.texts)) {
            for (TextChoice *choice : place.choices)
                *choice = {{std::nullopt, probe(index), {}, {}}};
            ++index;
        }
    }

    Rooms rooms;
    const std::filesystem::path before = std::filesystem::current_path();
    const LoadedModule loaded(module, folder);
    for (const ShownDialog &shown : dialogsOf(module)) {
        if (!shown.source || !shown.source->texts.areNamed())
            continue;
        const Picture picture = loaded.picture(shown);
        const auto dialog = static_cast<std::size_t>(shown.source - module.dialogs.data());
        std::vector<Room> &all = rooms[{dialog, shown.language}];
        DialogTexts texts = shown.source->texts;
        all.resize(placesOf(texts).size());
        for (const host::Cut &cut : picture.cuts) {
            const auto place = static_cast<std::size_t>(cut.text.empty() ? -1 : cut.text[0] - 'A');
            const bool scrolls = cut.has.height >= lines;
            if (place < all.size() && cut.has.width >= leastColumns)
                all[place] = {cut.has.width, scrolls ? 0 : cut.has.height};
        }
    }
    std::filesystem::current_path(before);
    return rooms;
}

} // namespace uti::tool
