// utiDialogsRecords.h: the parameter records of dialogs as one: reset, what a request overrides in
// them, and the texts that they own.
#pragma once

#include "uti.h"

#include <algorithm>
#include <span>
#include <string_view>

namespace uti {

// Goes on whenever the records are cleared or the form is taken down: a run that finds another turn
// than the one it began in has lost its dialog to another.
extern uint32_t dialogTurn;

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

// Clears all records. The texts of the last dialog go with them, but those that its form may still
// read wait for `freeLastTexts`.
void Dialogs_ResetControls();

// Frees the texts of the dialog before, whose form is gone.
void freeLastTexts();

// Leaves them to its form, which the toolkit could not delete and goes on drawing.
void leaveLastTexts();

// Gives all controls the request's colours; a pair of equal colours leaves the description's.
void Dialogs_OverrideColors(ColorSet colors);

// Gives the labels their values by name. Returns 0, UTI_DIALOG_NULL for null.
int32_t Dialogs_FillLabels(const LabelValue *values);

// Makes a line feed of every pair of backslash and n among `length` characters, the rest moving up
// and zeros coming in behind. Returns the new length.
std::size_t replaceLineFeeds(char *text, std::size_t length);

// A heap copy with every pair of backslash and n made a line feed; null for an empty text or when
// memory is short. The caller owns it.
char *Dialogs_CopyText(std::string_view text);

// Puts such a copy into a text field of a record that no widget reads yet.
void setValue(char *&valueBuffer, std::string_view text);

// Owns `text`, which the toolkit may read but no record frees, like a value of the records.
void keepText(char *text);

} // namespace uti
