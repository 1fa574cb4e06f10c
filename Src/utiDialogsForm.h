// utiDialogsForm.h: from parameter records to the one live form on the toolkit.
#pragma once

#include "uti.h"

namespace uti {

// The one form of dialogs and pictures; above 0 when there is one.
extern int32_t currentForm;

// Place and size of a widget.
struct Frame {
    int16_t x;
    int16_t y;
    int16_t width;
    int16_t height;
};
Frame frameOf(const Rectangle &area);

// The library's own colours of form headers.
inline constexpr uint16_t headerForeground = 0xF79E;
inline constexpr uint16_t headerBackground = 0x2DBD;

// A toolkit code as the result of a dialog call.
constexpr int32_t toolkitFailure(int32_t code) {
    return code - DIALOG_TOOLKIT_OFFSET;
}

// Gives a widget its active colours and then its passive ones by two operations of the toolkit.
using SetColors = int32_t (*)(int32_t handle, uint16_t foreground, uint16_t background);
void setColors(int32_t handle, const ColorSet &colors, SetColors setActive, SetColors setPassive);

// Adds a widget to the form. Returns 0 or the toolkit's code minus 5000.
int32_t addToForm(int32_t handle);

// Takes the form down, if there is one, and frees the texts that it read.
void removeForm(int32_t display);

// Replaces the present form by a new one. Returns 0, the negative display handle, or the toolkit's
// code minus 5000.
int32_t IG_CreateForm(const char *caption, uint32_t transparency, uint32_t positionType,
                      uint32_t border);

// Creates all controls but menus. A control that cannot be created ends the creation, not the
// dialog. Returns 0.
int32_t IG_CreateControls();

} // namespace uti
