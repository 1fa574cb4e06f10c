// po_file.h: a PO file as data, read and written by gettext's own library. Stands on libgettextpo.
#pragma once

#include "common/diagnostics.h"

#include <optional>
#include <string>
#include <vector>

namespace uti::tool {

struct PoEntry {
    std::optional<std::string> context; // msgctxt
    std::string original;               // msgid
    std::string translation;            // msgstr; empty when there is none
    std::string before;                 // the msgid that a fuzzy entry was made for; may be empty
    std::string comments;               // the translator's; whole lines
    std::string remarks;                // for the translator, "#."; whole lines
    std::string file;                   // "#:"
    uint32_t line = 0;
    bool isFormat = false; // c-format
    bool isFuzzy = false;
    bool isObsolete = false;
    bool isPlural = false;
    // When it was read: where it begins at the earliest, its translation, where that has ended.
    Place begin, place, end;
};

struct PoFile {
    std::string header; // "Field: value" lines; empty when there is none
    std::vector<PoEntry> entries;

    // The value of a field of the header; empty without one.
    std::string field(const char *name) const;
    void setField(const char *name, const std::string &value);
};

// The file whose text the diagnostics hold. Whatever gettext has to say of it is reported.
PoFile readPo(Diagnostics &diagnostics);

// Throws a std::runtime_error when gettext cannot write it.
std::string writePo(const PoFile &file);

} // namespace uti::tool
