// utiTLVParser.h: what readers inside the library use beside the parser's exports: the cursor under
// them, the walk over a node's children, and keeping a walk's state over something that may start
// another one.
#pragma once

#include "terminal.h"
#include "uti.h"

#include <cstring>

namespace uti {

// The bounded block as a source.
extern uint32_t blockSize;
uint32_t readBlock(uintptr_t source, void *destination, uint32_t count);
int32_t seekBlock(uintptr_t source, uint32_t offset);

// A kind of scalar: its type code, the bytes of its value, that code among them, and its converter.
template <uint8_t typeCode, uint32_t valueSize, auto converter>
struct Scalar {
    static constexpr uint8_t type = typeCode;
    static constexpr uint32_t size = valueSize;
    static auto decode(const uint8_t *data) { return converter(data); }
};

inline uint8_t firstByte(const void *data) {
    return *static_cast<const uint8_t *>(data);
}

using ByteScalar = Scalar<3, 2, firstByte>;
using WordScalar = Scalar<4, 3, BufferToWord>;

// Copies the first and the last `size` bytes of `count`, which are at least as many.
template <std::size_t size>
void copyEnds(uint8_t *to, const uint8_t *from, uint32_t count) {
    uint8_t first[size], last[size];
    std::memcpy(first, from, size);
    std::memcpy(last, from + count - size, size);
    std::memcpy(to, first, size);
    std::memcpy(to + count - size, last, size);
}

inline constexpr uint32_t shortSize = 32;

// Copies up to `shortSize` bytes by moves in place: with a call a text would take a fourth longer.
inline void copyShort(uint8_t *to, const uint8_t *from, uint32_t count) {
    if (count >= shortSize / 2)
        copyEnds<shortSize / 2>(to, from, count);
    else if (count >= 8)
        copyEnds<8>(to, from, count);
    else if (count >= 4)
        copyEnds<4>(to, from, count);
    else
        for (uint32_t i = 0; i < count; ++i)
            to[i] = from[i];
}

// The position in what nearly all walks read: a bounded block whose headers have a tag id of one
// byte and a length of two. Nodes and values are taken in place, and the exported variables follow
// each step. An operation tells that it was not possible, and has done nothing, for any other
// source and for all that is wrong in the stream.
class Cursor {
public:
    Cursor() { load(); }

    // Takes the position from the exported variables, after others have moved it.
    void load() {
        position_ = bytesReadInMemory;
        left_ = position_ <= blockSize ? blockSize - position_ : 0;
        inBlock_ = Parser_DataRead == readBlock && tagIdSize == 1 && lengthSize == 2 &&
                   bytesRead == position_;
    }

    // `result` becomes that of `Parser_GetNextSubNode`.
    bool next(const ParserNode *parent, ParserNode *child, int32_t &result) {
        constexpr uint32_t headerSize = 3;
        if (!inBlock_ || !parent || !child || parent->source == 0 || !isAtHand(headerSize))
            return false;
        if (!isCompound(*parent) || parent->length == 0 ||
            uint64_t{parent->valueOffset} + parent->length <= uint64_t{position_} + headerSize) {
            result = UTI_PARSER_NO_NODE;
            return true;
        }
        const uint8_t *header = move(*parent, headerSize);
        child->tag = header[0];
        child->source = parent->source;
        child->valueOffset = position_;
        child->length = BufferToWord(header + 1);
        result = UTI_OK;
        return true;
    }

    // The data of a scalar, or null.
    const uint8_t *take(const ParserNode *node, uint8_t type, uint32_t size) {
        if (!inBlock_ || !node || node->length != size || !canTake(*node, size) ||
            *at(*node) != type)
            return nullptr;
        return move(*node, size) + 1;
    }

    // `count` becomes the number of bytes copied. For short data only.
    bool copy(const ParserNode *node, void *buffer, uint32_t size, int32_t &count) {
        if (!inBlock_ || !node || !buffer)
            return false;
        const uint32_t bytes = node->length - 1; // an empty node has far too many
        if (bytes > shortSize || bytes > size || !canTake(*node, node->length) ||
            (*at(*node) != 1 && *at(*node) != 2))
            return false;
        copyShort(static_cast<uint8_t *>(buffer), move(*node, node->length) + 1, bytes);
        count = static_cast<int32_t>(bytes);
        return true;
    }

