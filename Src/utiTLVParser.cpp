// utiTLVParser.cpp: the forward-reading cursor over one tag-length-value stream, in a file or in
// memory. Stands on the platform's files and little-endian converters; allocates nothing.
#include "Src/utiTLVParser.h"

#include "Src/assertions.h"
#include "terminal.h"

#include <cstring>

constinit uint8_t tagIdSize = 0;
constinit uint8_t lengthSize = 0;
constinit uint32_t bytesRead = 0;
constinit uint32_t bytesReadInMemory = 0;
constinit ParserReadFunction Parser_DataRead = nullptr;
constinit ParserSeekFunction Parser_SetPosition = nullptr;

namespace uti {

constinit uint32_t blockSize = 0;

namespace {

constexpr Assertions<"Src/utiTLVParser"> asserts;

// A read of the file has failed since the walk began.
constinit bool readFailed = false;

constexpr bool isFieldSize(uint32_t size) {
    constexpr uint32_t sizes = 1u << 1 | 1u << 2 | 1u << 4;
    return size <= 4 && (sizes >> size & 1) != 0;
}

// The bit of a node's 16-bit tag that marks a compound node; none for 4-byte tag ids.
uint32_t compoundBit() {
    return isFieldSize(tagIdSize) ? 0x80u << 8 * (tagIdSize - 1) : 0;
}

bool isCompound(const ParserNode &node) {
    return (node.tag & compoundBit()) != 0;
}

uint32_t decodeField(const uint8_t *bytes, uint8_t size) {
    return size == 1 ? bytes[0] : size == 2 ? BufferToWord(bytes) : BufferToDword(bytes);
}

uint32_t readFile(uintptr_t source, void *destination, uint32_t count) {
    const int32_t done = File_Read(static_cast<int32_t>(source), destination, count);
    readFailed |= done < 0;
    return done > 0 ? static_cast<uint32_t>(done) : 0;
}

int32_t seekFile(uintptr_t source, uint32_t offset) {
    return File_SetPosition(static_cast<int32_t>(source), offset);
}

uint32_t leftInBlock() {
    return bytesReadInMemory < blockSize ? blockSize - bytesReadInMemory : 0;
}

// The next `count` bytes of a source: in place when they lie in a block, else read into `buffer`.
// Null when fewer came.
const uint8_t *fetch(uintptr_t source, uint8_t *buffer, uint32_t count) {
    if (Parser_DataRead == readBlock && source != 0 && count <= leftInBlock()) {
        const auto *bytes = reinterpret_cast<const uint8_t *>(source) + bytesReadInMemory;
        bytesReadInMemory += count;
        return bytes;
    }
    return Parser_DataRead && Parser_DataRead(source, buffer, count) >= count ? buffer : nullptr;
}

int32_t openRoot(uintptr_t source, ParserNode *node) {
    bytesRead = 0;
    const ParserNode stream{static_cast<uint16_t>(compoundBit()), source, 0, 1};
    return Parser_GetNextCompoundNode(&stream, node);
}

int32_t openMemoryRoot(const void *address, ParserNode *node) {
    bytesReadInMemory = 0;
    return openRoot(reinterpret_cast<uintptr_t>(address), node);
}

using DwordScalar = Scalar<5, 5, BufferToDword>;
using DoubleScalar = Scalar<6, 9, BufferToDouble>;

// --- reading of any source, with any header sizes

[[gnu::cold, gnu::noinline]] int32_t readNextSubNode(const ParserNode *parent, ParserNode *child) {
    if (!parent || !child)
        return asserts.fail(UTI_PARSER_NO_NODE);
    const uint64_t end = uint64_t{parent->valueOffset} + parent->length;
    if (end <= uint64_t{bytesRead} + tagIdSize + lengthSize)
        return UTI_PARSER_NO_NODE;
    return Parser_GetNextCompoundNode(parent, child);
}

[[gnu::cold, gnu::noinline]] const uint8_t *readScalarData(const ParserNode *node, uint8_t type,
                                                           int32_t *error, uint8_t *buffer,
                                                           uint32_t size) {
    int32_t unused;
    int32_t &result = error ? *error : unused;
    result = UTI_PARSER_BAD_VALUE;
    if (!node || isCompound(*node))
        return asserts.fail(nullptr);
    if (node->length == 0) {
        result = UTI_OK;
        return nullptr;
    }
    if (node->length != size) {
        result = UTI_PARSER_BAD_TYPE;
        return asserts.fail(nullptr);
    }
    const uint8_t *value = fetch(node->source, buffer, size);
    if (!value)
        return asserts.fail(nullptr);
    if (value[0] != type) {
        result = UTI_PARSER_BAD_TYPE;
        return asserts.fail(nullptr);
    }
    bytesRead += size;
    result = UTI_OK;
    return value + 1;
}

[[gnu::cold, gnu::noinline]] int32_t readBuffer(const ParserNode *node, void *buffer,
                                                uint32_t size) {
    if (!node || isCompound(*node))
        return asserts.fail(UTI_PARSER_BAD_VALUE);
    if (node->length == 0)
        return 0;
    const uint32_t count = node->length - 1;
    if (count > size || count > INT32_MAX || (!buffer && count > 0))
        return asserts.fail(UTI_PARSER_BAD_VALUE);

    uint8_t typeBuffer[1];
    const uint8_t *type = fetch(node->source, typeBuffer, 1);
    if (!type || (*type != 1 && *type != 2))
        return asserts.fail(UTI_PARSER_BAD_TYPE);
    if (count > 0) {
        auto *destination = static_cast<uint8_t *>(buffer);
        const uint8_t *data = fetch(node->source, destination, count);
        if (!data)
            return asserts.fail(UTI_PARSER_BAD_VALUE);
        if (data != destination)
            std::memcpy(destination, data, count);
    }
    bytesRead += node->length;
    return static_cast<int32_t>(count);
}

[[gnu::cold, gnu::noinline]] int32_t skipValue(const ParserNode *node) {
    const uint64_t end = node ? uint64_t{node->valueOffset} + node->length : 0;
    if (!node || end > UINT32_MAX || !Parser_SetPosition ||
        Parser_SetPosition(node->source, static_cast<uint32_t>(end)) != 0)
        return asserts.fail(UTI_PARSER_BAD_VALUE);
    bytesRead += node->length;
    return UTI_OK;
}

// Null stands for 0, with an error or without.
template <class Kind>
[[gnu::cold, gnu::noinline]] auto readScalar(const ParserNode *node, int32_t *error) {
    uint8_t buffer[Kind::size];
    const uint8_t *data = readScalarData(node, Kind::type, error, buffer, Kind::size);
    return data ? Kind::decode(data) : decltype(Kind::decode(data)){0};
}

// --- the same from a cursor where it is possible

template <class Kind>
auto getScalar(const ParserNode *node, int32_t *error) {
    const uint8_t *data = Cursor().take(node, Kind::type, Kind::size);
    if (!data)
        return readScalar<Kind>(node, error);
    if (error)
        *error = UTI_OK;
    return Kind::decode(data);
}

} // namespace

uint32_t readBlock(uintptr_t source, void *destination, uint32_t count) {
    const uint32_t left = leftInBlock();
    return Memory_Read(source, destination, count < left ? count : left);
}

int32_t seekBlock(uintptr_t source, uint32_t offset) {
    return offset <= blockSize ? Memory_SetPosition(source, offset) : -1;
}

int32_t Reader::nextOfAny(const ParserNode *parent, ParserNode *child) {
    return outside([&] { return readNextSubNode(parent, child); });
}

uint8_t Reader::byteOfAny(const ParserNode &node, int32_t &error) {
    return outside([&] { return readScalar<ByteScalar>(&node, &error); });
}

uint16_t Reader::wordOfAny(const ParserNode &node, int32_t &error) {
    return outside([&] { return readScalar<WordScalar>(&node, &error); });
}

uint32_t Reader::dword(const ParserNode &node, int32_t &error) {
    return outside([&] { return readScalar<DwordScalar>(&node, &error); });
}

int32_t Reader::copy(const ParserNode &node, void *buffer, uint32_t size) {
    int32_t count;
    return cursor_.copy(&node, buffer, size, count)
               ? count
               : outside([&] { return readBuffer(&node, buffer, size); });
}

int32_t Reader::skip(const ParserNode &node) {
    return cursor_.skip(&node) ? UTI_OK : outside([&] { return skipValue(&node); });
}

void Reader::reload() {
    cursor_.load();
}

bool Parser_ReadFailed() {
    return readFailed;
}

KeptParserState::KeptParserState()
    : tagIdSize_(tagIdSize), lengthSize_(lengthSize), bytesRead_(bytesRead),
      bytesReadInMemory_(bytesReadInMemory), blockSize_(blockSize), read_(Parser_DataRead),
      seek_(Parser_SetPosition) {}

KeptParserState::~KeptParserState() {
    tagIdSize = tagIdSize_;
    lengthSize = lengthSize_;
    bytesRead = bytesRead_;
    bytesReadInMemory = bytesReadInMemory_;
    blockSize = blockSize_;
    Parser_DataRead = read_;
    Parser_SetPosition = seek_;
}

} // namespace uti

