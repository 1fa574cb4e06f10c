// BER-TLV objects: reading, searching and appending them, whole, cut and hostile.
#include "tests/support.h"

using namespace support;

namespace {

uint8_t *bytes(const ExactBlock &block) {
    return reinterpret_cast<uint8_t *>(block.data());
}

// "result tag length moved value": how far the cursor moved and where the value is, "-" when it was
// not written.
std::string getTag(const ExactBlock &block) {
    const uint8_t other = 0, *cursor = bytes(block), *value = &other;
    uint32_t remaining = block.size(), tag = 0x55, length = 0x55;
    const int32_t result = BerTlv_GetTag(&cursor, &remaining, &tag, &length, &value);
    EXPECT_EQ(cursor + remaining, bytes(block) + block.size());
    char text[80];
    snprintf(text, sizeof text, "%d %X %X %u ", result, tag, length, block.size() - remaining);
    return text + (value == &other ? "-" : value ? std::to_string(value - bytes(block)) : "null");
}

TEST(BerTlv, GetTag) {
    for (const std::string row :
         {"5F 2A 02 09 78 | 0 5F2A 2 5 3", "9F 02 81 02 AA BB CC | 0 9F02 2 6 4",
          "9F 81 02 01 AA | 0 9F8102 1 5 4", "82 84 00 00 00 01 AA | 0 82 1 7 6",
          "9F 02 80 | 0 9F02 0 3 -", "82 82 00 00 AA | 0 82 0 4 -", "82 02 | -4 82 2 0 null",
          "82 02 AA | -4 82 2 0 2", "82 84 FF FF FF FF AA | -4 82 FFFFFFFF 0 6",
          "1F 81 82 83 01 AA | -1 55 55 0 -", "82 85 00 00 00 00 01 AA | -1 55 55 0 -"})
        EXPECT_EQ(getTag(ExactBlock(hex(row.substr(0, row.find('|'))))),
                  row.substr(row.find('|') + 2));
    for (const char *header : {"5F 2A", "9F 81 02", "1F 81 82", "82 84 00 00 00"})
        forEachTruncation(hex(header), [](auto &cut) { EXPECT_EQ(getTag(cut), "-1 55 55 0 -"); });
}

TEST(BerTlv, EveryTagReadsAsItIsWritten) {
    for (uint32_t i = 0; i < 0x10000; ++i) {
        const uint32_t used = (i >> 8 & 0x1F) != 0x1F ? 1 : (i & 0x80) == 0 ? 2 : 3;
        const uint32_t tag = used == 1 ? i >> 8 : used == 2 ? i : i << 8 | 0x7F;
        const ExactBlock out(std::string(8, 'x'));
        uint32_t size = 8;
        ASSERT_EQ(BerTlv_AppendTag(tag, 1, bytes(out), bytes(out), &size), 0);
        char text[80];
        snprintf(text, sizeof text, "0 %X 1 %u %u", tag, used + 2, used + 1);
        ASSERT_EQ(getTag(ExactBlock({out.data(), size})), text);
        ASSERT_EQ(BerTlv_TagIsPrimitive(tag, used), (i & 0x2000) == 0) << tag;
    }
    EXPECT_EQ(BerTlv_TagIsPrimitive(0x70000000, 4), 0);
    for (const uint32_t length : {0u, 5u, ~0u})
        EXPECT_EQ(BerTlv_TagIsPrimitive(~0u, length), 1);
}

TEST(BerTlv, AppendTag) {
    const struct {
        uint32_t tag, length;
        const char *header;
    } rows[] = {{0x9F02, 6, "9F 02 06"},
                {0x82, 1, "82 01"},
                {0x82, 127, "82 7F"},
                {0x82, 128, "82 81 80"},
                {0x82, 256, "82 82 01 00"},
                {0, 300, "00 82 01 2C"},
                {0x82, 65536, "82 83 01 00 00"},
                {0x01020304, 1, "01 02 03 04 01"}};
    for (const auto &[tag, length, header] : rows) {
        const std::string value = std::string(1, 'V').append(length - 1, 'v');
        const std::string object = hex(header) + value;
        const auto total = static_cast<uint32_t>(object.size());
        // The value may lie anywhere, across the header's place and its own.
        for (uint32_t at = 0; at <= total - length + 1; ++at) {
            for (const uint32_t size : {0u, 3u, 4u, total - 1, total}) {
                const std::string before = std::string(at, 'x').append(value).append("0123456");
                const ExactBlock block(before);
                const bool fits = size >= 4 && size >= total;
                uint32_t used = size;
                EXPECT_EQ(BerTlv_AppendTag(tag, length, bytes(block) + at, bytes(block), &used),
                          fits ? 0 : -1);
                EXPECT_EQ(used, fits ? total : size);
                const std::string after = fits ? object + before.substr(total) : before;
                EXPECT_EQ(std::string(block.data(), block.size()), after);
            }
        }
    }
}

TEST(BerTlv, NullsAreRefused) {
    uint8_t buffer[8] = {0x82, 1, 2}, out[8];
    const uint8_t *none = nullptr;
    for (int i = 0; i < 6; ++i) { // each pointer alone
        SCOPED_TRACE(i);
        const auto unless = [&](int at, auto *pointer) { return at == i ? nullptr : pointer; };
        const uint8_t *cursor = buffer;
        uint32_t size = 8, left = 8, room = 8;
        EXPECT_EQ(BerTlv_GetTag(i == 5 ? &none : unless(0, &cursor), unless(1, &left),
                                unless(2, &size), unless(3, &size), unless(4, &cursor)),
                  -1);
        EXPECT_EQ(
            BerTlv_ExtractSingleTag(unless(0, buffer), 3, 0x82, unless(1, &room), unless(2, out)),
            i < 3 ? -3 : 0);
        EXPECT_EQ(BerTlv_AppendTag(0x82, 1, unless(3, buffer), unless(4, out), unless(5, &size)),
                  i < 3 ? 0 : -1);
    }
    uint32_t size = 0;
    EXPECT_EQ(BerTlv_ExtractSingleTag(buffer, 3, 0x82, &size, out), -3);
    size = 8;
    EXPECT_EQ(BerTlv_AppendTag(0x82, 0, buffer, buffer, &size), -1);
}

} // namespace
