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

    void note(const char *what, uint64_t value) { seen += what + std::to_string(value) + ' '; }

    bool children(const ParserNode &parent, int depth) {
        ParserNode node;
        while (++steps < 500) {
            const int32_t result = Parser_GetNextSubNode(&parent, &node);
            note("sub", static_cast<uint32_t>(result));
            isClean = isClean && result != UTI_PARSER_SHORT_HEADER;
            if (result != UTI_OK)
                return result == UTI_PARSER_NO_NODE;
            note("tag", node.tag), note("at", node.valueOffset), note("length", node.length);
            if (!consume(node, depth))
                return false;
            note("read", bytesRead);
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
            const uint32_t room = plan.below(40);
            const support::ExactBlock buffer(std::string(room, 'x'));
            error = std::min(Parser_GetParameterBuffer(&node, buffer.data(), room), 0);
            seen.append(buffer.data(), room);
            break;
        }
        case 1:
            note("byte", Parser_GetParameterByte(&node, &error));
            break;
        case 2:
            note("word", Parser_GetParameterWord(&node, &error));
            break;
        case 3:
            note("dword", Parser_GetParameterDword(&node, &error));
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
            return depth < 12 ? children(node, depth + 1) : false;
        }
        note("error", static_cast<uint32_t>(error));
        isClean = isClean && error == UTI_OK;
        return true;
    }

    void run(int32_t rootResult, const ParserNode &root) {
        note("root", static_cast<uint32_t>(rootResult));
        isClean = rootResult == UTI_OK && uint64_t{root.valueOffset} + root.length <= size;
        if (isClean)
            children(root, 0);
    }
};

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size) {
    Library library;
    Input in(data, size);
    const uint8_t sizes[] = {1, 2, 4};
    const uint8_t tagBytes = in.pick(sizes), lengthBytes = in.pick(sizes);
    const std::string plan = in.bytes(64), stream = in.takeRest();
    const Input choices(reinterpret_cast<const uint8_t *>(plan.data()), plan.size());
    const support::ExactBlock block(stream);
    ParserNode root;

    Parser_Initialize(tagBytes, lengthBytes);
    Walk ofBlock{choices, stream.size()};
    ofBlock.run(Parser_GetRootNodeInBlock(block.data(), block.size(), &root), root);

    Parser_Initialize(tagBytes, lengthBytes);
    library.terminal.files["f"] = stream;
    const int32_t file = File_Open("f", FILE_MODE_READ);
    Walk ofFile{choices, stream.size()};
    ofFile.run(Parser_GetRootNode(file, &root), root);
    REQUIRE(ofFile.seen == ofBlock.seen);

    // Memory has no bounds but the lengths in the stream, so those must be right.
    if (ofBlock.isClean) {
        Parser_Initialize(tagBytes, lengthBytes);
        Walk ofMemory{choices, stream.size()};
        ofMemory.run(Parser_GetRootNodeInMemory(block.data(), &root), root);
        REQUIRE(ofMemory.seen == ofBlock.seen);
    }

    armFault(in = Input(data, size));
    Parser_Initialize(tagBytes, lengthBytes);
    Walk ofFaulty{choices, stream.size()};
    ofFaulty.run(Parser_GetRootNode(file, &root), root);
    File_Close(file);
    return 0;
}
