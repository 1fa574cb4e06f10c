// files.h: whole files read and written by the tools. What fails is thrown as a std::runtime_error
// with the sentence that main prints. Stands on the standard library alone.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace uti::tool {

// The bytes of a file, or nothing when it cannot be read.
std::optional<std::string> readFile(const std::filesystem::path &path);

// The bytes of a file that a command was given.
std::string readInput(const std::filesystem::path &path);

// Makes `path` hold `bytes`: whoever reads it sees the old bytes or the new ones, never a part.
void writeFile(const std::filesystem::path &path, std::string_view bytes);

// The same, but a file that holds the bytes already is left alone.
void writeFileIfChanged(const std::filesystem::path &path, std::string_view bytes);

} // namespace uti::tool
