// BER-TLV objects: reading, searching and appending them, whole, cut and hostile.
#include "support.h"

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

// Extracts into a block of exactly `size` bytes, which may change only on success.
std::string extract(std::string_view data, uint32_t tag, uint32_t size, int32_t expected) {
    const ExactBlock block(data), value(std::string(size, 'x'));
    uint32_t length = size;
    EXPECT_EQ(BerTlv_ExtractSingleTag(bytes(block), block.size(), tag, &length, bytes(value)),
              expected);
    if (expected == 0)
        return {value.data(), length};
    EXPECT_EQ(std::string(value.data(), length), std::string(size, 'x'));
    return "";
}

std::string nested(const char *data, int levels) {
    const std::string inner = levels ? nested(data, levels - 1) : hex(data);
    return levels ? "\x70" + number(inner.size(), 1) + inner : inner;
}

TEST(BerTlv, GetTag) {
    const char *const refused = "-1 55 55 0 -";
    const char *const rows[][2] = {
        {"5F 2A 02 09 78", "0 5F2A 2 5 3"},
        {"9F 02 81 02 AA BB CC", "0 9F02 2 6 4"},
        {"9F 81 02 01 AA", "0 9F8102 1 5 4"},
        {"82 84 00 00 00 01 AA", "0 82 1 7 6"},
        {"9F 02 80", "0 9F02 0 3 -"},
        {"82 82 00 00 AA", "0 82 0 4 -"},
        {"82 02", "-4 82 2 0 null"},
        {"82 02 AA", "-4 82 2 0 2"},
        {"82 84 FF FF FF FF AA", "-4 82 FFFFFFFF 0 6"},
        {"1F 81 82 83 01 AA", refused},
        {"1F 81 82", refused},
        {"82 85 00 00 00 00 01 AA", refused},
    };
    for (const auto &[data, expected] : rows)
        EXPECT_EQ(getTag(ExactBlock(hex(data))), expected) << data;
    for (const char *header : {"5F 2A", "9F 81 02", "82 84 00 00 00"})
        forEachTruncation(hex(header), [&](const auto &cut) { EXPECT_EQ(getTag(cut), refused); });
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

TEST(BerTlv, ExtractSingleTag) {
    const std::string good = nested("9F 02 05 01 02 03 04 05", 1);
    const struct {
        std::string data;
        uint32_t tag;
        int32_t expected;
        const char *value;
    } rows[] = {
        {good, 0x9F02, 0, "01 02 03 04 05"},
        {good, 0x70, 0, "9F 02 05 01 02 03 04 05"},
        {good, 0x82, -2, ""},
        {hex("70 03 82 01 AA 82 01 BB"), 0x82, 0, "AA"},
        {hex("82 00 82 01 BB"), 0x82, 0, ""},
        {hex("70 00 82 01 BB"), 0x82, -3, ""},
        {hex("70 03 82 02 AA BB 82 00"), 0x82, -3, ""},
        {hex("70 04 82 01 AA"), 0x82, -3, ""},
        {hex("82 84 FF FF FF FF AA"), 0x82, -3, ""},
        {hex("84 84 FF FF FF FF AA"), 0x82, -3, ""},
        {nested("82 01 AA", 5), 0x82, 0, "AA"},
        {nested("82 01 AA", 6), 0x82, -2, ""},
        {nested("FF", 6) + hex("82 01 BB"), 0x82, 0, "BB"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(toHex(row.data));
        const std::string value = hex(row.value);
        EXPECT_EQ(extract(row.data, row.tag, 9, row.expected), value);
        for (uint32_t size = 0; size < value.size() || size == 0; ++size)
            extract(row.data, row.tag, size, -3);
    }
    forEachTruncation(good, [&](const ExactBlock &cut) {
        extract({cut.data(), cut.size()}, 0x9F02, 5, cut.size() == good.size() ? 0 : -3);
    });
}

TEST(BerTlv, AppendTag) {
    const struct {
        uint32_t tag, length;
        const char *header;
    } rows[] = {
        {0x9F02, 6, "9F 02 06"},
        {0x82, 1, "82 01"},
        {0x82, 127, "82 7F"},
        {0x82, 128, "82 81 80"},
        {0x82, 256, "82 82 01 00"},
        {0x70, 300, "70 82 01 2C"},
        {0, 65535, "00 82 FF FF"},
        {0x82, 65536, "82 83 01 00 00"},
        {0x01020304, 1, "01 02 03 04 01"},
    };
    for (const auto &[tag, length, header] : rows) {
        const std::string object = hex(header) + "V" + std::string(length - 1, 'v');
        const auto total = static_cast<uint32_t>(object.size());
        // The value may lie anywhere, across the header's place and its own.
        for (uint32_t at = 0; at <= total - length + 1; ++at) {
            for (const uint32_t size : {0u, 3u, 4u, total - 1, total}) {
                const std::string before =
                    std::string(at, 'x') + object.substr(total - length) + "0123456";
                const ExactBlock block(before);
                const bool fits = size >= 4 && size >= total;
                uint32_t used = size;
                EXPECT_EQ(BerTlv_AppendTag(tag, length, bytes(block) + at, bytes(block), &used),
                          fits ? 0 : -1);
                EXPECT_EQ(used, fits ? total : size);
                EXPECT_EQ(std::string(block.data(), block.size()),
                          fits ? object + before.substr(total) : before);
            }
        }
    }
}

TEST(BerTlv, NullsAreRefused) {
    const uint8_t object[] = {0x82, 1, 2}, *cursor = object, *value = nullptr;
    uint32_t number = 8;
    uint8_t buffer[8];
    const auto unless = [](bool bad, auto *argument) { return bad ? nullptr : argument; };
    for (int bad = 0; bad < 5; ++bad)
        EXPECT_EQ(BerTlv_GetTag(unless(bad == 0, &cursor), unless(bad == 1, &number),
                                unless(bad == 2, &number), unless(bad == 3, &number),
                                unless(bad == 4, &value)),
                  -1);
    EXPECT_EQ(BerTlv_GetTag(&value, &number, &number, &number, &value), -1);
    for (int bad = 0; bad < 3; ++bad) {
        EXPECT_EQ(BerTlv_ExtractSingleTag(unless(bad == 0, object), 3, 0x82,
                                          unless(bad == 1, &number), unless(bad == 2, buffer)),
                  -3);
        EXPECT_EQ(BerTlv_AppendTag(0x82, 1, unless(bad == 0, object), unless(bad == 1, buffer),
                                   unless(bad == 2, &number)),
                  -1);
    }
    EXPECT_EQ(BerTlv_AppendTag(0x82, 0, object, buffer, &number), -1);
}

} // namespace
