// resource_model.cpp: resource files to bytes and back.
#include "tools/resource_model.h"

#include "Src/utiResource.h"
#include "common/bytes.h"

#include <algorithm>
#include <set>

namespace uti::tool {

namespace {

constexpr std::size_t emptyNodeSize = 6;
constexpr std::size_t entrySize = 4;
constexpr std::size_t mostEntries = 0x1000;

// How many times larger than the file its strings may be when none is shared. Languages may share
// one table, but a damaged file must not be blown up to fill the memory.
constexpr uint64_t sharingLimit = 64;

enum ValueType : uint8_t { buffer = 1, word = 4, doubleWord = 5 };

std::string littleEndian(uint64_t value, unsigned size) {
    uint8_t bytes[8];
    putNumber(bytes, value, size, ByteOrder::little);
    return {reinterpret_cast<const char *>(bytes), size};
}

uint16_t wordAt(std::string_view bytes, std::size_t offset) {
    const auto *at = reinterpret_cast<const uint8_t *>(bytes.data()) + offset;
    return static_cast<uint16_t>(getNumber(at, 2, ByteOrder::little));
}

std::string node(uint16_t tag, const std::string &value) {
    return littleEndian(tag, 2) + littleEndian(value.size(), 4) + value;
}

std::string numberNode(uint16_t tag, ValueType type, uint64_t value) {
    const unsigned size = type == word ? 2 : 4;
    return node(tag, static_cast<char>(type) + littleEndian(value, size));
}

std::size_t stringsSize(const Strings &strings) {
    std::size_t size = 0;
    for (const auto &[index, bytes] : strings)
        size += bytes.size();
    return size;
}

std::size_t tableSize(const Strings &strings, std::size_t indexSize) {
    return strings.empty() ? 0 : indexSize + stringsSize(strings);
}

std::string writeTable(const Strings &strings, std::size_t indexSize) {
    std::string index;
    std::string bytes;
    for (const auto &[number, string] : strings) {
        index.resize(entrySize * number);
        index += littleEndian(indexSize + bytes.size(), 2);
        index += littleEndian(string.size(), 2);
        bytes += string;
    }
    index.resize(tableSize(strings, indexSize) - bytes.size());
    return index + bytes;
}

// The tree of a file whose first table stands at `tableOffset`.
std::string writeTree(const ResourceFile &file, std::size_t tableOffset) {
    std::string header;
    if (file.version)
        header += numberNode(resource::version, word, *file.version);
    for (const auto &[section, tables] : file.sections) {
        std::string blocks;
        for (const auto &[language, strings] : tables) {
            const std::size_t offset = strings.empty() ? 0 : tableOffset;
            blocks += node(resource::languageBlock,
                           node(resource::languageCode, static_cast<char>(buffer) + language.code) +
                               numberNode(resource::languageInfo, word, language.info) +
                               numberNode(resource::tableOffset, doubleWord, offset));
            tableOffset += tableSize(strings, indexSize(tables));
        }
        header += node(static_cast<uint16_t>(resource::firstSection + section), blocks);
    }
    return node(file.rootTag, node(resource::header, header));
}

// Reads a file once, for `readResourceFile`.
class FileReader {
public:
    FileReader(std::string_view bytes, Diagnostics &diagnostics)
        : bytes_(bytes), diagnostics_(diagnostics) {}

    std::optional<ResourceFile> read();

private:
    struct Block {
        uint8_t section;
        Language language;
        uint32_t tableOffset;
    };

    template <class... Parts>
    bool fail(const Parts &...parts) {
        diagnostics_.error({}, parts...);
        return false;
    }

    template <class Take>
    bool walkChildren(const ParserNode &parent, Take take);
    bool isRead(const ParserNode &node, int32_t result);
    bool skip(const ParserNode &node);
    bool readRoot(const ParserNode &root);
    bool readHeader(const ParserNode &header);
    bool readSection(const ParserNode &section, uint8_t number);
    bool readBlock(const ParserNode &node, uint8_t section);
    bool readTables();
    bool checkLimits();
    bool readTable(const Block &block, std::size_t end, LanguageTable &table);

