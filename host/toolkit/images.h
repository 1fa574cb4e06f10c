// images.h: the images of the application by their handles. Each file is loaded once, and again
// when it has changed.
#pragma once

#include "host/toolkit/image.h"

#include <filesystem>
#include <map>
#include <string>

namespace uti::host {

class Images {
public:
    // Returns the handle, or a negative code when the file cannot be loaded. The image of a file
    // keeps its handle, `next` if it has none yet.
    int32_t load(const std::string &name, int32_t next);

    // Null for an unknown handle.
    const Image *find(int32_t handle) const;
    // The name of the file without its folder; empty for an unknown handle.
    std::string name(int32_t handle) const;

private:
    struct Entry {
        std::filesystem::path path;
        std::filesystem::file_time_type changed;
        Image image;
    };
    std::map<int32_t, Entry> entries_;
};

} // namespace uti::host
