// utiDialogsParameters.cpp: dialog-level values, areas, colours, and the records of nodes that
// applications parse themselves. Stands on the TLV parser and the tables of utiDialogFormat.h.
#include "Src/utiDialogsParameters.h"

#include "Src/assertions.h"
#include "Src/utiTLVParser.h"

#include <algorithm>
#include <cstring>

constinit Rectangle *currentAreaRectangle = nullptr;
constinit uint8_t isLeftTop = 0;
constinit uint16_t *currentPosition = nullptr;
constinit ColorSet *currentGraphicColors = nullptr;
constinit RgbColor *currentRGB = nullptr;

constinit uint32_t currentDialogType = 0;
constinit uint32_t currentDialogTimeout = 0;
constinit uint32_t currentDialogTrasparency = 0;
constinit uint32_t currentDialogPositionType = 0;
constinit uint8_t currentDialogBorder = 0;
constinit Rectangle currentDialogAreaRectangle = {};

constinit EditParameters currentEditParameters = {};
constinit ListBoxParameters currentListBoxParameters = {};
constinit LabelsParameters currentLabelsParameters = {};
constinit CaptionParameters currentCaptionParameters = {};
constinit BorderParameters currentBorderParameters = {};
constinit FrameParameters currentFrameParameters = {};
constinit FooterParameters currentFooterParameters = {};
constinit ImagesParameters currentImagesParameters = {};
constinit StatusParameters currentBatteryParameters = {};
constinit StatusParameters currentSignalParameters = {};
constinit StatusParameters currentEthLinkStatusParameters = {};

namespace uti {

namespace {

using dialog::Kind;
using dialog::Row;

constexpr Assertions asserts{"Src/utiDialogs"};

template <class Value>
void store(char *field, Value value) {
    std::memcpy(field, &value, sizeof value);
}

int32_t readArea(ParserNode &node, Rectangle *area) {
    currentAreaRectangle = area;
    isLeftTop = 1;
    return Parser_ParseNode(&node, ParseAreaRectangle);
}

// Reads a node into the next entry of an array; nodes past its end are counted and skipped.
template <class Entries>
int32_t readEntry(ParserNode *node, Entries &entries, uint8_t &count, std::span<const Row> rows) {
    const bool stored = count < std::size(entries);
    const int32_t result =
        stored ? readRecord(node, rows, &entries[count]) : walkChildren(node, skipChild);
    if (result != UTI_OK)
        return asserts.fail(result);
    if (count < UINT8_MAX)
        ++count;
    return UTI_OK;
}

} // namespace

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

std::size_t replaceLineFeeds(char *text, std::size_t length) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < length; ++i) {
        const bool pair = text[i] == '\\' && i + 1 < length && text[i + 1] == 'n';
        text[kept++] = pair ? '\n' : text[i];
        i += pair ? 1 : 0;
    }
    std::memset(text + kept, 0, length - kept);
    return kept;
}

} // namespace uti

using namespace uti;

int32_t ParseDialogParameters(ParserNode *node) {
    static constexpr auto rows = dialog::rowsOf(dialog::dialogFields);
    dialog::DialogValues values{};
    values.type = currentDialogType;
    values.timeout = currentDialogTimeout;
    values.transparency = 2;
    values.border = 1;
    const int32_t result = walkChildren(node, [&](ParserNode &child) {
        return child.tag == dialog::tagArea ? readArea(child, &currentDialogAreaRectangle)
                                            : readField(child, rows, &values);
    });
    currentDialogType = values.type;
    currentDialogTimeout = values.timeout;
    currentDialogTrasparency = values.transparency;
    currentDialogPositionType = values.positionType;
    currentDialogBorder = values.border;
    return result;
}

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

int32_t ParseEditParameters(ParserNode *node) {
    return readRecord(node, dialog::editRecordRows, &currentEditParameters);
}

int32_t ParseListBoxParameters(ParserNode *node) {
    return readRecord(node, dialog::listBoxRecordRows, &currentListBoxParameters);
}

int32_t ParseLabelParameters(ParserNode *node) {
    return readEntry(node, currentLabelsParameters.entries, currentLabelsParameters.count,
                     dialog::labelRecordRows);
}

int32_t ParseCaptionParameters(ParserNode *node) {
    return readRecord(node, dialog::captionRecordRows, &currentCaptionParameters);
}

int32_t ParseBorderParameters(ParserNode *node) {
    return readRecord(node, dialog::borderRecordRows, &currentBorderParameters);
}

int32_t ParseFrameParameters(ParserNode *node) {
    return readRecord(node, dialog::frameRecordRows, &currentFrameParameters);
}

int32_t ParseFooterParameters(ParserNode *node) {
    return readRecord(node, dialog::footerRecordRows, &currentFooterParameters);
}

int32_t ParseImageParameters(ParserNode *node) {
    return readEntry(node, currentImagesParameters.entries, currentImagesParameters.count,
                     dialog::imageRecordRows);
}

int32_t ParseBatteryParameters(ParserNode *node) {
    return readRecord(node, dialog::batteryRecordRows, &currentBatteryParameters);
}

int32_t ParseSignalParameters(ParserNode *node) {
    return readRecord(node, dialog::signalRecordRows, &currentSignalParameters);
}

int32_t ParseEthLinkParameters(ParserNode *node) {
    return readRecord(node, dialog::ethLinkRecordRows, &currentEthLinkStatusParameters);
}
