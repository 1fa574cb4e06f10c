// files.cpp: whole files; a new content is written beside the old one and takes its place.
#include "tools/files.h"

#include <fstream>
#include <stdexcept>
#include <system_error>

#include <unistd.h>

namespace uti::tool {

namespace fs = std::filesystem;

std::optional<std::string> readFile(const fs::path &path) {
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return std::nullopt;
    std::string bytes;
    char block[4096];
    while (file.read(block, sizeof block) || file.gcount() > 0)
        bytes.append(block, static_cast<std::size_t>(file.gcount()));
    if (file.bad())
        return std::nullopt;
    return bytes;
}

std::string readInput(const fs::path &path) {
    std::optional<std::string> bytes = readFile(path);
    if (!bytes)
        throw std::runtime_error("cannot read " + path.string());
    return *std::move(bytes);
}

void writeFile(const fs::path &path, std::string_view bytes) {
    fs::path fresh = path;
    fresh += ".new" + std::to_string(getpid());
    std::ofstream file(fresh, std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();

    std::error_code failure;
    if (file)
        fs::rename(fresh, path, failure);
    if (file && !failure)
        return;
    std::error_code ignored;
    fs::remove(fresh, ignored);
    throw std::runtime_error("cannot write " + path.string());
}

void writeFileIfChanged(const fs::path &path, std::string_view bytes) {
    if (readFile(path) != bytes)
        writeFile(path, bytes);
}

} // namespace uti::tool
