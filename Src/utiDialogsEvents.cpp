// utiDialogsEvents.cpp: what happens while a dialog's form runs: breaks, refreshes, keys, the
// edit's key hook, the list's scroll indicators; and the switches that lock or deactivate dialogs.
// The toolkit calls in here from the application's own wait.
#include "Src/utiDialogsEvents.h"

#include "Src/utiDialogsForm.h"
#include "Src/utiDialogsRecords.h"
#include "terminal.h"
#include "toolkit.h"

#include <algorithm>
#include <cstring>

constinit DialogBreakFunction NeedToBreakFunction = nullptr;
constinit DialogRefreshFunction RefreshDialogFunction = nullptr;
constinit DialogKeyFunction KeyPostProcessingFunction = nullptr;
constinit DialogKeyPressedFunction currentKeyPressedCallback = nullptr;
constinit const LabelValue *refLabelData = nullptr;
constinit int32_t UserDialogResult = 0;
constinit int32_t EndDialog = 0;
constinit uint32_t currentStartTime = 0;
constinit uint32_t dialogDeactivate = 0;

namespace uti {

namespace {

constexpr int32_t editKeyLimit = 127;

// Gives a pressed key to the application. Returns false when it breaks the dialog off.
bool postProcessKey() {
    const uint8_t key = Keyboard_GetLastKey();
    if (key == 0)
        return true;
    if (key == keyEscape)
        EndDialog = UTI_DIALOG_CANCELLED;
    UserDialogResult = KeyPostProcessingFunction(key);
    return UserDialogResult >= 0;
}

} // namespace

void installCallbacks(const DialogRequest &request) {
    if (request.needToBreak)
        NeedToBreakFunction = request.needToBreak;
    if (request.refresh)
        RefreshDialogFunction = request.refresh;
    if (request.keyPostProcessing)
        KeyPostProcessingFunction = request.keyPostProcessing;
}

void clearCallbacks() {
    NeedToBreakFunction = nullptr;
    RefreshDialogFunction = nullptr;
    KeyPostProcessingFunction = nullptr;
    refLabelData = nullptr;
}

int32_t Dialogs_EditKeyHook(int32_t widget, int32_t key) {
    if (!currentKeyPressedCallback)
        return 0;
    const int32_t most = std::clamp(igInput_GetMaxLen(widget), 0, editKeyLimit);
    char text[128 + 1] = {};
    const char *value = igInput_GetValue(widget);
    const std::size_t length = value ? strnlen(value, static_cast<std::size_t>(most)) : 0;
    std::memcpy(text, value ? value : "", length);
    text[length] = static_cast<char>(key);

    const uint32_t turn = dialogTurn;
    const int32_t accepted = currentKeyPressedCallback(key, text, most);
    if (accepted != 0 && dialogTurn == turn) {
        text[sizeof text - 1] = 0;
        igInput_SetValue(widget, text);
    }
    return 0;
}

} // namespace uti

using namespace uti;

int32_t IG_EventCallback(uint8_t *key) {
    if (currentShowType == 0)
        return IG_STATE_CONFIRMED;
    IG_AdditionalListElements();
    if (Display_CheckEvent() != 0)
        return IG_STATE_CONFIRMED;
    // A function that shows something else in place of this dialog is the last one called.
    const auto isLost = [turn = dialogTurn] { return dialogTurn != turn; };
    if (NeedToBreakFunction && NeedToBreakFunction() != 0)
        return stateBroken;
    if (!isLost() && RefreshDialogFunction && RefreshDialogFunction(&refLabelData) != 0 &&
        refLabelData)
        return stateRefresh;
    if (!isLost() && KeyPostProcessingFunction && !postProcessKey())
        return stateBroken;
    if (isLost())
        return IG_STATE_CANCELLED;

    const uint8_t code = key ? *key : 0;
    if (code != 0) {
        if (currentShowType != SHOW_UNLIMITED)
            igForm_ResetTime(currentForm);
        currentStartTime = GetTicks();
    }
    if (code == keyEscape)
        return IG_STATE_CANCELLED;
    return code == keyEnter ? IG_STATE_CONFIRMED : IG_STATE_RUNNING;
}

int32_t IG_KeyPressedCallback(int32_t display, int32_t key) {
    return IG_KeyPushCallback(display, key);
}

void IG_AdditionalListElements(void) {
    GraphicMenuEntry &menu = currentGraphicMenuParameters.entries[0];
    if (currentGraphicMenuParameters.count == 0 || menu.handle == 0 || menu.elementCount == 0)
        return;
    const int32_t up = igWidget_GetDeltaY(menu.handle, 0);
    const int32_t down = igWidget_GetDeltaY(menu.handle, 1);
    const uint32_t count = std::min<uint32_t>(menu.elementCount, DIALOG_MENU_ELEMENTS);
    for (const GraphicMenuElement &element : std::span(menu.elements, count)) {
        if (element.value == 0 || element.notFirst > 1)
            continue;
        const int32_t delta = element.notFirst == 0 ? up : down;
        igStatic_SetImage(element.handle, delta != 0 ? igImage_CreateFromFile(element.image) : 0);
    }
}

int32_t Dialogs_Lock(int32_t block) {
    igUI_BlockInput(Display_GetHandle(), block);
    return 0;
}

int32_t Dialogs_Activate(void) {
    if (dialogDeactivate == 0)
        return 0;
    const int32_t result = IG_EnableStatusLine();
    if (result >= 0)
        dialogDeactivate = 0;
    return result;
}

int32_t Dialogs_Deactivate(void) {
    if (dialogDeactivate != 0)
        return 0;
    const int32_t result = IG_DisableStatusLine();
    if (result >= 0)
        dialogDeactivate = 1;
    return result;
}
