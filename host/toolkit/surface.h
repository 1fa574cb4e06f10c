// surface.h: colours and the pixels of the display, 16 bits each: 5 of red, 6 of green, 5 of blue.
#pragma once

#include "host/toolkit/geometry.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace uti::host {

using Color = uint16_t;

constexpr Color rgb(unsigned red, unsigned green, unsigned blue) {
    return static_cast<Color>((red & 0xF8) << 8 | (green & 0xFC) << 3 | blue >> 3);
}

// `over` laid on `under` with a coverage of 0 (only `under`) to 255 (only `over`). The three parts
// of a colour are spread over one word, far enough apart to be weighed together.
constexpr Color mix(Color over, Color under, unsigned coverage) {
    constexpr uint32_t parts = 0x07E0F81F;
    const uint32_t weight = (coverage + 4) >> 3; // 0 to 32
    const uint32_t upper = (over | uint32_t{over} << 16) & parts;
    const uint32_t lower = (under | uint32_t{under} << 16) & parts;
    const uint32_t mixed = (upper * weight + lower * (32 - weight)) >> 5 & parts;
    return static_cast<Color>(mixed | mixed >> 16);
}

// What an image library makes of a colour: the full range of 8 bits a part.
constexpr uint32_t toRgb24(Color color) {
    const uint32_t red = color >> 11, green = color >> 5 & 0x3F, blue = color & 0x1F;
    return (red << 3 | red >> 2) << 16 | (green << 2 | green >> 4) << 8 | (blue << 3 | blue >> 2);
}

class Surface {
public:
    explicit Surface(Size size) : size_(size), pixels_(size.area()) {}

    Size size() const { return size_; }
    Rect area() const { return {0, 0, size_.width, size_.height}; }
    Color *row(int y) { return pixels_.data() + size_.index(0, y); }
    const Color *row(int y) const { return pixels_.data() + size_.index(0, y); }

private:
    Size size_;
    std::vector<Color> pixels_;
};

} // namespace uti::host
