// utiBerTlv.cpp: objects in the BER-TLV encoding of ISO/IEC 8825-1: reading the next one, searching
// for one by its tag, appending one. Stands on the C library alone and keeps no state.
#include "common/bytes.h"
#include "uti.h"

#include <bit>
#include <cstring>

namespace uti {
namespace {

constexpr uint32_t longestLength = 4; // of the bytes behind the first one
constexpr uint32_t searchDepth = 5;
constexpr uint32_t smallestBuffer = 4;

constexpr uint8_t constructedBit = 0x20;
constexpr uint8_t moreTagBytes = 0x1F; // in the first byte
constexpr uint8_t moreBit = 0x80;      // in the later ones
constexpr uint8_t longForm = 0x80;

struct Header {
    uint32_t tag;
    uint32_t length;
    uint32_t firstByte; // of the tag

    bool isConstructed() const { return (firstByte & constructedBit) != 0; }
};

// Reads a tag of up to three bytes and a length, and moves `at` to the value, which may be longer
// than what is left up to `end`. False when they are not whole, or longer than is read. Each branch
// knows where its length stands: the next object waits for that byte alone.
[[gnu::always_inline]] inline bool readHeader(Header &header, const uint8_t *&at,
                                              const uint8_t *end) {
    const auto left = static_cast<std::size_t>(end - at);
    if (left < 2)
        return false;
    uint32_t tag = at[0];
    uint32_t length = at[1];
    header.firstByte = tag;
    if ((tag & moreTagBytes) != moreTagBytes) {
        at += 2;
    } else if (left < 3) {
        return false;
    } else if ((at[1] & moreBit) == 0) {
        tag = tag << 8 | length;
        length = at[2];
        at += 3;
    } else {
        if (left < 4 || (at[2] & moreBit) != 0)
            return false; // a tag of four bytes
        tag = tag << 16 | length << 8 | at[2];
        length = at[3];
        at += 4;
    }
    header.tag = tag;
    if (length >= longForm) {
        uint32_t count = length - longForm;
        if (count > longestLength || count > static_cast<std::size_t>(end - at))
            return false;
        for (length = 0; count > 0; --count)
            length = length << 8 | *at++;
    }
    header.length = length;
    return true;
}

// What a search looks for, and where the value goes; only a found one touches these.
struct Search {
    uint32_t wantedTag;
    uint8_t *value;
    uint32_t *valueLength; // before, the room for the value
};

// Searches one level, and `depth` levels inside its constructed objects, for the first object with
// the tag: an object comes before those inside it.
int32_t findTag(const Search &search, const uint8_t *at, const uint8_t *end, uint32_t depth) {
    if (at == end)
        return UTI_BERTLV_BAD_DATA;

    do {
        Header header;
        if (!readHeader(header, at, end) || header.length > static_cast<std::size_t>(end - at))
            return UTI_BERTLV_BAD_DATA;

        if (header.tag == search.wantedTag) {
            if (header.length > *search.valueLength)
                return UTI_BERTLV_BAD_DATA;
            std::memmove(search.value, at, header.length);
            *search.valueLength = header.length;
            return UTI_OK;
        }
        if (depth > 0 && header.isConstructed()) {
            const int32_t inner = findTag(search, at, at + header.length, depth - 1);
            if (inner != UTI_BERTLV_NOT_FOUND)
                return inner;
        }
        at += header.length;
    } while (at != end);
    return UTI_BERTLV_NOT_FOUND;
}

// Bytes of a number without its leading zero bytes, at least one.
unsigned byteCount(uint32_t number) {
    return (static_cast<unsigned>(std::bit_width(number | 1)) + 7) / 8;
}

} // namespace
} // namespace uti

using namespace uti;

int32_t BerTlv_GetTag(const uint8_t **cursor, uint32_t *remaining, uint32_t *tag, uint32_t *length,
                      const uint8_t **value) {
    if (!cursor || !*cursor || !remaining || !tag || !length || !value)
        return UTI_BERTLV_BAD_OBJECT;
    const uint8_t *at = *cursor, *const end = at + *remaining;
    Header header;
    if (!readHeader(header, at, end))
        return UTI_BERTLV_BAD_OBJECT;

    *tag = header.tag;
    *length = header.length;
    if (header.length > 0)
        *value = at == end ? nullptr : at;
    if (header.length > static_cast<std::size_t>(end - at))
        return UTI_BERTLV_CUT_VALUE;

    *cursor = at + header.length;
    *remaining = static_cast<uint32_t>(end - *cursor);
    return UTI_OK;
}

int32_t BerTlv_ExtractSingleTag(const uint8_t *data, uint32_t dataLength, uint32_t wantedTag,
                                uint32_t *valueLength, uint8_t *value) {
    if (!data || !valueLength || !value || *valueLength == 0)
        return UTI_BERTLV_BAD_DATA;
    return findTag({wantedTag, value, valueLength}, data, data + dataLength, searchDepth);
}

int32_t BerTlv_TagIsPrimitive(uint32_t tag, uint32_t tagLength) {
    // The first byte of a tag said to be longer than its number is one of the zeros before it.
    if (tagLength == 0 || tagLength > sizeof tag)
        return 1;
    return (tag >> 8 * (tagLength - 1) & constructedBit) == 0;
}

int32_t BerTlv_AppendTag(uint32_t tag, uint32_t length, const uint8_t *value, uint8_t *buffer,
                         uint32_t *size) {
    if (!value || !buffer || !size || length == 0 || *size < smallestBuffer)
        return UTI_BERTLV_BAD_OBJECT;
    const unsigned tagBytes = byteCount(tag);
    const unsigned lengthBytes = length < longForm ? 0 : byteCount(length);
    const uint32_t headerSize = tagBytes + 1 + lengthBytes;
    if (headerSize > *size || length > *size - headerSize)
        return UTI_BERTLV_BAD_OBJECT;

    // The value first: it may lie where the header goes.
    std::memmove(buffer + headerSize, value, length);
    uint8_t *out = putNumber(buffer, tag, tagBytes, ByteOrder::big);
    *out++ = static_cast<uint8_t>(lengthBytes ? longForm + lengthBytes : length);
    putNumber(out, length, lengthBytes, ByteOrder::big);
    *size = headerSize + length;
    return UTI_OK;
}
