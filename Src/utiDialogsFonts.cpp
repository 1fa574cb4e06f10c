// utiDialogsFonts.cpp: the table of fonts, in which descriptions find a slot by its name or have a
// font file loaded into one. Stands on the toolkit's fonts.
#include "Src/utiDialogsFonts.h"

#include "Src/assertions.h"
#include "Src/heap.h"
#include "Src/utiTLVParser.h"
#include "terminal.h"
#include "toolkit.h"

#include <cstring>

constinit const char *fontTable[FONT_SLOTS] = {"6x8",    "12x16",    "16x24",
                                               "dig6x8", "dig12x16", "dig16x24"};

namespace uti {
namespace {

constexpr Assertions<"Src/utiDialogs"> asserts;

constexpr uint32_t messageFontNotLoaded = 12291;
constexpr uint32_t messageFontTableFull = 12292;

// The wording of these reports may have to be loaded, which starts another walk.
template <class... Arguments>
void reportFont(uint32_t messageId, Arguments... arguments) {
    const KeptParserState kept;
    TraceExError("utils_rc", messageId, arguments..., 0);
}

} // namespace

uint16_t Dialogs_GetFontIndex(const char *fontName) {
    const int32_t display = Display_GetHandle();
    if (display < 0)
        return static_cast<uint16_t>(display);
    if (!fontName || *fontName == 0)
        return FONT_FALLBACK;

    uint16_t slot = 0;
    for (; slot < FONT_SLOTS && fontTable[slot]; ++slot) {
        if (std::strcmp(fontTable[slot], fontName) == 0)
            return slot;
    }
    if (slot == FONT_SLOTS) {
        reportFont(messageFontTableFull, String, fontName);
        return FONT_FALLBACK;
    }

    HeapPointer<char> name = copyBytes(fontName, std::strlen(fontName) + 1);
    if (!name)
        return asserts.fail(uint16_t{FONT_FALLBACK});
    const int32_t result = igUI_SetFileFont(display, slot, fontName);
    if (result != 0) {
        reportFont(messageFontNotLoaded, Long, result, String, fontName);
        return FONT_FALLBACK;
    }
    fontTable[slot] = name.release();
    return slot;
}

} // namespace uti
