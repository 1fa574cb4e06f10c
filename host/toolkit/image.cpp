// image.cpp: PNG files through cairo. Cairo's pixels are native words of 0xAARRGGBB, the colours
// already weighed by their coverage.
#include "host/toolkit/image.h"

#include <cairo.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <memory>

namespace uti::host {

namespace {

constexpr unsigned largestSide = 4096;

struct Destroyer {
    void operator()(cairo_surface_t *surface) const { cairo_surface_destroy(surface); }
};
using CairoSurface = std::unique_ptr<cairo_surface_t, Destroyer>;

struct Closer {
    void operator()(std::FILE *file) const { std::fclose(file); }
};

// Looks at the header alone, so that no file can ask for more memory than a large picture takes.
bool hasAllowedSize(const std::string &path) {
    const std::unique_ptr<std::FILE, Closer> file(std::fopen(path.c_str(), "rb"));
    unsigned char header[24];
    // The signature, and the length and type of the chunk with the size, which has to be the first.
    constexpr unsigned char start[] = "\x89PNG\r\n\x1A\n\0\0\0\x0DIHDR";
    if (!file || std::fread(header, 1, sizeof header, file.get()) != sizeof header ||
        !std::equal(std::begin(start), std::end(start) - 1, header))
        return false;
    const auto side = [&](int at) {
        unsigned value = 0;
        for (int i = 0; i < 4; ++i)
            value = value << 8 | header[at + i];
        return value;
    };
    const unsigned width = side(16), height = side(20);
    return width > 0 && width <= largestSide && height > 0 && height <= largestSide;
}

uint32_t wordAt(const unsigned char *row, std::ptrdiff_t x) {
    uint32_t word;
    std::memcpy(&word, row + 4 * x, sizeof word);
    return word;
}

// Writes a picture beside an old one, whose place it takes when it is whole. What is no file, such
// as a device or a link, is written as it stands.
bool write(cairo_surface_t *picture, const std::string &path) {
    namespace fs = std::filesystem;
    std::error_code failure;
    const fs::file_status old = fs::symlink_status(path, failure);
    const bool stays = fs::exists(old) && !fs::is_regular_file(old);
    const std::string fresh = stays ? path : path + ".new";
    const bool isWhole = cairo_surface_write_to_png(picture, fresh.c_str()) == CAIRO_STATUS_SUCCESS;
    if (stays)
        return isWhole;
    if (isWhole)
        fs::rename(fresh, path, failure);
    if (isWhole && !failure)
        return true;
    fs::remove(fresh, failure);
    return false;
}

// Hands each pixel, as 0xRRGGBB, to a new picture of that size and saves it.
template <class PixelAt>
bool save(Size size, const std::string &path, PixelAt pixelAt) {
    const CairoSurface picture(
        cairo_image_surface_create(CAIRO_FORMAT_RGB24, size.width, size.height));
    unsigned char *data = cairo_image_surface_get_data(picture.get());
    if (!data)
        return false;
    const int stride = cairo_image_surface_get_stride(picture.get());
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            const uint32_t word = pixelAt(x, y);
            std::memcpy(data + std::ptrdiff_t{y} * stride + std::ptrdiff_t{x} * 4, &word,
                        sizeof word);
        }
    cairo_surface_mark_dirty(picture.get());
    return write(picture.get(), path);
}

} // namespace

std::optional<Image> loadImage(const std::string &path) {
    if (!hasAllowedSize(path))
        return std::nullopt;
    const CairoSurface picture(cairo_image_surface_create_from_png(path.c_str()));
    const cairo_format_t format = cairo_image_surface_get_format(picture.get());
    if (cairo_surface_status(picture.get()) != CAIRO_STATUS_SUCCESS ||
        (format != CAIRO_FORMAT_ARGB32 && format != CAIRO_FORMAT_RGB24))
        return std::nullopt;

    const unsigned char *data = cairo_image_surface_get_data(picture.get());
    const int stride = cairo_image_surface_get_stride(picture.get());
    Image image{{cairo_image_surface_get_width(picture.get()),
                 cairo_image_surface_get_height(picture.get())},
                {},
                {}};
    bool seesThrough = false;
    for (int y = 0; y < image.size.height; ++y)
        for (int x = 0; x < image.size.width; ++x) {
            const uint32_t word = wordAt(data + std::ptrdiff_t{y} * stride, x);
            const unsigned alpha = format == CAIRO_FORMAT_ARGB32 ? word >> 24 : 255;
            const auto part = [&](int shift) {
                return alpha ? std::min((word >> shift & 0xFF) * 255 / alpha, 255u) : 0u;
            };
            image.pixels.push_back(rgb(part(16), part(8), part(0)));
            image.coverage.push_back(static_cast<uint8_t>(alpha));
            seesThrough = seesThrough || alpha < 255;
        }
    if (!seesThrough)
        image.coverage.clear();
    return image;
}

bool saveImage(const Surface &surface, const std::string &path) {
    return save(surface.size(), path, [&](int x, int y) { return toRgb24(surface.row(y)[x]); });
}

bool saveCoverage(const std::vector<uint8_t> &coverage, Size size, const std::string &path) {
    return save(size, path,
                [&](int x, int y) { return (255u - coverage[size.index(x, y)]) * 0x010101u; });
}

} // namespace uti::host
