// PNG files: hostile ones with right checksums, so that they get past the first door. A picture has
// the pixels that it says it has, and saved and loaded it is the same.
#include "fuzz/quiet.h"

#include "host/toolkit/image.h"

using namespace fuzz;
using namespace uti::host;

namespace {

std::string bigEndian(uint32_t value) {
    return {static_cast<char>(value >> 24), static_cast<char>(value >> 16),
            static_cast<char>(value >> 8), static_cast<char>(value)};
}

std::string chunk(const std::string &type, const std::string &bytes) {
    uint32_t crc = 0xFFFFFFFF;
    for (const char c : type + bytes) {
        crc ^= static_cast<uint8_t>(c);
        for (int bit = 0; bit < 8; ++bit)
            crc = crc >> 1 ^ (crc & 1 ? 0xEDB88320 : 0);
    }
    return bigEndian(static_cast<uint32_t>(bytes.size())) + type + bytes + bigEndian(~crc);
}

// The bytes as a zlib stream that stores them.
std::string stored(const std::string &bytes) {
    const auto size = static_cast<uint32_t>(bytes.size());
    uint32_t a = 1, b = 0;
    for (const char c : bytes) {
        a = (a + static_cast<uint8_t>(c)) % 65521;
        b = (b + a) % 65521;
    }
    const std::string head = {0x78,
                              0x01,
                              0x01,
                              static_cast<char>(size),
                              static_cast<char>(size >> 8),
                              static_cast<char>(~size),
                              static_cast<char>(~size >> 8)};
    return head + bytes + bigEndian(b << 16 | a);
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
    return file + chunk("IDAT", stored(rows.substr(0, 60000))) + chunk("IEND", "");
}

void requireWhole(const Image &image) {
    const auto pixels =
        static_cast<std::size_t>(image.size.width) * static_cast<std::size_t>(image.size.height);
    REQUIRE(image.size.width > 0 && image.size.width <= 4096);
    REQUIRE(image.size.height > 0 && image.size.height <= 4096);
    REQUIRE(image.pixels.size() == pixels);
    REQUIRE(image.coverage.empty() || image.coverage.size() == pixels);
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size) {
    silence();
    static const MemoryFile file, copy;
    Input in(data, size);
    file.write(in.oneIn(4) ? in.takeRest() : picture(in));
    const std::optional<Image> image = loadImage(file.path());
    if (!image)
        return 0;
    requireWhole(*image);
    if (image->pixels.size() > 1 << 16)
        return 0;

    Surface surface(image->size);
    std::copy(image->pixels.begin(), image->pixels.end(), surface.row(0));
    REQUIRE(saveImage(surface, copy.path()));
    const std::optional<Image> again = loadImage(copy.path());
    REQUIRE(again && again->size.width == image->size.width);
    REQUIRE(again->pixels == image->pixels && again->coverage.empty());
    return 0;
}
