// utiDialogsFields.h: the one loop that reads the nodes of a dialog description into records, by
// the tables of utiDialogFormat.h.
#pragma once

#include "Src/utiDialogFormat.h"
#include "Src/utiTLVParser.h"

namespace uti {

// Reads one child into the field that a row gives it, or skips it when no row has its tag. Returns
// 0 or the error of the read.
int32_t readField(Reader &reader, ParserNode &child, std::span<const dialog::Row> rows,
                  void *record);

// Reads all children of a node. The first error ends it; what was filled before stays.
int32_t readRecord(Reader &reader, const ParserNode *node, std::span<const dialog::Row> rows,
                   void *record);

inline int32_t readRecord(const ParserNode *node, std::span<const dialog::Row> rows, void *record) {
    Reader reader;
    return readRecord(reader, node, rows, record);
}

// Reads an area node.
int32_t readArea(Reader &reader, const ParserNode &node, Rectangle *area);

} // namespace uti