    std::string_view bytes_;
    Diagnostics &diagnostics_;
    ResourceFile file_;
    std::vector<Block> blocks_;
};

bool fits(const ParserNode &child, const ParserNode &parent) {
    return uint64_t{child.valueOffset} + child.length <=
           uint64_t{parent.valueOffset} + parent.length;
}

// `take` consumes a child; it returns false after an error, which ends the walk.
template <class Take>
bool FileReader::walkChildren(const ParserNode &parent, Take take) {
    ParserNode child;
    while (Parser_GetNextSubNode(&parent, &child) == UTI_OK) {
        if (!fits(child, parent))
            return fail("the node ", Hex{child.tag, 4}, " whose value is at offset ",
                        Hex{child.valueOffset}, " is longer than its parent");
        if (!take(child))
            return false;
    }
    return true;
}

// False when the value of a node could not be read or passed over.
bool FileReader::isRead(const ParserNode &node, int32_t result) {
    return result >= 0 || fail("the value of the node ", Hex{node.tag, 4}, " at offset ",
                               Hex{node.valueOffset}, " has the wrong type or length");
}

bool FileReader::skip(const ParserNode &node) {
    int32_t error;
    Parser_GetParameterInsignificant(&node, &error);
    return isRead(node, error);
}

bool FileReader::readRoot(const ParserNode &root) {
    if (uint64_t{root.valueOffset} + root.length > bytes_.size())
        return fail("the file is cut off, or is no resource file");
    file_.rootTag = root.tag;

    // The parser does not return an empty header. Behind a header string tables may lie in the root
    // that are no nodes; the first thing that cannot be one ends the walk.
    bool found = root.length <= emptyNodeSize;
    ParserNode child;
    while (Parser_GetNextSubNode(&root, &child) == UTI_OK && fits(child, root)) {
        const bool isHeader = child.tag == resource::header;
        if (isHeader ? !readHeader(child) : !skip(child))
            return false;
        found = found || isHeader;
    }
    return found || fail("there is no resource header");
}

bool FileReader::readHeader(const ParserNode &header) {
    return walkChildren(header, [&](const ParserNode &child) {
        if (child.tag == resource::version) {
            int32_t error;
            file_.version = Parser_GetParameterWord(&child, &error);
            return isRead(child, error);
        }
        if (child.tag >= resource::firstSection &&
            child.tag < resource::firstSection + resource::sectionsInFile)
            return readSection(child, static_cast<uint8_t>(child.tag - resource::firstSection));
        return skip(child);
    });
}

bool FileReader::readSection(const ParserNode &section, uint8_t number) {
    return walkChildren(section, [&](const ParserNode &child) {
        return child.tag == resource::languageBlock ? readBlock(child, number) : skip(child);
    });
}

bool FileReader::readBlock(const ParserNode &node, uint8_t section) {
    Block block{section, {}, 0};
    const bool walked = walkChildren(node, [&](const ParserNode &child) {
        int32_t result = UTI_OK;
        if (child.tag == resource::languageCode) {
            char code[3];
            result = Parser_GetParameterBuffer(&child, code, sizeof code);
            if (result >= 0)
                block.language.code.assign(code, static_cast<std::size_t>(result));
        } else if (child.tag == resource::languageInfo) {
            block.language.info = Parser_GetParameterWord(&child, &result);
        } else if (child.tag == resource::tableOffset) {
            block.tableOffset = Parser_GetParameterDword(&child, &result);
        } else {
            return skip(child);
        }
        return isRead(child, result);
    });
    if (!walked)
        return false;

    std::string &code = block.language.code;
    if (code.size() == 3 && code[2] == 0)
        code.pop_back();
    if (!isLanguageCode(code))
        return fail("section ", +section,
                    " has a language code that is not two lower-case letters");
    blocks_.push_back(std::move(block));
    return true;
}

bool FileReader::readTable(const Block &block, std::size_t end, LanguageTable &table) {
    const std::string_view bytes = bytes_.substr(block.tableOffset);
    end = std::min(end - block.tableOffset, entrySize * mostEntries);
    std::size_t total = 0;
    for (std::size_t at = 0; at + entrySize <= end && total <= tableLimit; at += entrySize) {
        const std::size_t offset = wordAt(bytes, at);
        const std::size_t length = wordAt(bytes, at + 2);
        if (offset == 0 && length == 0)
            continue;

        const auto index = static_cast<uint16_t>(at / entrySize);
        if (offset > bytes.size() || length > bytes.size() - offset)
            return fail("string ", Hex{stringId(block.section, index), 4}, " in ",
                        block.language.code, " reaches past the end of the file");
        table.strings[index] = bytes.substr(offset, length);
        total += length;
        end = std::min(end, offset);
    }
    return true;
}

bool FileReader::readTables() {
    std::set<std::size_t> ends{bytes_.size()};
    for (const Block &block : blocks_)
        ends.insert(block.tableOffset);

    std::size_t total = 0;
    for (const Block &block : blocks_) {
        const Language &language = block.language;
        if (block.tableOffset > 0 && bytes_.size() < uint64_t{block.tableOffset} + entrySize)
            return fail("the string table of section ", +block.section, " in ", language.code,
                        " would lie past the end of the file");
        std::vector<LanguageTable> &tables = file_.sections[block.section];
        const auto isSame = [&](const auto &table) { return table.language.code == language.code; };
        if (std::ranges::any_of(tables, isSame)) {
            diagnostics_.warning({}, "section ", +block.section, " has ", language.code,
                                 " twice; the second is never used and left out");
            continue;
        }

        LanguageTable &table = tables.emplace_back(LanguageTable{language, {}});
        const std::size_t end = *ends.upper_bound(block.tableOffset);
        if (block.tableOffset > 0 && !readTable(block, end, table))
            return false;
        total += stringsSize(table.strings);
        if (total > sharingLimit * bytes_.size())
            return fail("the string tables overlap far too often");
    }
    return checkLimits();
}

bool FileReader::checkLimits() {
    for (const auto &[section, tables] : file_.sections) {
        for (const auto &[language, strings] : tables) {
            if (firstBeyondLimit(strings, indexSize(tables)))
                return fail("the strings of section ", +section, " in ", language.code,
                            " overlap; apart they would not fit 64 KiB");
        }
    }
    return true;
}

std::optional<ResourceFile> FileReader::read() {
    ParserNode root;
    Parser_Initialize(2, 4);
    if (bytes_.size() > UINT32_MAX ||
        Parser_GetRootNodeInBlock(bytes_.data(), static_cast<uint32_t>(bytes_.size()), &root) !=
            UTI_OK ||
        root.tag < firstRootTag) {
        fail("this is no resource file");
        return std::nullopt;
    }
    if (!readRoot(root) || !readTables())
        return std::nullopt;
    return std::move(file_);
}

} // namespace

bool isLanguageCode(std::string_view code) {
    return code.size() == 2 && code[0] >= 'a' && code[0] <= 'z' && code[1] >= 'a' && code[1] <= 'z';
}

std::size_t indexSize(const std::vector<LanguageTable> &section) {
    std::size_t entries = 0;
    for (const auto &[language, strings] : section) {
        if (!strings.empty())
            entries = std::max(entries, strings.rbegin()->first + std::size_t{1});
    }
    return entrySize * entries;
}

std::optional<uint16_t> firstBeyondLimit(const Strings &strings, std::size_t indexSize) {
    std::size_t offset = indexSize;
    for (const auto &[index, bytes] : strings) {
        if (offset >= tableLimit || bytes.size() > tableLimit - offset)
            return index;
        offset += bytes.size();
    }
    return std::nullopt;
}

std::string writeResourceFile(const ResourceFile &file) {
    const std::size_t treeSize = writeTree(file, 0).size();
    std::string bytes = writeTree(file, treeSize);
    for (const auto &[section, tables] : file.sections) {
        for (const auto &[language, strings] : tables)
            bytes += writeTable(strings, indexSize(tables));
    }
    return bytes;
}

std::optional<ResourceFile> readResourceFile(std::string_view bytes, Diagnostics &diagnostics) {
    return FileReader(bytes, diagnostics).read();
}

} // namespace uti::tool
