// utiDialogsParameters.cpp: the values for a whole dialog, and the records of nodes that
// applications parse themselves. Stands on the reading loop of utiDialogsFields.h.
#include "Src/assertions.h"
#include "Src/utiDialogsFields.h"

namespace uti {
namespace {

constexpr Assertions<"Src/utiDialogs"> asserts;

// Reads a node into the next entry of an array; nodes past its end are counted and skipped.
template <class Entries>
int32_t readEntry(ParserNode *node, Entries &entries, uint8_t &count,
                  std::span<const dialog::Row> rows) {
    Reader reader;
    const bool stored = count < std::size(entries);
    const int32_t result =
        stored ? readRecord(reader, node, rows, &entries[count]) : skipChildren(reader, node);
    if (result != UTI_OK)
        return asserts.fail(result);
    if (count < UINT8_MAX)
        ++count;
    return UTI_OK;
}

} // namespace
} // namespace uti

using namespace uti;

int32_t ParseDialogParameters(ParserNode *node) {
    static constexpr auto rows = dialog::rowsOf(dialog::dialogFields);
    dialog::DialogValues values{};
    values.type = currentDialogType;
    values.timeout = currentDialogTimeout;
    values.transparency = 2;
    values.border = 1;
    Reader reader;
    const int32_t result = walkChildren(reader, node, [&](ParserNode &child) {
        return child.tag == dialog::tagArea ? readArea(reader, child, &currentDialogAreaRectangle)
                                            : readField(reader, child, rows, &values);
    });
    currentDialogType = values.type;
    currentDialogTimeout = values.timeout;
    currentDialogTrasparency = values.transparency;
    currentDialogPositionType = values.positionType;
    currentDialogBorder = values.border;
    return result;
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
