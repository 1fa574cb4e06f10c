// utiDialogsImages.cpp: full-screen pictures, the background image, and where a description places
// the signal indicator. Shares the dialogs' one form.
#include "Src/assertions.h"
#include "Src/heap.h"
#include "Src/utiDialogsForm.h"
#include "Src/utiDialogsRecords.h"
#include "terminal.h"
#include "toolkit.h"

#include <utility>

namespace uti {
namespace {

constexpr Assertions<"Src/utiDialogs"> asserts;

constexpr int32_t pictureNotSettled = -2102; // passed on without the offset, like a bad image

int32_t pictureFailure(int32_t code) {
    return code == UTI_IMAGE_NOT_VALID || code == pictureNotSettled ? code : toolkitFailure(code);
}

void setPictureStyle(const char *caption) {
    igForm_ClearOption(currentForm, IG_FORM_HEADER | IG_FORM_CLOSE_MARK | IG_FORM_SHADOW);
    if (!caption) {
        igForm_SetOption(currentForm, IG_FORM_TRANSPARENT | IG_FORM_FRAMELESS);
        return;
    }
    igForm_SetHeaderColors(currentForm, headerForeground, headerBackground);
    igForm_SetOption(currentForm, IG_FORM_TRANSPARENT | IG_FORM_FRAMELESS | IG_FORM_HEADER);
}

// Puts the picture on the form and the form on the display. Returns 0 or the first negative code.
int32_t addPicture(int32_t display, int16_t x, int16_t y, const char *fileName) {
    int32_t code = 0;
    const auto fails = [&](int32_t result) { return (code = result) < 0; };
    int32_t width, height, image, picture;
    if (fails(width = igUI_GetWidth(display)) || fails(height = igUI_GetHeight(display)) ||
        fails(image = igImage_CreateFromFile(fileName)))
        return code;
    if (fails(picture = igStatic_Create(x, y, static_cast<int16_t>(width - x),
                                        static_cast<int16_t>(height - y), nullptr, image)))
        return code;
    if (fails(igWidget_SetBorder(picture, 0)) || fails(igWidget_SetTransparency(picture, 1)) ||
        fails(igWidget_SetJustify(picture, IG_JUSTIFY_LEFT | IG_JUSTIFY_TOP)) ||
        fails(igForm_Add(currentForm, picture)) || fails(igForm_Reset(currentForm)) ||
        fails(igUI_Add(display, currentForm)))
        return code;
    return UTI_OK;
}

} // namespace
} // namespace uti

using namespace uti;

int32_t DrawImage_IG(int16_t x, int16_t y, const char *fileName, const char *caption) {
    if (dialogDeactivate != 0)
        return UTI_OK;
    const int32_t display = Display_GetHandle();
    if (display < 0)
        return pictureFailure(display);
    removeForm(display);
    if (!fileName || File_IsValid(fileName) == 0)
        return UTI_IMAGE_NOT_VALID;
    currentForm = igForm_Create(caption, 0);
    if (currentForm < 0)
        return toolkitFailure(currentForm);

    setPictureStyle(caption);
    const int32_t added = addPicture(display, x, y, fileName);
    if (added < 0)
        return pictureFailure(added);
    IG_DisableStatusLine();
    const int32_t shown = igUI_Show(display, currentForm);
    IG_EnableStatusLine();
    return shown < 0 ? pictureFailure(shown) : UTI_OK;
}

int32_t SetBackgroundImage_IG(const char *fileName) {
    const int32_t display = Display_GetHandle();
    if (display < 0)
        return display;
    return igUI_SetBackgroundImage(display, igImage_CreateFromFile(fileName));
}

int32_t GetSignalPosition(const DialogRequest *request) {
    if (!request)
        return -1;
    // The records belong to the last dialog, whose form may go on reading its texts: they are kept
    // aside while the description fills cleared ones.
    std::size_t size = 0;
    forEachControlRecord([&](const auto &record) { size += sizeof record; });
    const HeapPointer<char> kept = allocateBytes(size);
    if (!kept)
        return asserts.fail(-1);
    char *place = kept.get();
    forEachControlRecord([&](auto &record) {
        std::memcpy(std::exchange(place, place + sizeof record), &record, sizeof record);
        std::memset(&record, 0, sizeof record);
    });
    const GraphicCaption caption = std::exchange(currentGraphicCaptionParameters, {});

    const int32_t result = GetDialogParameters(request->module, request->resourceId, 0);

    place = kept.get();
    forEachControlRecord([&](auto &record) {
        std::memcpy(&record, std::exchange(place, place + sizeof record), sizeof record);
    });
    currentGraphicCaptionParameters = caption;
    return result == UTI_OK ? static_cast<int16_t>(currentSignalParameters.area.left) : -1;
}

int32_t Icons_Show(void) {
    return UTI_DIALOG_NO_ICONS;
}
