// utiDialogsForm.h: from parameter records to a live form on the toolkit.
#pragma once

#include "uti.h"

#include <algorithm>
#include <span>
#include <string_view>

namespace uti {

// The one form of dialogs and pictures; above 0 when there is one.
extern int32_t currentForm;

// The entries in use of a control record.
template <class Parameters>
auto entriesOf(Parameters &parameters) {
    return std::span(parameters.entries, std::min<uint32_t>(parameters.count, DIALOG_CONTROLS));
}

// Calls `visit` with every control record.
template <class Visit>
void forEachControlRecord(Visit visit) {
    visit(currentGraphicStaticTextParameters);
    visit(currentGraphicButtonParameters);
    visit(currentGraphicSignatureParameters);
    visit(currentGraphicMenuParameters);
    visit(currentGraphicEditParameters);
    visit(currentGraphicLabelParameters);
    visit(currentGraphicProgressBarParameters);
    visit(currentGraphicIpEditParameters);
}

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

// Frees the last dialog's texts and clears all records.
void Dialogs_ResetControls();

// Gives all controls the request's colours; a pair of equal colours leaves the description's.
void Dialogs_OverrideColors(ColorSet colors);

// A heap copy with every pair of backslash and n made a line feed; null for an empty text or when
// memory is short. The caller owns it.
char *Dialogs_CopyText(std::string_view text);

// Puts such a copy into a text field of a record.
void setValue(char *&valueBuffer, std::string_view text);

// Frees `text` at the next reset: what the toolkit may still read but no record owns.
void keepUntilReset(char *text);

// Gives the labels their values by name. Returns 0, UTI_DIALOG_NULL for null.
int32_t Dialogs_FillLabels(const LabelValue *values);

// Replaces the present form by a new one. Returns 0, the negative display handle, or the toolkit's
// code minus 5000.
int32_t IG_CreateForm(const char *caption, uint32_t transparency, uint32_t positionType,
                      uint32_t border);

// Creates all controls but menus. A control that cannot be created ends the creation, not the
// dialog. Returns 0.
int32_t IG_CreateControls();

} // namespace uti
