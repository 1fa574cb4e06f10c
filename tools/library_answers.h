// library_answers.h: what the library itself reads from a resource file, for tools that must not
// believe their own reading. Stands on the library and the file system of the desktop.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace uti::tool {

// Loads the bytes of a file as a module, in a folder of its own, which is the present one as long
// as the object lives. One at a time; no module of that name may be loaded.
class LibraryAnswers {
public:
    static constexpr const char *module = "uti_answers";

    explicit LibraryAnswers(std::string_view bytes);
    ~LibraryAnswers();
    LibraryAnswers(const LibraryAnswers &) = delete;
    LibraryAnswers &operator=(const LibraryAnswers &) = delete;

    int32_t result() const { return result_; } // of the loading
    std::string text(const std::string &language, uint16_t id) const;

private:
    std::filesystem::path before_;
    std::filesystem::path folder_;
    int32_t result_;
};

} // namespace uti::tool
