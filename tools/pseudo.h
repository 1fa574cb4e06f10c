// pseudo.h: a pseudo-language, made of the first one: its texts are accented, longer and in
// brackets, so that a session under it shows what is not translated and what is cut. Stands on the
// model.
#pragma once

#include "tools/resource_source.h"

#include <string>
#include <string_view>

namespace uti::tool {

// The text, in UTF-8, with accents where the code page has them, its words 40 % longer, in
// brackets. Placeholders and line breaks stay whole.
std::string pseudoText(std::string_view text, const CodePage &codePage);

// Adds the language to a source that was read without errors. Strings that are no texts, names of
// files and dialogs are those of the first language that has them. An error when there is such a
// language already, or its strings fill more than a table holds.
void addPseudoLanguage(ResourceSource &source, const std::string &code, Diagnostics &diagnostics);

} // namespace uti::tool
