// utiBerTlv.cpp: objects in the BER-TLV encoding of ISO/IEC 8825-1: reading the next one, searching
// for one by its tag, appending one. Stands on the C library alone and keeps no state.
#include "common/bytes.h"
#include "uti.h"

#include <bit>
#include <cstring>
#include <span>

namespace uti {
namespace {

using Bytes = std::span<const uint8_t>;

constexpr uint32_t longestTag = 3;
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
    bool constructed;
};

// Bytes of the tag at the start of `data`; 0 for one that is cut or longer than three bytes.
uint32_t tagSize(Bytes data) {
    if (data.empty())
        return 0;
    uint32_t size = 1;
    bool more = (data[0] & moreTagBytes) == moreTagBytes;
    while (more) {
        if (size >= data.size() || size == longestTag)
            return 0;
        more = (data[size++] & moreBit) != 0;
    }
    return size;
}

// Reads a tag and a length and moves `data` to the value, which may be longer than the data left.
// False when they are not whole, or longer than is read.
bool readHeader(Header &header, Bytes &data) {
    const uint32_t size = tagSize(data);
    if (size == 0 || size == data.size())
        return false;
    header.tag = static_cast<uint32_t>(getNumber(data.data(), size, ByteOrder::big));
    header.constructed = (data[0] & constructedBit) != 0;
    data = data.subspan(size);

    const uint8_t first = data[0];
    const uint32_t count = first < longForm ? 0 : first - longForm;
    if (count >= data.size() || count > longestLength)
        return false;
    header.length = first < longForm
                        ? first
                        : static_cast<uint32_t>(getNumber(data.data() + 1, count, ByteOrder::big));
    data = data.subspan(1 + count);
    return true;
}

// Searches one level, and `depth` levels inside its constructed objects, for the first object with
// the tag: an object comes before those inside it. Only a found value touches the out-parameters.
int32_t findTag(Bytes data, uint32_t wantedTag, uint32_t &valueLength, std::span<uint8_t> value,
                uint32_t depth) {
    if (data.empty() || value.empty())
        return UTI_BERTLV_BAD_DATA;

    while (!data.empty()) {
        Header header;
        if (!readHeader(header, data) || header.length > data.size())
            return UTI_BERTLV_BAD_DATA;

        const Bytes found = data.first(header.length);
        if (header.tag == wantedTag) {
            if (found.size() > value.size())
                return UTI_BERTLV_BAD_DATA;
            std::memmove(value.data(), found.data(), found.size());
            valueLength = header.length;
            return UTI_OK;
        }
        if (header.constructed && depth > 0) {
            const int32_t inner = findTag(found, wantedTag, valueLength, value, depth - 1);
            if (inner != UTI_BERTLV_NOT_FOUND)
                return inner;
        }
        data = data.subspan(header.length);
    }
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
    Bytes data(*cursor, *remaining);
    Header header;
    if (!readHeader(header, data))
        return UTI_BERTLV_BAD_OBJECT;

    *tag = header.tag;
    *length = header.length;
    if (header.length > 0)
        *value = data.empty() ? nullptr : data.data();
    if (header.length > data.size())
        return UTI_BERTLV_CUT_VALUE;

    data = data.subspan(header.length);
    *cursor = data.data();
    *remaining = static_cast<uint32_t>(data.size());
    return UTI_OK;
}

int32_t BerTlv_ExtractSingleTag(const uint8_t *data, uint32_t dataLength, uint32_t wantedTag,
                                uint32_t *valueLength, uint8_t *value) {
    if (!data || !valueLength || !value)
        return UTI_BERTLV_BAD_DATA;
    return findTag({data, dataLength}, wantedTag, *valueLength, {value, *valueLength}, searchDepth);
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
