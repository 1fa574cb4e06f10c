// toolkit.cpp: the toolkit of a build without one. Where cairo or FreeType are missing, as in most
// 32-bit builds, programs link all the same, and whatever they ask of the display is refused: they
// run as on a terminal whose display is broken.
#include "toolkit.h"
#include "host/terminal/copy_text.h"
#include "terminal.h"

// Every handle is unknown. The compiler holds the rows against the header.
#define REFUSE(name, ...)                                                                          \
    int32_t name(__VA_ARGS__) {                                                                    \
        return IG_ERROR_HANDLE;                                                                    \
    }

REFUSE(igUI_Add, int32_t, int32_t)
REFUSE(igUI_Del, int32_t, int32_t)
REFUSE(igUI_Show, int32_t, int32_t)
REFUSE(igUI_ShowExt, int32_t, int32_t, IgEventCallback)
REFUSE(igUI_SetKeyScheme, int32_t, int32_t, char *const[12])
REFUSE(igUI_SetFileFont, int32_t, int32_t, const char *)
REFUSE(igUI_SetKeyboard, int32_t, IgKeyboardHandler)
REFUSE(igUI_BlockInput, int32_t, int32_t)
REFUSE(igUI_GetWidth, int32_t)
REFUSE(igUI_GetHeight, int32_t)
REFUSE(igUI_SetBackgroundImage, int32_t, int32_t)
REFUSE(igForm_Create, const char *, int32_t)
REFUSE(igChildForm_Create, int16_t, int16_t, int16_t, int16_t, const char *, int32_t)
REFUSE(igForm_SetOption, int32_t, uint32_t)
REFUSE(igForm_ClearOption, int32_t, uint32_t)
REFUSE(igForm_SetColors, int32_t, uint16_t, uint16_t)
REFUSE(igForm_SetHeaderColors, int32_t, uint16_t, uint16_t)
REFUSE(igForm_SetHeaderFont, int32_t, uint16_t)
REFUSE(igForm_SetHeaderHeight, int32_t, int16_t)
REFUSE(igForm_SetHeaderJustify, int32_t, uint32_t)
REFUSE(igForm_Add, int32_t, int32_t)
REFUSE(igForm_Reset, int32_t)
REFUSE(igForm_SetFocused, int32_t, int32_t)
REFUSE(igForm_SetTimeOut, int32_t, uint32_t)
REFUSE(igForm_ResetTime, int32_t)
REFUSE(igForm_GetClientWidth, int32_t)
REFUSE(igForm_GetClientHeight, int32_t)
REFUSE(igWidget_GetType, int32_t)
REFUSE(igWidget_SetBorder, int32_t, uint32_t)
REFUSE(igWidget_SetJustify, int32_t, uint32_t)
REFUSE(igWidget_SetTransparency, int32_t, uint32_t)
REFUSE(igWidget_SetFont, int32_t, uint16_t)
REFUSE(igWidget_SetActiveColor, int32_t, uint16_t, uint16_t)
REFUSE(igWidget_SetPassiveColor, int32_t, uint16_t, uint16_t)
REFUSE(igWidget_SetActiveBackImage, int32_t, int32_t)
REFUSE(igWidget_SetPassiveBackImage, int32_t, int32_t)
REFUSE(igWidget_SetKeyScheme, int32_t, int32_t)
REFUSE(igStatic_Create, int16_t, int16_t, int16_t, int16_t, const char *, int32_t)
REFUSE(igStatic_SetImage, int32_t, int32_t)
REFUSE(igButton_Create, int16_t, int16_t, int16_t, int16_t, const char *, int32_t, uint8_t)
REFUSE(igButton_SetOption, int32_t, uint32_t)
REFUSE(igInput_Create, int16_t, int16_t, int16_t, int16_t, uint16_t, uint32_t)
REFUSE(igInput_SetRadix, int32_t, uint8_t)
REFUSE(igInput_SetHideSymbol, int32_t, uint8_t)
REFUSE(igInput_SetValue, int32_t, const char *)
REFUSE(igInput_GetMaxLen, int32_t)
REFUSE(igInput_SetControlCodes, int32_t, uint8_t, uint8_t, uint8_t, uint8_t)
REFUSE(igInput_SetUserFunc, int32_t, IgInputFunction, int32_t, int32_t, int32_t)
REFUSE(igMultiLine_Create, int16_t, int16_t, int16_t, int16_t, uint32_t, const char *)
REFUSE(igMultiLine_SetMaxLen, int32_t, uint16_t)
REFUSE(igMultiLine_SetValue, int32_t, const char *)
REFUSE(igPatternInput_Create, int16_t, int16_t, int16_t, int16_t, uint32_t, const char *)
REFUSE(igPatternInput_SetMaxLen, int32_t, uint16_t)
REFUSE(igPatternInput_SetPatternActiveColor, int32_t, uint16_t, uint16_t)
REFUSE(igPatternInput_SetPatternPassiveColor, int32_t, uint16_t, uint16_t)
REFUSE(igPatternInput_SetFillSymbol, int32_t, char)
REFUSE(igIPInput_Create, int16_t, int16_t, int16_t, int16_t, uint32_t)
REFUSE(igIPInput_SetIPtext, int32_t, const char *)
REFUSE(igMenuBox_Create, int16_t, int16_t, int16_t, int16_t, uint32_t, uint32_t)
REFUSE(igMenuBox_AddItemExt2, int32_t, const IgMenuItem *, int32_t, uint16_t)
REFUSE(igMenuBox_SetItemsTransparency, int32_t, uint32_t)
REFUSE(igMenuBox_SetItemsActiveColor, int32_t, uint16_t, uint16_t)
REFUSE(igMenuBox_SetItemsPassiveColor, int32_t, uint16_t, uint16_t)
REFUSE(igMenuBox_SetItemsActiveBorder, int32_t, uint32_t)
REFUSE(igMenuBox_SetControlCodes, int32_t, uint8_t, uint8_t, uint8_t, uint8_t)
REFUSE(igMenuBox_SetRowDelta, int32_t, int32_t)
REFUSE(igMenuBox_SetAccelFont, int32_t, uint16_t)
REFUSE(igMenuBox_GetSelected, int32_t)
REFUSE(igProgress_Create, int16_t, int16_t, int16_t, int16_t)
REFUSE(igProgress_SetValue, int32_t, int32_t)
REFUSE(igSignBox_Create, int16_t, int16_t, int16_t, int16_t)
REFUSE(igSignBox_SetLineWidth, int32_t, int32_t)
REFUSE(igSignBox_SaveData, int32_t, const char *)
REFUSE(IG_EnableStatusLine, void)
REFUSE(IG_DisableStatusLine, void)

