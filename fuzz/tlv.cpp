// The TLV parser: a file, a block and memory that hold the same stream tell the same.
#include "fuzz/terminal.h"

using namespace fuzz;

namespace {

// What a walk over one source came to, and the plan that says what is done with each node.
struct Walk {
    Input plan;
    std::size_t size;
    std::string seen = {};
    bool isClean = true; // no error, and nothing lay outside the stream
    int steps = 0;

    template <class... Values>
    void note(Values... values) {
        seen += ((std::to_string(static_cast<uint32_t>(values)) + ' ') + ...);
    }

    bool children(const ParserNode &parent, int depth) {
        ParserNode node;
        while (++steps < 500) {
            const int32_t result = Parser_GetNextSubNode(&parent, &node);
            note(result);
            isClean = isClean && result != UTI_PARSER_SHORT_HEADER;
            if (result != UTI_OK)
                return result == UTI_PARSER_NO_NODE;
            note(node.tag, node.valueOffset, node.length);
            if (!consume(node, depth))
                return false;
            note(bytesRead);
        }
        return false;
    }

    // False ends the walk: a seek or a read beyond the end is where sources may differ.
    bool consume(const ParserNode &node, int depth) {
        int32_t error = UTI_OK;
        if (uint64_t{node.valueOffset} + node.length > size)
            return isClean = false;
        switch (plan.below(8)) {
        case 0: {
            const support::ExactBlock buffer(std::string(plan.below(40), 'x'));
            error = std::min(Parser_GetParameterBuffer(&node, buffer.data(), buffer.size()), 0);
            seen.append(buffer.data(), buffer.size());
            break;
        }
        case 1:
            note(Parser_GetParameterByte(&node, &error));
            break;
        case 2:
            note(Parser_GetParameterWord(&node, &error));
            break;
        case 3:
            note(Parser_GetParameterDword(&node, &error));
            break;
        case 4: {
            const double value = Parser_GetParameterDouble(&node, &error);
            seen.append(reinterpret_cast<const char *>(&value), sizeof value);
            break;
        }
        case 5:
            Parser_GetParameterInsignificant(&node, &error);
            break;
        default:
            return depth < 12 && children(node, depth + 1);
        }
        note(error);
        isClean = isClean && error == UTI_OK;
        return true;
    }
};

} // namespace

void fuzz::run(Input &in) {
    Library library;
    const Input whole = in;
    const uint8_t sizes[] = {1, 2, 4};
    const uint8_t tagBytes = in.pick(sizes), lengthBytes = in.pick(sizes);
    const std::string plan = in.bytes(64), stream = in.takeRest();
    const support::ExactBlock block(stream);
    library.terminal.files["f"] = stream;
    const int32_t file = File_Open("f", FILE_MODE_READ);
    const auto walk = [&](auto openRoot, auto... source) {
        ParserNode root;
        Walk result{Input(plan), stream.size()};
        Parser_Initialize(tagBytes, lengthBytes);
        const int32_t opened = openRoot(source..., &root);
        result.note(opened);
        result.isClean =
            opened == UTI_OK && uint64_t{root.valueOffset} + root.length <= result.size;
        if (result.isClean)
            result.children(root, 0);
        return result;
    };
    const Walk ofBlock = walk(Parser_GetRootNodeInBlock, block.data(), block.size());
    REQUIRE(walk(Parser_GetRootNode, file).seen == ofBlock.seen);
    // Memory has no bounds but the lengths in the stream, so those must be right.
    REQUIRE(!ofBlock.isClean ||
            walk(Parser_GetRootNodeInMemory, block.data()).seen == ofBlock.seen);
    armFault(in = whole);
    walk(Parser_GetRootNode, file);
    File_Close(file);
}
