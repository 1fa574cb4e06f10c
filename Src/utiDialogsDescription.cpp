// utiDialogsDescription.cpp: a dialog description from the resources into the parameter records.
// Stands on the resources and the parsers of the description's nodes.
#include "Src/assertions.h"
#include "Src/utiDialogFormat.h"
#include "Src/utiResource.h"
#include "Src/utiTLVParser.h"

namespace uti {
namespace {

constexpr Assertions<"Src/utiDialogs"> asserts;

struct NodeParser {
    dialog::Tag tag;
    ParserCallback parse;
};

constexpr NodeParser nodeParsers[] = {
    {dialog::tagDialogParameters, ParseDialogParameters},
    {dialog::tagButton, ParseGraphicButton},
    {dialog::tagProgressBar, ParseGraphicProgressBar},
    {dialog::tagEdit, ParseGraphicEdit},
    {dialog::tagStaticText, ParseGraphicStaticText},
    {dialog::tagSignature, ParseGraphicSignature},
    {dialog::tagMenu, ParseGraphicMenu},
    {dialog::tagIpEdit, ParseGraphicIpEdit},
    {dialog::tagLabel, ParseGraphicLabel},
    {dialog::tagCaption, ParseGraphicCaption},
};

int32_t parseDescription(std::string_view description, uint32_t expectedType) {
    ParserNode root;
    Parser_Initialize(1, 2);
    int32_t result = Parser_GetRootNodeInBlock(description.data(),
                                               static_cast<uint32_t>(description.size()), &root);
    if (result != UTI_OK)
        return asserts.fail(result);
    result = Parser_ParseNode(&root, ParseDialog);
    if (result != UTI_OK)
        return asserts.fail(result);
    return currentDialogType == expectedType ? UTI_OK : asserts.fail(UTI_DIALOG_OTHER_TYPE);
}

} // namespace
} // namespace uti

using namespace uti;

int32_t GetDialogParameters(const char *module, uint32_t id, uint32_t expectedType) {
    const std::string_view description = getResourceString(module, id);
    if (description.data() == ResourceEmptyStr)
        return asserts.fail(UTI_DIALOG_NOT_FOUND);
    const int32_t result = parseDescription(description, expectedType);
    Resource_Release(module, id);
    return result;
}

int32_t ParseDialog(ParserNode *node) {
    return walkChildren(node, [](ParserNode &child) {
        for (const NodeParser &parser : nodeParsers) {
            if (parser.tag == child.tag)
                return Parser_ParseNode(&child, parser.parse);
        }
        return skipChild(child);
    });
}
