// utiDialogsControls.cpp: the controls of a dialog description, and the fonts that they name.
// Stands on the reading loop of utiDialogsParameters.h and the toolkit's fonts.
#include "Src/assertions.h"
#include "Src/heap.h"
#include "Src/utiDialogsParameters.h"
#include "Src/utiTLVParser.h"
#include "terminal.h"
#include "toolkit.h"

#include <cstring>

constinit GraphicEditParameters currentGraphicEditParameters = {};
constinit GraphicEditParameters currentGraphicLabelParameters = {};
constinit GraphicStaticTextParameters currentGraphicStaticTextParameters = {};
constinit GraphicButtonParameters currentGraphicButtonParameters = {};
constinit GraphicIpEditParameters currentGraphicIpEditParameters = {};
constinit GraphicBoxParameters currentGraphicSignatureParameters = {};
constinit GraphicBoxParameters currentGraphicProgressBarParameters = {};
constinit GraphicMenuParameters currentGraphicMenuParameters = {};
constinit GraphicCaption currentGraphicCaptionParameters = {};
constinit GraphicDialogParameters currentGraphicDialogParameters = {};

constinit const char *fontTable[FONT_SLOTS] = {"6x8",    "12x16",    "16x24",
                                               "dig6x8", "dig12x16", "dig16x24"};

namespace uti {

namespace {

using dialog::Row;

constexpr Assertions asserts{"Src/utiDialogs"};

constexpr uint32_t messageFontNotLoaded = 12291;
constexpr uint32_t messageFontTableFull = 12292;

// The record's font index must stand where the reading loop stores it.
template <class Record>
constexpr bool fontIndexStandsBehindName = offsetof(Record, font) ==
                                           offsetof(Record, fontName) + dialog::fontIndexDistance;
static_assert(fontIndexStandsBehindName<GraphicEditEntry>);
static_assert(fontIndexStandsBehindName<GraphicStaticTextEntry>);
static_assert(fontIndexStandsBehindName<GraphicButtonEntry>);
static_assert(fontIndexStandsBehindName<GraphicIpEditEntry>);
static_assert(fontIndexStandsBehindName<GraphicBoxEntry>);
static_assert(fontIndexStandsBehindName<GraphicMenuEntry>);
static_assert(fontIndexStandsBehindName<GraphicCaption>);

// Reads a node into the next entry; a node that fails is not counted.
template <class Parameters>
int32_t readControl(ParserNode *node, Parameters &parameters, std::span<const Row> rows) {
    if (parameters.count >= DIALOG_CONTROLS)
        return UTI_DIALOG_TOO_MANY;
    const int32_t result = readRecord(node, rows, &parameters.entries[parameters.count]);
    if (result == UTI_OK)
        ++parameters.count;
    return result;
}

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

using namespace uti;

int32_t ParseGraphicCaption(ParserNode *node) {
    static constexpr auto rows = dialog::rowsOf(dialog::captionFields);
    const int32_t result = readRecord(node, rows, &currentGraphicCaptionParameters);
    if (result == UTI_OK)
        ++currentGraphicCaptionParameters.count;
    return result;
}

int32_t ParseGraphicIpEdit(ParserNode *node) {
    static constexpr auto rows = dialog::rowsOf(dialog::ipEditFields);
    return readControl(node, currentGraphicIpEditParameters, rows);
}

int32_t ParseGraphicProgressBar(ParserNode *node) {
    static constexpr auto rows = dialog::rowsOf(dialog::boxFields);
    return readControl(node, currentGraphicProgressBarParameters, rows);
}

int32_t ParseGraphicSignature(ParserNode *node) {
    static constexpr auto rows = dialog::rowsOf(dialog::boxFields);
    return readControl(node, currentGraphicSignatureParameters, rows);
}

int32_t ParseGraphicStaticText(ParserNode *node) {
    static constexpr auto rows = dialog::rowsOf(dialog::staticTextFields);
    return readControl(node, currentGraphicStaticTextParameters, rows);
}

int32_t ParseGraphicButton(ParserNode *node) {
    static constexpr auto rows = dialog::rowsOf(dialog::buttonFields);
    return readControl(node, currentGraphicButtonParameters, rows);
}

int32_t ParseGraphicLabel(ParserNode *node) {
    static constexpr auto rows = dialog::rowsOf(dialog::labelFields);
    return readControl(node, currentGraphicLabelParameters, rows);
}

int32_t ParseGraphicEdit(ParserNode *node) {
    static constexpr auto rows = dialog::rowsOf(dialog::editFields);
    return readControl(node, currentGraphicEditParameters, rows);
}

int32_t ParseGraphicMenu(ParserNode *node) {
    static constexpr auto rows = dialog::rowsOf(dialog::menuFields);
    GraphicMenuParameters &menus = currentGraphicMenuParameters;
    if (menus.count >= DIALOG_CONTROLS)
        return UTI_DIALOG_TOO_MANY;
    GraphicMenuEntry &menu = menus.entries[menus.count];
    const int32_t result = walkChildren(node, [&](ParserNode &child) {
        return child.tag == dialog::tagMenuElement
                   ? Parser_ParseNode(&child, ParseGraphicMenuElement)
                   : readField(child, rows, &menu);
    });
    if (result == UTI_OK)
        ++menus.count;
    return result;
}

int32_t ParseGraphicMenuElement(ParserNode *node) {
    static constexpr auto rows = dialog::rowsOf(dialog::menuElementFields);
    if (currentGraphicMenuParameters.count >= DIALOG_CONTROLS)
        return UTI_DIALOG_TOO_MANY;
    GraphicMenuEntry &menu =
        currentGraphicMenuParameters.entries[currentGraphicMenuParameters.count];
    if (menu.elementCount >= DIALOG_MENU_ELEMENTS)
        return UTI_DIALOG_TOO_MANY;

    GraphicMenuElement &element = menu.elements[menu.elementCount];
    const int32_t result = readRecord(node, rows, &element);
    if (menu.elementCount >= 1)
        element.notFirst = 1;
    if (result == UTI_OK)
        ++menu.elementCount;
    return result;
}
