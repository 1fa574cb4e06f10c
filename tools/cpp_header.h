// cpp_header.h: the strings of a module as typed constants for uti.hpp: what the wording of each
// takes in every language. Stands on the resource model and the library's own reading of wordings.
#pragma once

#include "tools/resource_source.h"

#include <string>
#include <string_view>

namespace uti::tool {

// What the application gives a dialog, as a comment above its id: the texts that the source names
// for it. Empty for a string, and for a dialog without such texts.
std::string textsComment(const ResourceSource &source, const StringName &name,
                         std::string_view prefix);

// The declarations of a module's name and strings, each name behind `prefix`.
std::string writeCppConstants(const ResourceSource &source, std::string_view prefix);

} // namespace uti::tool
