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

constexpr uint32_t longestTag = 4;
constexpr uint32_t longestLength = 4; // of the bytes behind the first one
constexpr uint32_t searchDepth = 5;
constexpr uint32_t smallestBuffer = 4;

constexpr uint8_t constructedBit = 0x20;
constexpr uint8_t moreTagBytes = 0x1F; // in the first byte
constexpr uint8_t moreBit = 0x80;      // in the later ones
constexpr uint8_t longForm = 0x80;

enum class Status {
    done,
    noData = 2,  // 1, a null argument, is answered at the door
    tooLong,     // a tag longer than allowed, or a length field of more than 4 bytes
    fourByteTag, // not supported
    truncated,   // the data ends inside a tag, a length field or a value
    found,
    bufferTooSmall, // found, but longer than the caller's buffer
    notFound
};

// Reads the tag at the start of `data`. `tagLength` is the most bytes allowed, then the bytes used.
Status BerTlv_ReadTag(uint32_t &tag, uint32_t &tagLength, Bytes data) {
    if (data.empty() || tagLength == 0)
        return Status::noData;

    uint32_t number = data[0];
    uint32_t used = 1;
    bool more = (data[0] & moreTagBytes) == moreTagBytes;
    while (more) {
        if (used >= data.size())
            return Status::truncated;
        if (used >= tagLength)
            return Status::tooLong;
        if (used == 3)
            return Status::fourByteTag;
        more = (data[used] & moreBit) != 0;
        number = number << 8 | data[used++];
    }
    tag = number;
    tagLength = used;
    return Status::done;
}

struct Header {
    uint32_t tag;
    uint32_t length;
    bool constructed;
};

// Reads a tag and a length and moves `data` to the value, which may be longer than the data left.
Status readHeader(Header &header, Bytes &data) {
    uint32_t tagLength = longestTag;
    const Status status = BerTlv_ReadTag(header.tag, tagLength, data);
    if (status != Status::done)
        return status;
    header.constructed = (data[0] & constructedBit) != 0;
    data = data.subspan(tagLength);
    if (data.empty())
        return Status::noData;

    const uint8_t first = data[0];
    if (first < longForm) {
        header.length = first;
        data = data.subspan(1);
        return Status::done;
    }
    const uint32_t count = first - longForm;
    if (count >= data.size())
        return Status::truncated;
    if (count > longestLength)
        return Status::tooLong;
    header.length = static_cast<uint32_t>(getNumber(data.data() + 1, count, ByteOrder::big));
    data = data.subspan(1 + count);
    return Status::done;
}

// Searches one level, and `depth` levels inside its constructed objects, for the first object with
// the tag: an object comes before those inside it. Only a found value touches the out-parameters.
Status BerTlv_FindTag(Bytes data, uint32_t wantedTag, uint32_t &valueLength,
                      std::span<uint8_t> value, uint32_t depth) {
    if (data.empty() || value.empty())
        return Status::noData;

    while (!data.empty()) {
        Header header;
        const Status status = readHeader(header, data);
        if (status != Status::done)
            return status;
        if (header.length > data.size())
            return Status::truncated;

        const Bytes found = data.first(header.length);
        if (header.tag == wantedTag) {
            if (found.size() > value.size())
                return Status::bufferTooSmall;
            std::memmove(value.data(), found.data(), found.size());
            valueLength = header.length;
            return Status::found;
        }
        if (header.constructed && depth > 0) {
            const Status inner = BerTlv_FindTag(found, wantedTag, valueLength, value, depth - 1);
            if (inner != Status::notFound)
                return inner;
        }
        data = data.subspan(header.length);
    }
    return Status::notFound;
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
    if (readHeader(header, data) != Status::done)
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
    switch (BerTlv_FindTag({data, dataLength}, wantedTag, *valueLength, {value, *valueLength},
                           searchDepth)) {
    case Status::found:
        return UTI_OK;
    case Status::notFound:
        return UTI_BERTLV_NOT_FOUND;
    default:
        return UTI_BERTLV_BAD_DATA;
    }
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
