// image.h: pictures of the application, loaded from PNG files and kept as the display's own pixels,
// and saving what the display shows. Stands on cairo.
#pragma once

#include "host/toolkit/surface.h"

#include <optional>
#include <string>
#include <vector>

namespace uti::host {

struct Image {
    Size size;
    std::vector<Color> pixels;
    std::vector<uint8_t> coverage; // empty when every pixel covers its ground wholly
};

// Loads a PNG file of up to 4096 x 4096 pixels.
std::optional<Image> loadImage(const std::string &path);

// Saves as a PNG file. False when that fails; a picture that was there before is then still there.
bool saveImage(const Surface &surface, const std::string &path);

// Saves coverages as a PNG file, black on white.
bool saveCoverage(const std::vector<uint8_t> &coverage, Size size, const std::string &path);

} // namespace uti::host
