// new.h: the files of the application that `uti new` makes; the build takes them from tools/new.
#pragma once

#include <span>
#include <string_view>

namespace uti::tool {

struct NewFile {
    std::string_view name;
    std::string_view text;
};

extern const std::span<const NewFile> newFiles;

} // namespace uti::tool
