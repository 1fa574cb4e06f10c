// image_path.h: where the application's pictures are found on a PC. Stands on the file system.
#pragma once

#include <filesystem>
#include <string>

namespace uti::host {

// The file of an image: the name itself, or below the folder in UTI_IMAGES when it is not to be
// found from here.
std::filesystem::path imagePath(const std::string &name);

} // namespace uti::host
