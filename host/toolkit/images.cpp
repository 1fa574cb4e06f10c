// images.cpp: the table of loaded image files. Stands on the file system.
#include "host/toolkit/images.h"

#include "host/terminal/image_path.h"
#include "host/terminal/notice.h"
#include "toolkit.h"

namespace uti::host {

int32_t Images::load(const std::string &name, int32_t next) {
    const std::filesystem::path path = imagePath(name);
    std::error_code error;
    const auto changed = std::filesystem::last_write_time(path, error);
    if (error) {
        notice("the image " + path.string() + " is missing");
        return IG_ERROR_FILE;
    }

    for (auto &[handle, entry] : entries_) {
        if (entry.path != path)
            continue;
        if (entry.changed == changed)
            return handle;
        next = handle;
        break;
    }
    std::optional<Image> image = loadImage(path);
    if (!image) {
        notice("the image " + path.string() + " is no PNG file of up to 4096 x 4096 pixels");
        return IG_ERROR_FILE;
    }
    entries_[next] = {path, changed, *std::move(image)};
    return next;
}

const Image *Images::find(int32_t handle) const {
    const auto found = entries_.find(handle);
    return found == entries_.end() ? nullptr : &found->second.image;
}

std::string Images::name(int32_t handle) const {
    const auto found = entries_.find(handle);
    return found == entries_.end() ? "" : found->second.path.filename().string();
}

} // namespace uti::host
