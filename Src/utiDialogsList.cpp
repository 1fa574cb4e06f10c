// utiDialogsList.cpp: the dialog in which an item of a menu is chosen. Stands on the road of all
// dialogs; the menu and its scroll indicators are made here.
#include "Src/utiDialogsEvents.h"
#include "Src/utiDialogsForm.h"
#include "Src/utiDialogsModal.h"
#include "Src/utiDialogsRecords.h"
#include "Src/utiDialogsTerminal.h"
#include "terminal.h"
#include "toolkit.h"

namespace uti {
namespace {

constexpr Assertions<"Src/utiDialogs"> asserts;

constexpr DialogKind list{.type = DIALOG_LIST};

constexpr std::size_t imagePathSize = 128;

uint32_t menuStyle(const GraphicMenuEntry &entry) {
    uint32_t style = IG_MENU_CONFIRM | IG_MENU_IMAGES | IG_MENU_WRAP;
    if (entry.style != 0)
        style |= IG_MENU_DIGITS | IG_MENU_SHOW_DIGITS;
    if (entry.styleFlag != 0)
        style |= IG_MENU_SCROLL_BAR;
    return style;
}

struct ListSteps final : DialogSteps {
    static constexpr std::size_t mostAccelerators = 9;
    std::span<const ListItem> items;
    int32_t menu = 0;

    explicit ListSteps(std::span<const ListItem> wanted) : items(wanted) {}

    static GraphicMenuEntry &entry() { return currentGraphicMenuParameters.entries[0]; }

    int32_t afterDescription() override {
        return currentGraphicMenuParameters.count == 0 ? UTI_DIALOG_NOT_FOUND : UTI_OK;
    }

    int32_t addItems() const {
        for (const ListItem &item : items) {
            char path[imagePathSize] = {};
            IG_GetFullImagePath(item.imageName, path, sizeof path);
            const int32_t image = igImage_CreateFromFile(path);
            const IgMenuItem record{item.word1, item.word2, item.word3, item.flag};
            const int32_t result = igMenuBox_AddItemExt2(menu, &record, image, entry().font);
            if (result < 0)
                return toolkitFailure(result);
        }
        return UTI_OK;
    }

    void dressMenu() const {
        const ColorSet &colors = entry().colors;
        igMenuBox_SetItemsTransparency(menu, entry().transparency);
        igWidget_SetBorder(menu, entry().border);
        setColors(menu, colors, igWidget_SetActiveColor, igWidget_SetPassiveColor);
        setColors(menu, colors, igMenuBox_SetItemsActiveColor, igMenuBox_SetItemsPassiveColor);
        igMenuBox_SetItemsActiveBorder(menu, 1);
    }

    void setKeys() const {
        const uint8_t(&keys)[4] = entry().keys;
        const bool scrolls = traitsOf(Terminal_GetType()).scrollsByKey;
        const uint8_t up = keys[2] != 0 ? keys[2] : scrolls ? IG_KEY_UP : 0;
        const uint8_t down = keys[3] != 0 ? keys[3] : scrolls ? IG_KEY_DOWN : 0;
        if (keys[0] != 0 || keys[1] != 0 || up != 0 || down != 0)
            igMenuBox_SetControlCodes(menu, up, down, keys[0], keys[1]);
    }

    void setRows() const {
        const bool narrow =
            entry().style != 0 && entry().accelFontMode == 1 && items.size() <= mostAccelerators;
        if (entry().option == 0)
            igMenuBox_SetRowDelta(menu, narrow ? 4 : 8);
        if (entry().accelFontMode <= 2)
            igMenuBox_SetAccelFont(menu, entry().accelFontMode == 0
                                             ? uint16_t{3}
                                             : static_cast<uint16_t>(entry().accelFontMode));
    }

    static int32_t addElements() {
        for (GraphicMenuElement &element : std::span(entry().elements, entry().elementCount)) {
            const Frame at = frameOf(element.area);
            const int32_t handle = igStatic_Create(at.x, at.y, at.width, at.height, nullptr,
                                                   igImage_CreateFromFile(element.image));
            if (handle < 0)
                return toolkitFailure(handle);
            element.handle = handle;
            igWidget_SetBorder(handle, 0);
            igWidget_SetTransparency(handle, 1);
            const int32_t added = addToForm(handle);
            if (added < 0)
                return added;
        }
        return UTI_OK;
    }

    int32_t afterControls() override {
        Rectangle &area = entry().area;
        if (area.left == 0 && area.top == 0 && area.right == 0 && area.bottom == 0) {
            area.right = static_cast<uint16_t>(igForm_GetClientWidth(currentForm));
            area.bottom = static_cast<uint16_t>(igForm_GetClientHeight(currentForm));
        }
        const Frame at = frameOf(area);
        menu = igMenuBox_Create(at.x, at.y, at.width, at.height, entry().option != 0 ? 1 : 0,
                                menuStyle(entry()));
        if (menu < 0)
            return toolkitFailure(menu);
        const int32_t filled = addItems();
        if (filled < 0)
            return filled;
        dressMenu();
        setKeys();
        setRows();
        const int32_t added = addToForm(menu);
        if (added < 0)
            return added;
        const int32_t indicated = addElements();
        if (indicated < 0)
            return indicated;

        entry().handle = menu;
        igForm_Reset(currentForm);
        IG_AdditionalListElements();
        return UTI_OK;
    }

    int32_t run() override {
        const int32_t result = Dialogs_RunForm(SHOW_WITH_TIMEOUT);
        if (result < 0)
            return result;
        const int32_t selected = igMenuBox_GetSelected(menu);
        return selected < 0 ? toolkitFailure(selected) : selected - 1;
    }
};

} // namespace
} // namespace uti

using namespace uti;

int32_t DialogList_DoModal(const ListRequest *request) {
    if (!request)
        return asserts.fail(UTI_DIALOG_NOT_FOUND);
    const std::size_t count = request->items ? request->itemCount : 0;
    ListSteps steps({request->items, count});
    return performDialog(request->dialog, list, steps);
}