int32_t igUI_IsModal(void) {
    return 0;
}

int32_t igForm_GetState(int32_t) {
    return IG_STATE_CANCELLED;
}

int32_t igWidget_GetDeltaY(int32_t, int32_t) {
    return 0;
}

int32_t igImage_CreateFromFile(const char *fileName) {
    return fileName && *fileName ? int32_t{IG_ERROR_FILE} : 0;
}

const char *igInput_GetValue(int32_t) {
    return "";
}

const char *igMultiLine_GetValue(int32_t) {
    return "";
}

int32_t igIPInput_GetIPtext(int32_t, char *buffer, uint32_t size) {
    uti::host::copyText("", buffer, size);
    return IG_ERROR_HANDLE;
}

void IG_UpdateStatusLine(void) {}

// Images are named as the application names them.
int32_t IG_GetFullImagePath(const char *name, char *buffer, uint32_t capacity) {
    if (name && *name)
        uti::host::copyText(name, buffer, capacity);
    return 0;
}

int32_t IG_KeyPushCallback(int32_t, int32_t) {
    return 0;
}

int32_t Display_GetHandle(void) {
    return IG_ERROR_HANDLE;
}

int32_t Display_CheckEvent(void) {
    return 0;
}

void Display_SetCursorPosition(uint8_t, uint8_t) {}

uint8_t Keyboard_GetLastKey(void) {
    return 0;
}

void Keyboard_Reset(void) {}
