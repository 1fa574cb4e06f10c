// image_path.cpp: the folder in UTI_IMAGES.
#include "host/terminal/image_path.h"

#include "host/terminal/notice.h"

#include <cstdlib>

namespace uti::host {

std::filesystem::path imagePath(const std::string &name) {
    std::error_code error;
    const char *folder = std::getenv("UTI_IMAGES");
    if (!folder || !*folder || std::filesystem::exists(name, error))
        return name;
    if (!std::filesystem::is_directory(folder, error))
        notice(std::string("UTI_IMAGES=") + folder + " is no folder");
    return std::filesystem::path(folder) / name;
}

} // namespace uti::host