using namespace uti;

int32_t Parser_Initialize(uint8_t tagSize, uint8_t sizeOfLength) {
    if (!isFieldSize(tagSize) || !isFieldSize(sizeOfLength))
        return asserts.fail(UTI_PARSER_BAD_SIZES);
    tagIdSize = tagSize;
    lengthSize = sizeOfLength;
    return UTI_OK;
}

int32_t TLV_ReadHeader(uintptr_t source, TlvHeader *header) {
    if (!header || !Parser_DataRead || !isFieldSize(tagIdSize) || !isFieldSize(lengthSize))
        return asserts.fail(UTI_PARSER_SHORT_HEADER);

    uint8_t buffer[8] = {};
    const uint32_t size = tagIdSize + lengthSize;
    const uint8_t *bytes = fetch(source, buffer, size);
    if (!bytes)
        return asserts.fail(UTI_PARSER_SHORT_HEADER);
    bytesRead += size;
    header->tag = decodeField(bytes, tagIdSize);
    header->length = decodeField(bytes + tagIdSize, lengthSize);
    return UTI_OK;
}

int32_t Parser_GetRootNode(int32_t handle, ParserNode *node) {
    Parser_DataRead = readFile;
    Parser_SetPosition = seekFile;
    readFailed = false;
    File_SetPosition(handle, 0);
    return openRoot(static_cast<uint32_t>(handle), node);
}

