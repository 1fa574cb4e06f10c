// library_answers.cpp: a module in a temporary folder, asked string by string.
#include "tools/library_answers.h"

#include "Src/utiResource.h"
#include "tools/files.h"

#include <cstdlib>

namespace uti::tool {

namespace {

namespace fs = std::filesystem;

} // namespace

LibraryAnswers::LibraryAnswers(std::string_view bytes) : before_(fs::current_path()) {
    std::string name = fs::temp_directory_path() / "uti.XXXXXX";
    if (!mkdtemp(name.data()))
        throw std::runtime_error("cannot make " + name);
    folder_ = name;
    // Other modules in place of this one, and a log of its failures, are not asked for.
    unsetenv("EXTRES");
    unsetenv("EXT_DEBUG");
    writeFile(folder_ / (std::string(module) + ".res"), bytes);
    fs::current_path(folder_);
    result_ = Resource_Initialize(module);
}

LibraryAnswers::~LibraryAnswers() {
    std::error_code ignored;
    Resource_Close(module);
    fs::current_path(before_, ignored);
    fs::remove_all(folder_, ignored);
}

std::string LibraryAnswers::text(const std::string &language, uint16_t id) const {
    Resource_SetLanguage(language.c_str());
    std::string answer(getResourceString(module, id));
    Resource_Release(module, id);
    return answer;
}

} // namespace uti::tool
