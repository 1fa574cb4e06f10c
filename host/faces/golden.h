// golden.h: the display held against a golden picture, the one that shows how it has to look.
// Stands on the toolkit's images.
#pragma once

#include "host/toolkit/image.h"

namespace uti::host {

// The pixels in which the display is not like its golden picture.
struct Difference {
    int pixels = 0;
    Rect box; // around all of them
};

// Of the part that both have, when they are of different sizes.
Difference differenceOf(const Image &golden, const Surface &display);

// Side by side the golden picture, the display, and the display faded with the pixels that differ
// in red and a frame around them.
Surface drawDifference(const Image &golden, const Surface &display);

} // namespace uti::host
