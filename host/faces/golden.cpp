// golden.cpp: comparing pixel by pixel. Pictures and display have the same colours, so that what
// was saved comes back as it was.
#include "host/faces/golden.h"

#include "host/toolkit/painter.h"

namespace uti::host {

namespace {

constexpr Color ground = rgb(0x80, 0x80, 0x80), paper = rgb(0xFF, 0xFF, 0xFF),
                mark = rgb(0xE0, 0x00, 0x00), frame = rgb(0x00, 0x60, 0xE0);

Color pixelOf(const Image &image, int x, int y) {
    return image.pixels[image.size.index(x, y)];
}

template <class Visit>
void forEachDifference(const Image &golden, const Surface &display, Visit visit) {
    const Rect both = display.area().intersected({0, 0, golden.size.width, golden.size.height});
    for (int y = 0; y < both.height; ++y)
        for (int x = 0; x < both.width; ++x)
            if (display.row(y)[x] != pixelOf(golden, x, y))
                visit(x, y);
}

} // namespace

Difference differenceOf(const Image &golden, const Surface &display) {
    Difference difference;
    forEachDifference(golden, display, [&](int x, int y) {
        ++difference.pixels;
        difference.box = difference.box.united({x, y, 1, 1});
    });
    return difference;
}

Surface drawDifference(const Image &golden, const Surface &display) {
    constexpr int gap = 8;
    const Size size = display.size();
    const Point second{golden.size.width + gap, 0}, third{second.x + size.width + gap, 0};
    Surface sheet({third.x + size.width, std::max(golden.size.height, size.height)});
    Painter painter(sheet, sheet.area());
    painter.fill(sheet.area(), ground);
    painter.image({}, golden);
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            const Color color = display.row(y)[x];
            sheet.row(y)[second.x + x] = color;
            sheet.row(y)[third.x + x] = mix(paper, color, 190);
        }
    forEachDifference(golden, display, [&](int x, int y) { sheet.row(y)[third.x + x] = mark; });
    const Rect box = differenceOf(golden, display).box;
    if (!box.empty())
        painter.within(display.area().moved(third)).outline(box.inset(-2), 0, 1, frame);
    return sheet;
}

} // namespace uti::host
