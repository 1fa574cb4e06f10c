// PNG files: hostile ones with right checksums, so that they get past the first door. A picture has
// the pixels that it says it has, and saved and loaded it is the same.
#include "fuzz/quiet.h"

#include "host/toolkit/image.h"

#include <zlib.h>

using namespace fuzz;
using namespace uti::host;

namespace {

std::string bigEndian(uint32_t value) {
    return {static_cast<char>(value >> 24), static_cast<char>(value >> 16),
            static_cast<char>(value >> 8), static_cast<char>(value)};
}

std::string chunk(const std::string &type, const std::string &bytes) {
    const std::string all = type + bytes;
    const uLong sum =
        crc32(0, reinterpret_cast<const Bytef *>(all.data()), static_cast<uInt>(all.size()));
    return bigEndian(static_cast<uint32_t>(bytes.size())) + all +
           bigEndian(static_cast<uint32_t>(sum));
}

std::string compressed(const std::string &bytes) {
    uLongf size = compressBound(bytes.size());
    std::string out(size, '\0');
    compress2(reinterpret_cast<Bytef *>(out.data()), &size,
              reinterpret_cast<const Bytef *>(bytes.data()), bytes.size(), 0);
    return out.substr(0, size);
}

std::string picture(Input &in) {
    const char *const types[] = {"PLTE", "tRNS", "gAMA", "bKGD", "sBIT", "zTXt", "IDAT", "acTL"};
    const char depths[] = {8, 16, 1, 2, 4}, colors[] = {2, 6, 0, 3, 4};
    const uint32_t width = in.oneIn(16) ? in.number() : in.below(20);
    const uint32_t height = in.oneIn(16) ? in.number() : in.below(20);
    const char depth = in.oneIn(8) ? static_cast<char>(in.byte()) : in.pick(depths);
    const char color = in.oneIn(8) ? static_cast<char>(in.byte()) : in.pick(colors);
    std::string file = "\x89PNG\r\n\x1A\n";
    file += chunk("IHDR", bigEndian(width) + bigEndian(height) + depth + color + '\0' + '\0' +
                              static_cast<char>(in.below(3)));
    for (uint32_t count = in.below(4); count > 0; --count) {
        const char *type = in.pick(types);
        file += chunk(type, in.bytes(100));
    }
    std::string rows = in.takeRest();
    // Enough for every row when the picture is small and the input short.
    rows.resize(std::max<std::size_t>(rows.size(), width < 20 && height < 20 ? 3000 : 0));
    return file + chunk("IDAT", compressed(rows)) + chunk("IEND", "");
}

} // namespace

void fuzz::run(Input &in) {
    silence();
    static const MemoryFile file, copy;
    file.write(in.oneIn(4) ? in.takeRest() : picture(in));
    const std::optional<Image> image = loadImage(file.path());
    if (!image)
        return;
    const auto [width, height] = image->size;
    const auto pixels = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    REQUIRE(width > 0 && width <= 4096 && height > 0 && height <= 4096);
    REQUIRE(image->pixels.size() == pixels);
    REQUIRE(image->coverage.empty() || image->coverage.size() == pixels);
    if (pixels > 1 << 16)
        return;
    Surface surface(image->size);
    std::copy(image->pixels.begin(), image->pixels.end(), surface.row(0));
    REQUIRE(saveImage(surface, copy.path()));
    const std::optional<Image> again = loadImage(copy.path());
    REQUIRE(again && again->size.width == width);
    REQUIRE(again->pixels == image->pixels && again->coverage.empty());
}
