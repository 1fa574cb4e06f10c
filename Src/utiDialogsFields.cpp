// utiDialogsFields.cpp: the loop that walks the nodes of dialog descriptions, and the nodes that
// all others nest: areas and colours. Stands on the TLV parser, the fonts, the key codes and the
// tables of utiDialogFormat.h.
#include "Src/utiDialogsFields.h"

#include "Src/utiDialogsFonts.h"
#include "Src/utiDialogsRecords.h"
#include "Src/utiTLVParser.h"

#include <algorithm>
#include <cstring>

constinit Rectangle *currentAreaRectangle = nullptr;
constinit uint8_t isLeftTop = 0;
constinit uint16_t *currentPosition = nullptr;
constinit ColorSet *currentGraphicColors = nullptr;
constinit RgbColor *currentRGB = nullptr;

namespace uti {

namespace {

using dialog::Kind;
using dialog::Row;

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

template <class Value>
void store(char *field, Value value) {
    std::memcpy(field, &value, sizeof value);
}

} // namespace

int32_t readArea(ParserNode &node, Rectangle *area) {
    currentAreaRectangle = area;
    isLeftTop = 1;
    return Parser_ParseNode(&node, ParseAreaRectangle);
}

int32_t readField(ParserNode &child, std::span<const Row> rows, void *record) {
    const auto row = std::find_if(rows.begin(), rows.end(),
                                  [&](const Row &each) { return each.tag == child.tag; });
    if (row == rows.end())
        return skipChild(child);

    char *field = static_cast<char *>(record) + row->offset;
    int32_t error = UTI_OK;
    switch (row->kind) {
    case Kind::byte:
        store(field, Parser_GetParameterByte(&child, &error));
        return error;
    case Kind::wide:
        store(field, uint32_t{Parser_GetParameterByte(&child, &error)});
        return error;
    case Kind::word:
        store(field, Parser_GetParameterWord(&child, &error));
        return error;
    case Kind::dword:
        store(field, Parser_GetParameterDword(&child, &error));
        return error;
    case Kind::key:
        store(field,
              static_cast<uint8_t>(IG_GetIGKeyCode(Parser_GetParameterByte(&child, &error))));
        return error;
    case Kind::area:
        return readArea(child, static_cast<Rectangle *>(static_cast<void *>(field)));
    case Kind::colors:
        currentGraphicColors = static_cast<ColorSet *>(static_cast<void *>(field));
        return Parser_ParseNode(&child, ParseGraphicColors);
    case Kind::text:
    case Kind::lines:
    case Kind::font:
        break;
    }

    const int32_t length = Parser_GetParameterBuffer(&child, field, row->limit);
    if (length < 0)
        return length;
    if (row->kind == Kind::lines)
        replaceLineFeeds(field, static_cast<std::size_t>(length));
    if (row->kind == Kind::font)
        store(field + dialog::fontIndexDistance, Dialogs_GetFontIndex(field));
    return UTI_OK;
}

int32_t readRecord(ParserNode *node, std::span<const Row> rows, void *record) {
    return walkChildren(node, [&](ParserNode &child) { return readField(child, rows, record); });
}

} // namespace uti

using namespace uti;

int32_t ParseAreaRectangle(ParserNode *node) {
    return walkChildren(node, [](ParserNode &child) {
        if (child.tag != dialog::tagPosition || !currentAreaRectangle)
            return skipChild(child);
        currentPosition = isLeftTop ? &currentAreaRectangle->left : &currentAreaRectangle->right;
        isLeftTop = 0;
        return Parser_ParseNode(&child, ParseGuiPosition);
    });
}

int32_t ParseGuiPosition(ParserNode *node) {
    static constexpr auto rows = dialog::rowsOf(dialog::positionFields);
    return currentPosition ? readRecord(node, rows, currentPosition)
                           : walkChildren(node, skipChild);
}

int32_t ParseGraphicColors(ParserNode *node) {
    uint32_t seen = 0;
    return walkChildren(node, [&](ParserNode &child) {
        if (child.tag != dialog::tagColor || !currentGraphicColors)
            return skipChild(child);
        RgbColor *const colors[] = {
            &currentGraphicColors->activeForeground, &currentGraphicColors->passiveForeground,
            &currentGraphicColors->activeBackground, &currentGraphicColors->passiveBackground};
        currentRGB = seen < std::size(colors) ? colors[seen++] : nullptr;
        return Parser_ParseNode(&child, ParseRGB);
    });
}

int32_t ParseRGB(ParserNode *node) {
    static constexpr auto rows = dialog::rowsOf(dialog::colorFields);
    return currentRGB ? readRecord(node, rows, currentRGB) : walkChildren(node, skipChild);
}
