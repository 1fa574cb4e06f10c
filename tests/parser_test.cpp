// The TLV parser: headers, walking, typed values, sources, and what a failure leaves behind.
#include "tests/support.h"

using namespace support;
using fake::Call;
using fake::Persistence;

namespace {

using Parser = support::Terminal;

// A node of a stream with 1-byte tags and 2-byte lengths.
std::string child(uint32_t tag, std::string_view value) {
    return node(tag, value, 1, 2);
}

// Opens `bytes` as a memory stream of 1-byte tags and 2-byte lengths.
ParserNode openRoot(const ExactBlock &block) {
    EXPECT_EQ(Parser_Initialize(1, 2), 0);
    ParserNode root{};
    EXPECT_EQ(Parser_GetRootNodeInBlock(block.data(), block.size(), &root), 0);
    return root;
}

TEST_F(Parser, HeaderSizes) {
    static constexpr uint8_t sizes[] = {1, 2, 4};
    for (const uint8_t tag : sizes) {
        for (const uint8_t length : sizes) {
            ASSERT_EQ(Parser_Initialize(tag, length), 0);
            const ExactBlock block(number(0xF1, tag) + number(0x2A, length));
            TlvHeader header{};
            Parser_DataRead = Memory_Read;
            bytesReadInMemory = bytesRead = 0;
            EXPECT_EQ(TLV_ReadHeader(reinterpret_cast<uintptr_t>(block.data()), &header), 0);
            EXPECT_EQ(header.tag, 0xF1u);
            EXPECT_EQ(header.length, 0x2Au);
            EXPECT_EQ(bytesRead, 0u + tag + length);
        }
    }
    ASSERT_EQ(Parser_Initialize(2, 4), 0);
    for (const auto &[tag, length] : {std::pair(3, 2), {0, 1}, {1, 0}, {8, 1}, {1, 3}})
        EXPECT_EQ(Parser_Initialize(static_cast<uint8_t>(tag), static_cast<uint8_t>(length)),
                  -3005);
    EXPECT_EQ(tagIdSize, 2);
    EXPECT_EQ(lengthSize, 4);
}

TEST_F(Parser, ValuesOfEveryType) {
    // A getter or the size of a buffer, a child's value; what is read, the error, and the bytes
    // behind the child's header that `bytesRead` counts.
    for (const std::string row : {"b|03 FE|254 0 2",
                                  "w|04 34 12|4660 0 3",
                                  "d|05 78 56 34 92|2452903544 0 5",
                                  "f|06 00 00 00 00 00 00 F8 3F|1.5 0 9",
                                  "b||0 0 0",
                                  "w||0 0 0",
                                  "d||0 0 0",
                                  "f||0 0 0",
                                  "b|03 FE 00|0 -3002 0",
                                  "b|04 FE|0 -3002 0",
                                  "w|03 34 12|0 -3002 0",
                                  "w|03 FE|0 -3002 0",
                                  "d|01 00 00 00 00|0 -3002 0",
                                  "f|05 00 00 00 00 00 00 F8 3F|0 -3002 0",
                                  "3|01 41 42 43|ABC 3 4",
                                  "9|02 41 42 43|ABC 3 4",
                                  "2|01 41 42 43|zzz -3001 0",
                                  "0|01|zzz 0 1",
                                  "0||zzz 0 0",
                                  "5|03 41|zzz -3002 0",
                                  "4294967295|01 41|Azz 1 2"}) {
        SCOPED_TRACE(row);
        const std::size_t first = row.find('|') + 1, last = row.rfind('|');
        const std::string bytes = hex(row.substr(first, last - first));
        const ExactBlock block(child(0x80, child(5, bytes) + "padding"));
        const ParserNode root = openRoot(block);
        ParserNode value{};
        ASSERT_EQ(Parser_GetNextSubNode(&root, &value), 0);
        ASSERT_EQ(value.tag, 5);
        int32_t error = 99;
        char read[32] = "zzz";
        if (std::isdigit(row[0]))
            error = Parser_GetParameterBuffer(&value, read, static_cast<uint32_t>(std::stoul(row)));
        else
            snprintf(read, sizeof read, "%.10g",
                     row[0] == 'b'   ? Parser_GetParameterByte(&value, &error)
                     : row[0] == 'w' ? Parser_GetParameterWord(&value, &error)
                     : row[0] == 'd' ? Parser_GetParameterDword(&value, &error)
                                     : Parser_GetParameterDouble(&value, &error));
        const std::string consumed = std::to_string(bytesRead - value.valueOffset);
        EXPECT_EQ(read + " "s + std::to_string(error) + " " + consumed, row.substr(last + 1));
        EXPECT_TRUE(error != -3001 || bytesReadInMemory == value.valueOffset) << "nothing was read";
    }
}

TEST_F(Parser, TextsOfEveryLengthAreCopiedExactly) {
    std::string text;
    for (uint32_t length = 0; length <= 70; ++length) {
        const ExactBlock block(child(0x80, child(1, typed(1, text)) + child(2, "")));
        const ParserNode root = openRoot(block);
        ParserNode value{}, next{};
        ASSERT_EQ(Parser_GetNextSubNode(&root, &value), 0);
        std::string room(length + 2, '.');
        EXPECT_EQ(Parser_GetParameterBuffer(&value, room.data() + 1, length), signed(length));
        EXPECT_EQ(room, "." + text + ".");
        EXPECT_EQ(bytesRead, block.size() - 3);
        EXPECT_EQ(bytesReadInMemory, bytesRead);
        EXPECT_EQ(Parser_GetNextSubNode(&root, &next), -3000);
        text += static_cast<char>('0' + length);
    }
}

TEST_F(Parser, NullAndCompoundNodesAreRefused) {
    const ExactBlock block(child(0x80, child(0x81, child(5, hex("03 01"))) + "pad"));
    ParserNode root = openRoot(block), inner{};
    int32_t error = 0;
    ASSERT_EQ(Parser_GetNextSubNode(&root, &inner), 0);
    char buffer[4];
    EXPECT_EQ(Parser_GetParameterBuffer(&inner, buffer, 4), -3001);
    EXPECT_EQ(Parser_GetParameterBuffer(nullptr, buffer, 4), -3001);
    EXPECT_EQ(Parser_GetParameterByte(&inner, &error), 0);
    EXPECT_EQ(error, -3001);
    EXPECT_EQ(Parser_GetParameterDword(nullptr, &error), 0u);
    EXPECT_EQ(error, -3001);
    Parser_GetParameterInsignificant(nullptr, &error);
    EXPECT_EQ(error, -3001);
    EXPECT_EQ(Parser_GetParameterWord(nullptr, nullptr), 0);
    Parser_GetParameterInsignificant(nullptr, nullptr);
    EXPECT_EQ(Parser_GetNextSubNode(nullptr, &inner), -3000);
    EXPECT_EQ(Parser_GetNextSubNode(&root, nullptr), -3000);
    EXPECT_EQ(Parser_GetNextCompoundNode(nullptr, &inner), -3000);
    EXPECT_EQ(Parser_GetNextCompoundNode(&root, nullptr), -3000);
    EXPECT_EQ(Parser_ParseNode(nullptr, ParseHeader), -3003);
    EXPECT_EQ(Parser_ParseNodeEx(&root, nullptr, 1), -3003);
    EXPECT_EQ(bytesRead, inner.valueOffset) << "nothing was read";
    const ParserNode primitive{5, root.source, 0, 3}, empty{0x80, root.source, 0, 0};
    EXPECT_EQ(Parser_GetNextCompoundNode(&primitive, &inner), -3000);
    EXPECT_EQ(Parser_GetNextCompoundNode(&empty, &inner), -3000);
    EXPECT_EQ(Memory_Read(0, buffer, 4), 0u);

    // A source that is missing, wholly or in part.
    const ParserNode value{5, root.source, bytesRead, 3};
    EXPECT_EQ(Parser_GetParameterBuffer(&value, nullptr, 4), -3001);
    Parser_SetPosition = nullptr;
    Parser_GetParameterInsignificant(&value, &error);
    EXPECT_EQ(error, -3001);
    Parser_DataRead = nullptr;
    EXPECT_EQ(Parser_GetParameterBuffer(&value, buffer, 4), -3002);
    EXPECT_EQ(Parser_GetNextSubNode(&root, &inner), -3004);
    EXPECT_EQ(Parser_GetRootNodeInBlock(nullptr, 9, &inner), -3004);
}

TEST_F(Parser, WalkVisitsSkipsAndEnds) {
    const std::string stream = child(0x80, child(1, hex("03 07")) + child(0x99, "skipped") +
                                               child(2, hex("02 68 69")) + child(3, ""));
    const auto walk = [](ParserNode *parent, uintptr_t word) {
        auto &seen = *reinterpret_cast<std::string *>(word);
        ParserNode next;
        while (Parser_GetNextSubNode(parent, &next) == 0) {
            int32_t error = 0;
            char text[8] = {};
            if (next.tag == 1)
                seen += std::to_string(Parser_GetParameterByte(&next, &error));
            else if (next.tag == 2)
                seen += Parser_GetParameterBuffer(&next, text, 7) > 0 ? text : "?";
            else
                Parser_GetParameterInsignificant(&next, &error);
            if (error)
                return error;
            seen += ' ';
        }
        return 0;
    };
    const auto text = [&](ParserNode root) {
        std::string seen;
        EXPECT_EQ(Parser_ParseNodeEx(&root, walk, reinterpret_cast<uintptr_t>(&seen)), 0);
        return seen;
    };
    const ExactBlock block(stream);
    EXPECT_EQ(text(openRoot(block)), "7  hi ") << "an empty last child is not returned";

    ParserNode root{};
    ASSERT_EQ(Parser_GetRootNodeInMemory(block.data(), &root), 0);
    EXPECT_EQ(text(root), "7  hi ");

    terminal.files["f"] = stream + "behind the root";
    const int32_t handle = File_Open("f", FILE_MODE_READ);
    ASSERT_EQ(Parser_GetRootNode(handle, &root), 0);
    EXPECT_EQ(text(root), "7  hi ");

    fake::failCall(Call::seek, 2, Persistence::once); // the skip, after the seek to the start
    ASSERT_EQ(Parser_GetRootNode(handle, &root), 0);
    std::string seen;
    EXPECT_EQ(Parser_ParseNodeEx(&root, walk, reinterpret_cast<uintptr_t>(&seen)), -3001);
    File_Close(handle);
}

TEST_F(Parser, StreamsThatEndEarly) {
    // A compound root that claims 200 bytes and a child that claims 100.
    const std::string stream = hex("80 C8 00 05 64 00 01") + "abc";
    forEachTruncation(stream, [](const ExactBlock &block) {
        Parser_Initialize(1, 2);
        ParserNode root{}, value{};
        const int32_t opened = Parser_GetRootNodeInBlock(block.data(), block.size(), &root);
        ASSERT_EQ(opened, block.size() < 3 ? -3004 : 0);
        if (opened)
            return;
        ASSERT_EQ(Parser_GetNextSubNode(&root, &value), block.size() < 6 ? -3004 : 0);
        if (block.size() < 6)
            return;
        char buffer[128];
        const uint32_t before = bytesRead;
        EXPECT_EQ(Parser_GetParameterBuffer(&value, buffer, sizeof buffer),
                  block.size() < 7 ? -3002 : -3001);
        EXPECT_EQ(bytesRead, before);
        int32_t error = 0;
        Parser_GetParameterInsignificant(&value, &error);
        EXPECT_EQ(error, -3001) << "a skip past the end of the block";
    });

    // Lengths whose sum wraps around 32 bits lead neither backwards nor out of the block.
    const ExactBlock block(hex("0180 FFFFFFFF 0100 F8FFFFFF") + "tail");
    Parser_Initialize(2, 4);
    ParserNode root{}, value{};
    ASSERT_EQ(Parser_GetRootNodeInBlock(block.data(), block.size(), &root), 0);
    ASSERT_EQ(Parser_GetNextSubNode(&root, &value), 0);
    int32_t error = 0;
    Parser_DataRead = Memory_Read;
    Parser_SetPosition = Memory_SetPosition;
    Parser_GetParameterInsignificant(&value, &error);
    EXPECT_EQ(error, -3001);

    Parser_Initialize(4, 4); // no node of such a stream is compound
    EXPECT_EQ(Parser_GetRootNodeInBlock(block.data(), block.size(), &root), -3000);
    tagIdSize = 200; // an application wrote where it must not
    EXPECT_EQ(TLV_ReadHeader(value.source, nullptr), -3004);
    TlvHeader header;
    EXPECT_EQ(TLV_ReadHeader(value.source, &header), -3004);
    EXPECT_EQ(Parser_GetRootNodeInBlock(block.data(), block.size(), &root), -3000);
    tagIdSize = 4, lengthSize = 3;
    EXPECT_EQ(TLV_ReadHeader(value.source, &header), -3004);
}

} // namespace
