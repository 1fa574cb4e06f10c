// toolkit.cpp: the toolkit of a build without one. Where cairo or FreeType are missing, as in most
// 32-bit builds, programs link all the same, and whatever they ask of the display is refused: they
// run as on a terminal whose display is broken.
#include "toolkit.h"
#include "host/terminal/copy_text.h"
#include "terminal.h"

// Every handle is unknown.
#pragma GCC diagnostic ignored "-Wunused-parameter"
#define ROW(name, parameters, ...)                                                                 \
    int32_t name parameters {                                                                      \
        return IG_ERROR_HANDLE;                                                                    \
    }
#include "common/toolkit_functions.h"

int32_t igUI_SetKeyScheme(int32_t, int32_t, char *const[12]) {
    return IG_ERROR_HANDLE;
}

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
