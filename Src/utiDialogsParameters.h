// utiDialogsParameters.h: the one loop that reads the nodes of a dialog description into records,
// by the tables of utiDialogFormat.h, and the line feeds of dialog texts.
#pragma once

#include "Src/utiDialogFormat.h"

namespace uti {

// Reads one child into the field that a row gives it, or skips it when no row has its tag. Returns
// 0 or the error of the read.
int32_t readField(ParserNode &child, std::span<const dialog::Row> rows, void *record);

// Reads all children of a node. The first error ends it; what was filled before stays.
int32_t readRecord(ParserNode *node, std::span<const dialog::Row> rows, void *record);

// Makes a line feed of every pair of backslash and n among `length` characters, the rest moving up
// and zeros coming in behind. Returns the new length.
std::size_t replaceLineFeeds(char *text, std::size_t length);

// The font slot of a font name; a name that is no slot's is loaded as a font file.
uint16_t Dialogs_GetFontIndex(const char *fontName);

} // namespace uti