int32_t Parser_GetRootNodeInMemory(const void *address, ParserNode *node) {
    Parser_DataRead = Memory_Read;
    Parser_SetPosition = Memory_SetPosition;
    return openMemoryRoot(address, node);
}

int32_t Parser_GetRootNodeInBlock(const void *address, uint32_t size, ParserNode *node) {
    Parser_DataRead = readBlock;
    Parser_SetPosition = seekBlock;
    blockSize = size;
    return openMemoryRoot(address, node);
}

int32_t Parser_GetNextCompoundNode(const ParserNode *parent, ParserNode *child) {
    if (!parent || !child)
        return asserts.fail(UTI_PARSER_NO_NODE);
    if (!isCompound(*parent) || parent->length == 0)
        return UTI_PARSER_NO_NODE;

    TlvHeader header;
    const int32_t result = TLV_ReadHeader(parent->source, &header);
    if (result != UTI_OK)
        return asserts.fail(result);
    *child = {static_cast<uint16_t>(header.tag), parent->source, bytesRead, header.length};
    return UTI_OK;
}

int32_t Parser_GetNextSubNode(const ParserNode *parent, ParserNode *child) {
    int32_t result;
    return Cursor().next(parent, child, result) ? result : readNextSubNode(parent, child);
}

int32_t Parser_GetParameterBuffer(const ParserNode *node, void *buffer, uint32_t size) {
    int32_t count;
    return Cursor().copy(node, buffer, size, count) ? count : readBuffer(node, buffer, size);
}

uint8_t Parser_GetParameterByte(const ParserNode *node, int32_t *error) {
    return getScalar<ByteScalar>(node, error);
}

uint16_t Parser_GetParameterWord(const ParserNode *node, int32_t *error) {
    return getScalar<WordScalar>(node, error);
}

uint32_t Parser_GetParameterDword(const ParserNode *node, int32_t *error) {
    return getScalar<DwordScalar>(node, error);
}

double Parser_GetParameterDouble(const ParserNode *node, int32_t *error) {
    return readScalar<DoubleScalar>(node, error);
}

void Parser_GetParameterInsignificant(const ParserNode *node, int32_t *error) {
    const int32_t result = Cursor().skip(node) ? UTI_OK : skipValue(node);
    if (error)
        *error = result;
}

int32_t Parser_ParseNode(ParserNode *node, ParserCallback callback) {
    if (!node || !callback)
        return asserts.fail(UTI_PARSER_NULL_NODE);
    return callback(node);
}

int32_t Parser_ParseNodeEx(ParserNode *node, ParserCallbackEx callback, uintptr_t word) {
    if (!node || !callback)
        return asserts.fail(UTI_PARSER_NULL_NODE);
    return callback(node, word);
}

uint32_t Memory_Read(uintptr_t source, void *destination, uint32_t count) {
    if (source == 0)
        return asserts.fail(uint32_t{0});
    std::memcpy(destination, reinterpret_cast<const char *>(source) + bytesReadInMemory, count);
    bytesReadInMemory += count;
    return count;
}

int32_t Memory_SetPosition(uintptr_t, uint32_t offset) {
    bytesReadInMemory = offset;
    return 0;
}