    bool skip(const ParserNode *node) {
        if (!inBlock_ || Parser_SetPosition != seekBlock || !node ||
            node->valueOffset != position_ || !isAtHand(node->length))
            return false;
        move(*node, node->length);
        return true;
    }

private:
    static bool isCompound(const ParserNode &node) { return (node.tag & 0x80) != 0; }

    // Whether so many bytes, of which there is at least one, are left.
    bool isAtHand(uint32_t count) const { return count - 1 < left_; }

    bool canTake(const ParserNode &node, uint32_t count) const {
        return !isCompound(node) && node.source != 0 && isAtHand(count);
    }

    const uint8_t *at(const ParserNode &node) const {
        return reinterpret_cast<const uint8_t *>(node.source) + position_;
    }

    // Moves on and gives the bytes that were passed.
    const uint8_t *move(const ParserNode &node, uint32_t count) {
        const uint8_t *bytes = at(node);
        position_ += count;
        left_ -= count;
        bytesRead = bytesReadInMemory = position_;
        return bytes;
    }

    uint32_t position_;
    uint32_t left_; // in the block
    bool inBlock_;
};

// A walk inside the library: the exported operations with the cursor kept from one to the next.
class Reader {
public:
    int32_t next(const ParserNode *parent, ParserNode *child) {
        int32_t result;
        return cursor_.next(parent, child, result) ? result : nextOfAny(parent, child);
    }

    // Nearly all numbers of a description are of these two kinds.
    uint8_t byte(const ParserNode &node, int32_t &error) {
        const uint8_t *data = take<ByteScalar>(node, error);
        return data ? ByteScalar::decode(data) : byteOfAny(node, error);
    }
    uint16_t word(const ParserNode &node, int32_t &error) {
        const uint8_t *data = take<WordScalar>(node, error);
        return data ? WordScalar::decode(data) : wordOfAny(node, error);
    }
    uint32_t dword(const ParserNode &node, int32_t &error);
    int32_t copy(const ParserNode &node, void *buffer, uint32_t size);
    int32_t skip(const ParserNode &node);

    // Calls what moves the position by itself.
    template <class Call>
    auto outside(Call call) {
        const auto result = call();
        reload();
        return result;
    }

private:
    template <class Kind>
    const uint8_t *take(const ParserNode &node, int32_t &error) {
        error = UTI_OK;
        return cursor_.take(&node, Kind::type, Kind::size);
    }

    int32_t nextOfAny(const ParserNode *parent, ParserNode *child);
    uint8_t byteOfAny(const ParserNode &node, int32_t &error);
    uint16_t wordOfAny(const ParserNode &node, int32_t &error);
    void reload();

    Cursor cursor_;
};

// Walks the children of a node: `take` consumes a child and returns 0, or an error that ends the
// walk and is its result. A child header that cannot be read ends the walk like the last child.
template <class Take>
int32_t walkChildren(Reader &reader, const ParserNode *node, Take take) {
    ParserNode child;
    while (reader.next(node, &child) == UTI_OK) {
        const int32_t result = take(child);
        if (result != UTI_OK)
            return result;
    }
    return UTI_OK;
}

// True when a read of the file has failed since `Parser_GetRootNode`: a walk that ended there may
// have missed children.
bool Parser_ReadFailed();

template <class Take>
int32_t walkChildren(const ParserNode *node, Take take) {
    Reader reader;
    return walkChildren(reader, node, [&](ParserNode &child) {
        return reader.outside([&] { return take(child); });
    });
}

// Skips a child. Returns 0 or the error.
inline int32_t skipChild(const ParserNode &child) {
    int32_t error;
    Parser_GetParameterInsignificant(&child, &error);
    return error;
}

// Skips all children of a node.
inline int32_t skipChildren(Reader &reader, const ParserNode *node) {
    return walkChildren(reader, node, [&](ParserNode &child) { return reader.skip(child); });
}

// The parser's state at one moment; put back when this goes out of scope.
class KeptParserState {
public:
    KeptParserState();
    ~KeptParserState();
    KeptParserState(const KeptParserState &) = delete;
    KeptParserState &operator=(const KeptParserState &) = delete;

private:
    uint8_t tagIdSize_;
    uint8_t lengthSize_;
    uint32_t bytesRead_;
    uint32_t bytesReadInMemory_;
    uint32_t blockSize_;
    ParserReadFunction read_;
    ParserSeekFunction seek_;
};

} // namespace uti
