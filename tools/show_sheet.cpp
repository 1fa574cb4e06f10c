// show_sheet.cpp: laying out the sheet and copying pictures into it.
#include "tools/show_sheet.h"

#include "host/toolkit/display.h"
#include "host/toolkit/painter.h"

#include <algorithm>
#include <stdexcept>

namespace uti::tool {

namespace {

using host::rgb;
using host::Size;

constexpr int gap = 16;            // round a dialog
constexpr int between = 8;         // the pictures of a dialog
constexpr int titleHeight = 26;    // the dialog's name
constexpr int labelHeight = 20;    // the language
constexpr int longestSide = 32000; // what a picture file can be
constexpr int64_t mostPixels = 100'000'000;

constexpr host::Color paper = rgb(0xE6, 0xEA, 0xEF), ink = rgb(0x1B, 0x26, 0x33),
                      soft = rgb(0x5A, 0x67, 0x78), frame = rgb(0xB4, 0xBE, 0xCB),
                      alarm = rgb(0xC6, 0x28, 0x28);

template <class Value, class Values>
int indexIn(const Values &values, const Value &value) {
    return static_cast<int>(std::ranges::find(values, value) - values.begin());
}

template <class Value>
void addOnce(std::vector<Value> &values, const Value &value) {
    if (std::ranges::find(values, value) == values.end())
        values.push_back(value);
}

Size blockOf(std::size_t languages) {
    const Size screen = host::display().size();
    const int count = static_cast<int>(languages);
    return {gap + count * (screen.width + between) - between,
            gap + titleHeight + labelHeight + screen.height};
}

// Blocks in a row, so that the sheet comes near to 8 by 5.
int columnsFor(int blocks, Size block) {
    int best = 1;
    double least = 1e9;
    for (int columns = 1; columns <= blocks; ++columns) {
        const int rows = (blocks + columns - 1) / columns;
        const double shape = double{5} * columns * block.width / (8.0 * rows * block.height);
        const double off = std::max(shape, 1 / shape);
        if (off < least) {
            least = off;
            best = columns;
        }
    }
    return best;
}

} // namespace

Sheet::Sheet(const std::vector<ShownDialog> &dialogs) : surface_({0, 0}) {
    for (const ShownDialog &each : dialogs) {
        addOnce(keys_, each.key());
        addOnce(languages_, each.language);
    }
    const Size block = blockOf(languages_.size());
    const int count = static_cast<int>(keys_.size());
    columns_ = columnsFor(count, block);
    const Size size{gap + columns_ * block.width,
                    gap + (count + columns_ - 1) / columns_ * block.height};
    if (std::max(size.width, size.height) > longestSide ||
        int64_t{size.width} * size.height > mostPixels)
        throw std::runtime_error(concat(count, " dialogs in ", languages_.size(),
                                        " languages are too many for one sheet; choose with "
                                        "--dialog or --lang"));
    surface_ = host::Surface(size);
    host::Painter(surface_, surface_.area()).fill(surface_.area(), paper);
}

host::Rect Sheet::placeOf(const ShownDialog &dialog) const {
    const Size screen = host::display().size();
    const Size block = blockOf(languages_.size());
    const int at = indexIn(keys_, dialog.key());
    return {gap + at % columns_ * block.width +
                indexIn(languages_, dialog.language) * (screen.width + between),
            gap + at / columns_ * block.height + titleHeight + labelHeight, screen.width,
            screen.height};
}

void Sheet::add(const Picture &picture) {
    const host::Rect place = placeOf(picture.dialog);
    host::Painter painter(surface_, surface_.area());
    host::Fonts &fonts = host::display().stage().fonts;
    const auto titleFont = fonts.label(20), font = fonts.label(15);

    const std::string title = picture.dialog.title();
    host::Point at{place.x - indexIn(languages_, picture.dialog.language) * (place.width + between),
                   place.y - labelHeight - titleHeight};
    painter.text(at, title, *titleFont, ink);
    if (picture.dialog.source)
        painter.text({at.x + titleFont->width(title) + 8, at.y + 4},
                     concat(Hex{picture.dialog.id, 4}), *font, soft);

    at = {place.x, place.y - labelHeight};
    painter.text(at, picture.dialog.language, *font, soft);
    at.x += font->width(picture.dialog.language) + 8;
    if (!picture.surface)
        painter.text(at, concat("cannot be shown: ", picture.result), *font, alarm);
    else if (const std::size_t count = picture.findings.size())
        painter.text(at, concat(count, count == 1 ? " finding" : " findings"), *font, alarm);

    painter.outline(place.inset(-1), 0, 1, frame);
    if (!picture.surface)
        return;
    for (int y = 0; y < place.height; ++y)
        std::copy_n(picture.surface->row(y), place.width, surface_.row(place.y + y) + place.x);
}

} // namespace uti::tool
