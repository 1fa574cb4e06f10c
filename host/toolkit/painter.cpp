// painter.cpp: filling, mixing and copying rows of pixels. Round corners come from cairo, once for
// each radius.
#include "host/toolkit/painter.h"

#include <cairo.h>

#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <numbers>
#include <utility>

namespace uti::host {

namespace {

struct Destroyer {
    void operator()(cairo_t *context) const { cairo_destroy(context); }
    void operator()(cairo_surface_t *surface) const { cairo_surface_destroy(surface); }
};

// A disc of that radius, 2 radius x 2 radius coverages, without its middle when `thickness` is
// smaller than the radius.
std::vector<uint8_t> drawDisc(int radius, int thickness) {
    const int side = 2 * radius;
    const std::unique_ptr<cairo_surface_t, Destroyer> picture(
        cairo_image_surface_create(CAIRO_FORMAT_A8, side, side));
    const std::unique_ptr<cairo_t, Destroyer> context(cairo_create(picture.get()));
    cairo_arc(context.get(), radius, radius, radius, 0, 2 * std::numbers::pi);
    cairo_fill(context.get());
    if (thickness < radius) {
        cairo_set_operator(context.get(), CAIRO_OPERATOR_CLEAR);
        cairo_arc(context.get(), radius, radius, radius - thickness, 0, 2 * std::numbers::pi);
        cairo_fill(context.get());
    }
    cairo_surface_flush(picture.get());

    const unsigned char *data = cairo_image_surface_get_data(picture.get());
    const int stride = cairo_image_surface_get_stride(picture.get());
    std::vector<uint8_t> disc;
    for (int y = 0; data && y < side; ++y) {
        const unsigned char *row = data + std::ptrdiff_t{y} * stride;
        disc.insert(disc.end(), row, row + side);
    }
    disc.resize(Size{side, side}.area());
    return disc;
}

const std::vector<uint8_t> &disc(int radius, int thickness) {
    static std::map<std::pair<int, int>, std::vector<uint8_t>> made;
    std::vector<uint8_t> &wanted = made[{radius, thickness}];
    if (wanted.empty())
        wanted = drawDisc(radius, thickness);
    return wanted;
}

// Copies a whole character of a width that the compiler knows, which is several times faster.
template <int width>
void copyCell(Color *out, int stride, const Color *pixels, int height) {
    for (int y = 0; y < height; ++y)
        std::memcpy(out + std::ptrdiff_t{y} * stride, pixels + std::ptrdiff_t{y} * width,
                    width * sizeof *out);
}

void blend(Color *out, const uint8_t *coverage, int count, Color color) {
    for (int i = 0; i < count; ++i)
        if (coverage[i] == 255)
            out[i] = color;
        else if (coverage[i] > 0)
            out[i] = mix(color, out[i], coverage[i]);
}

} // namespace

Painter Painter::within(const Rect &part) const {
    Painter inner = *this;
    const Rect place = part.moved(origin_);
    inner.clip_ = place.intersected(clip_);
    inner.origin_ = place.origin();
    return inner;
}

template <class Each>
void Painter::forEachRow(const Rect &area, Each each) {
    const Rect place = area.moved(origin_);
    const Rect seen = place.intersected(clip_);
    if (seen.empty())
        return;
    const int stride = surface_.size().width;
    const int x = seen.x - place.x, first = seen.y - place.y;
    Color *out = surface_.row(seen.y) + seen.x;
    for (int y = 0; y < seen.height; ++y, out += stride)
        each(out, x, first + y, seen.width);
}

void Painter::fill(const Rect &area, Color color) {
    const Color *first = nullptr; // row, which long ones are copied from: that is faster
    forEachRow(area, [&](Color *out, int, int, int count) {
        if (first && count >= 16) {
            std::memcpy(out, first, static_cast<std::size_t>(count) * sizeof *out);
            return;
        }
        for (int i = 0; i < count; ++i)
            out[i] = color;
        first = out;
    });
}

void Painter::shade(const Rect &area, Color color, unsigned coverage) {
    forEachRow(area, [&](Color *out, int, int, int count) {
        for (int i = 0; i < count; ++i)
            out[i] = mix(color, out[i], coverage);
    });
}

void Painter::rounded(const Rect &area, int radius, Color color) {
    const int round = std::min({radius, area.width / 2, area.height / 2});
    if (round <= 0)
        return fill(area, color);
    fill({area.x + round, area.y, area.width - 2 * round, round}, color);
    fill({area.x, area.y + round, area.width, area.height - 2 * round}, color);
    fill({area.x + round, area.bottom() - round, area.width - 2 * round, round}, color);
    corners(area, round, round, color);
}

void Painter::outline(const Rect &area, int radius, int thickness, Color color) {
    const int round = std::max(std::min({radius, area.width / 2, area.height / 2}), 0);
    const int across = area.width - 2 * round, down = area.height - 2 * round;
    fill({area.x + round, area.y, across, thickness}, color);
    fill({area.x + round, area.bottom() - thickness, across, thickness}, color);
    fill({area.x, area.y + round, thickness, down}, color);
    fill({area.right() - thickness, area.y + round, thickness, down}, color);
    if (round > 0)
        corners(area, round, thickness, color);
}

void Painter::corners(const Rect &area, int radius, int thickness, Color color) {
    const std::vector<uint8_t> &coverage = disc(radius, std::min(thickness, radius));
    const Size whole{2 * radius, 2 * radius};
    for (const int right : {0, 1})
        for (const int bottom : {0, 1}) {
            const Rect place{right ? area.right() - radius : area.x,
                             bottom ? area.bottom() - radius : area.y, radius, radius};
            forEachRow(place, [&](Color *out, int x, int y, int count) {
                const std::size_t first = whole.index(x + right * radius, y + bottom * radius);
                blend(out, coverage.data() + first, count, color);
            });
        }
}

// A square moved along the line, which is all that small marks need.
void Painter::line(Point from, Point to, int thickness, Color color) {
    const int steps = std::max({std::abs(to.x - from.x), std::abs(to.y - from.y), 1});
    for (int i = 0; i <= steps; ++i)
        fill({from.x + (to.x - from.x) * i / steps, from.y + (to.y - from.y) * i / steps, thickness,
              thickness},
             color);
}

void Painter::text(Point at, std::string_view text, Font &font, Color ink) {
    Rect cell{at.x, at.y, 0, font.height()};
    if (!reaches({at.x, at.y, clip_.right() - origin_.x - at.x, cell.height}))
        return;
    Font::Sheet *sheet = ground ? &font.sheet(ink, *ground) : nullptr;
    for (const char character : text) {
        cell.x += std::exchange(cell.width, font.width(character));
        if (!sheet)
            mask(cell, font.coverage(character), ink);
        else
            copy(cell, font.pixels(*sheet, character));
    }
}

void Painter::copy(const Rect &area, const Color *pixels) {
    const Rect place = area.moved(origin_);
    if (clip_.covers(place)) {
        const int stride = surface_.size().width;
        Color *out = surface_.row(place.y) + place.x;
        switch (area.width) {
        case 6:
            return copyCell<6>(out, stride, pixels, area.height);
        case 12:
            return copyCell<12>(out, stride, pixels, area.height);
        case 16:
            return copyCell<16>(out, stride, pixels, area.height);
        }
    }
    forEachRow(area, [&](Color *out, int x, int y, int count) {
        std::memcpy(out, pixels + area.size().index(x, y),
                    static_cast<std::size_t>(count) * sizeof *out);
    });
}

void Painter::image(Point at, const Image &image) {
    const Rect place{at.x, at.y, image.size.width, image.size.height};
    if (image.coverage.empty())
        return copy(place, image.pixels.data());
    forEachRow(place, [&](Color *out, int x, int y, int count) {
        const std::size_t first = image.size.index(x, y);
        const Color *pixels = image.pixels.data() + first;
        for (int i = 0; i < count; ++i)
            blend(out + i, image.coverage.data() + first + i, 1, pixels[i]);
    });
}

void Painter::mask(const Rect &area, const uint8_t *coverage, Color color) {
    forEachRow(area, [&](Color *out, int x, int y, int count) {
        blend(out, coverage + area.size().index(x, y), count, color);
    });
}

} // namespace uti::host
