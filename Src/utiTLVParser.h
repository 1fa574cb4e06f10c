// utiTLVParser.h: what readers inside the library use beside the parser's exports: the walk over a
// node's children, and keeping a walk's state over something that may start another one.
#pragma once

#include "uti.h"

namespace uti {

// Walks the children of a node: `take` consumes a child and returns 0, or an error that ends the
// walk and is its result. A child header that cannot be read ends the walk like the last child.
template <class Take>
int32_t walkChildren(ParserNode *node, Take take) {
    ParserNode child;
    while (Parser_GetNextSubNode(node, &child) == UTI_OK) {
        const int32_t result = take(child);
        if (result != UTI_OK)
            return result;
    }
    return UTI_OK;
}

// True when a read of the file has failed since `Parser_GetRootNode`: a walk that ended there may
// have missed children.
bool Parser_ReadFailed();

// Skips a child. Returns 0 or the error.
inline int32_t skipChild(const ParserNode &child) {
    int32_t error;
    Parser_GetParameterInsignificant(&child, &error);
    return error;
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
