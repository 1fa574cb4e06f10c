// finding_json.h: findings for other programs, as one JSON array; FindingPrinter is for persons.
#pragma once

#include "common/diagnostics.h"

#include <ostream>
#include <span>

namespace uti::tool {

// Writes all findings about the files: file, line and column from 1 and length in characters (none
// when it is about the file as a whole), severity, rule (none of a plain mistake), text, notes.
void writeFindingsAsJson(std::span<const Diagnostics *const> files, std::ostream &out);

} // namespace uti::tool
