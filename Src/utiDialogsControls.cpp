// utiDialogsControls.cpp: the controls and the header of a dialog description. Stands on the
// reading loop of utiDialogsFields.h.
#include "Src/utiDialogsFields.h"

namespace uti {
namespace {

// Reads a node into the next entry; a node that fails is not counted.
template <class Parameters>
int32_t readControl(ParserNode *node, Parameters &parameters, std::span<const dialog::Row> rows) {
    if (parameters.count >= DIALOG_CONTROLS)
        return UTI_DIALOG_TOO_MANY;
    const int32_t result = readRecord(node, rows, &parameters.entries[parameters.count]);
    if (result == UTI_OK)
        ++parameters.count;
    return result;
}

} // namespace
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
    Reader reader;
    const int32_t result = walkChildren(reader, node, [&](ParserNode &child) {
        return child.tag == dialog::tagMenuElement
                   ? reader.outside([&] { return ParseGraphicMenuElement(&child); })
                   : readField(reader, child, rows, &menu);
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
