// files.h: whole files read and written by the tools. Stands on the standard library alone.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace uti::tool {

// The bytes of a file, or nothing when it cannot be read.
std::optional<std::string> readFile(const std::filesystem::path &path);

// Makes `path` hold `bytes`: nothing is written when it does already, and whoever reads it sees the
// old bytes or the new ones, never a part. False, and a message on standard error, when it cannot
// be written.
bool writeFileIfChanged(const std::filesystem::path &path, std::string_view bytes);

} // namespace uti::tool
