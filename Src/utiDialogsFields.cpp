// utiDialogsFields.cpp: the loop that walks the nodes of dialog descriptions, and the nodes that
// all others nest: areas and colours. Stands on the TLV parser, the fonts, the key codes and the
// tables of utiDialogFormat.h.
#include "Src/utiDialogsFields.h"

#include "Src/utiDialogsFonts.h"
#include "Src/utiDialogsRecords.h"

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

int32_t readPosition(Reader &reader, const ParserNode *node) {
    static constexpr auto rows = dialog::rowsOf(dialog::positionFields);
    return currentPosition ? readRecord(reader, node, rows, currentPosition)
                           : skipChildren(reader, node);
}

int32_t readPositions(Reader &reader, const ParserNode *node) {
    return walkChildren(reader, node, [&](ParserNode &child) {
        if (child.tag != dialog::tagPosition || !currentAreaRectangle)
            return reader.skip(child);
        currentPosition = isLeftTop ? &currentAreaRectangle->left : &currentAreaRectangle->right;
        isLeftTop = 0;
        return readPosition(reader, &child);
    });
}

int32_t readColor(Reader &reader, const ParserNode *node) {
    static constexpr auto rows = dialog::rowsOf(dialog::colorFields);
    return currentRGB ? readRecord(reader, node, rows, currentRGB) : skipChildren(reader, node);
}

int32_t readColors(Reader &reader, const ParserNode *node) {
    uint32_t seen = 0;
    return walkChildren(reader, node, [&](ParserNode &child) {
        if (child.tag != dialog::tagColor || !currentGraphicColors)
            return reader.skip(child);
        RgbColor *const colors[] = {
            &currentGraphicColors->activeForeground, &currentGraphicColors->passiveForeground,
            &currentGraphicColors->activeBackground, &currentGraphicColors->passiveBackground};
        currentRGB = seen < std::size(colors) ? colors[seen++] : nullptr;
        return readColor(reader, &child);
    });
}

} // namespace

int32_t readArea(Reader &reader, const ParserNode &node, Rectangle *area) {
    currentAreaRectangle = area;
    isLeftTop = 1;
    return readPositions(reader, &node);
}

int32_t readField(Reader &reader, ParserNode &child, std::span<const Row> rows, void *record) {
    const Row *row = rows.data(), *const end = row + rows.size();
    while (row != end && row->tag != child.tag)
        ++row;
    if (row == end)
        return reader.skip(child);

    char *field = static_cast<char *>(record) + row->offset;
    int32_t error;
    switch (row->kind) {
    case Kind::byte:
    case Kind::wide:
    case Kind::key: {
        const uint8_t value = reader.byte(child, error);
        if (row->kind == Kind::wide)
            store(field, uint32_t{value});
        else
            store(field,
                  row->kind == Kind::byte ? value : static_cast<uint8_t>(IG_GetIGKeyCode(value)));
        return error;
    }
    case Kind::word:
        store(field, reader.word(child, error));
        return error;
    case Kind::dword:
        store(field, reader.dword(child, error));
        return error;
    case Kind::area:
        return readArea(reader, child, static_cast<Rectangle *>(static_cast<void *>(field)));
    case Kind::colors:
        currentGraphicColors = static_cast<ColorSet *>(static_cast<void *>(field));
        return readColors(reader, &child);
    case Kind::text:
    case Kind::lines:
    case Kind::font:
        break;
    }

    const int32_t length = reader.copy(child, field, row->limit);
    if (length < 0)
        return length;
    if (row->kind == Kind::lines)
        replaceLineFeeds(field, static_cast<std::size_t>(length));
    if (row->kind == Kind::font)
        store(field + dialog::fontIndexDistance, Dialogs_GetFontIndex(field));
    return UTI_OK;
}

int32_t readRecord(Reader &reader, const ParserNode *node, std::span<const Row> rows,
                   void *record) {
    return walkChildren(reader, node,
                        [&](ParserNode &child) { return readField(reader, child, rows, record); });
}

} // namespace uti

using namespace uti;

int32_t ParseAreaRectangle(ParserNode *node) {
    Reader reader;
    return readPositions(reader, node);
}

int32_t ParseGuiPosition(ParserNode *node) {
    Reader reader;
    return readPosition(reader, node);
}

int32_t ParseGraphicColors(ParserNode *node) {
    Reader reader;
    return readColors(reader, node);
}

int32_t ParseRGB(ParserNode *node) {
    Reader reader;
    return readColor(reader, node);
}
