// resource_model.cpp: resource files to bytes and back.
#include "tools/resource_model.h"

#include "Src/utiResource.h"
#include "common/bytes.h"

#include <algorithm>
#include <set>

namespace uti::tool {

namespace {

constexpr std::size_t emptyNodeSize = 6;
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

// Reads a file once, for `readResourceFile`. Whatever is wrong is reported with its offset, and the
// reading goes on behind it.
class FileReader {
public:
    FileReader(std::string_view bytes, Diagnostics &diagnostics)
        : bytes_(bytes), diagnostics_(diagnostics), isUsed_(bytes.size()) {}

    std::optional<ResourceFile> read();

private:
    struct Block {
        uint8_t section;
        Language language;
        uint32_t tableOffset;
    };

    template <class... Parts>
    void fail(const Parts &...parts) {
        diagnostics_.error({}, parts...);
    }

    template <class Take>
    void walkChildren(const ParserNode &parent, Take take);
    void readValue(const ParserNode &node, int32_t result);
    void readRoot(const ParserNode &root);
    void readHeader(const ParserNode &header);
    void readSection(const ParserNode &section, uint8_t number);
    void readBlock(const ParserNode &node, uint8_t section);
    void readTables();
    void readTable(const Block &block, std::size_t nextTable, LanguageTable &table);
    void checkLimits();
    void reportUnused();
    void use(std::size_t offset, std::size_t size);

    std::string_view bytes_;
    Diagnostics &diagnostics_;
    ResourceFile file_;
    std::vector<Block> blocks_;
    std::vector<bool> isUsed_; // by bytes: what a node or a string takes
};

bool fits(const ParserNode &child, const ParserNode &parent) {
    return uint64_t{child.valueOffset} + child.length <=
           uint64_t{parent.valueOffset} + parent.length;
}

// Puts the parser behind a node, however much of it was read.
void pass(const ParserNode &node) {
    int32_t error;
    bytesRead = node.valueOffset;
    Parser_GetParameterInsignificant(&node, &error);
}

template <class Take>
void FileReader::walkChildren(const ParserNode &parent, Take take) {
    ParserNode child;
    for (; Parser_GetNextSubNode(&parent, &child) == UTI_OK; pass(child)) {
        if (!fits(child, parent))
            return fail("the node ", Hex{child.tag, 4}, " whose value is at offset ",
                        Hex{child.valueOffset}, " is longer than its parent");
        take(child);
    }
}

void FileReader::readValue(const ParserNode &node, int32_t result) {
    if (result < 0)
        fail("the value of the node ", Hex{node.tag, 4}, " at offset ", Hex{node.valueOffset},
             " has the wrong type or length");
}

void FileReader::use(std::size_t offset, std::size_t size) {
    const auto from = isUsed_.begin() + static_cast<std::ptrdiff_t>(offset);
    std::fill_n(from, std::min(size, bytes_.size() - offset), true);
}

void FileReader::readRoot(const ParserNode &root) {
    const uint64_t end = uint64_t{root.valueOffset} + root.length;
    if (end > bytes_.size())
        fail("the file is cut off, or is no resource file: its root ends at offset ",
             Hex{static_cast<uint32_t>(end)}, ", the file at ",
             Hex{static_cast<uint32_t>(bytes_.size())});
    file_.rootTag = root.tag;
    use(0, emptyNodeSize);

    // The parser does not return an empty header. Behind a header string tables may lie in the root
    // that are no nodes; the first thing that cannot be one ends the walk.
    bool found = root.length <= emptyNodeSize;
    if (found)
        use(emptyNodeSize, root.length);
    ParserNode child;
    for (; Parser_GetNextSubNode(&root, &child) == UTI_OK && fits(child, root); pass(child)) {
        const bool isHeader = child.tag == resource::header;
        if (isHeader || !found)
            use(child.valueOffset - emptyNodeSize, emptyNodeSize + child.length);
        if (isHeader)
            readHeader(child);
        found = found || isHeader;
    }
    if (!found)
        fail("there is no resource header");
}

void FileReader::readHeader(const ParserNode &header) {
    walkChildren(header, [&](const ParserNode &child) {
        if (child.tag == resource::version) {
            int32_t error;
            file_.version = Parser_GetParameterWord(&child, &error);
            readValue(child, error);
        } else if (child.tag >= resource::firstSection &&
                   child.tag < resource::firstSection + resource::sectionsInFile) {
            readSection(child, static_cast<uint8_t>(child.tag - resource::firstSection));
        }
    });
}

void FileReader::readSection(const ParserNode &section, uint8_t number) {
    walkChildren(section, [&](const ParserNode &child) {
        if (child.tag == resource::languageBlock)
            readBlock(child, number);
    });
}

void FileReader::readBlock(const ParserNode &node, uint8_t section) {
    Block block{section, {}, 0};
    walkChildren(node, [&](const ParserNode &child) {
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
        }
        readValue(child, result);
    });

    std::string &code = block.language.code;
    if (code.size() == 3 && code[2] == 0)
        code.pop_back();
    if (isLanguageCode(code))
        blocks_.push_back(std::move(block));
    else
        fail("section ", +section, " has at offset ", Hex{node.valueOffset},
             " a language code that is not two lower-case letters");
}

// The index has no length of its own: it ends where its first string begins, and where there is
// none, at the next table or with the file. Empty strings are nowhere.
void FileReader::readTable(const Block &block, std::size_t nextTable, LanguageTable &table) {
    const std::string_view bytes = bytes_.substr(block.tableOffset);
    std::size_t end = std::min(bytes.size(), entrySize * mostEntries);
    std::size_t emptyOffset = 0;
    std::size_t total = 0;
    std::size_t at = 0;
    bool hasString = false;
    for (; at + entrySize <= end && (hasString || at < nextTable); at += entrySize) {
        const std::size_t offset = wordAt(bytes, at);
        const std::size_t length = wordAt(bytes, at + 2);
        const auto index = static_cast<uint16_t>(at / entrySize);
        const auto failHere = [&](const char *what) {
            fail("string ", Hex{stringId(block.section, index), 4}, " in ", block.language.code,
                 ": its index entry at offset ", Hex{static_cast<uint32_t>(block.tableOffset + at)},
                 what);
        };
        if (length == 0 && offset > 0)
            table.strings[index];
        emptyOffset = length == 0 ? std::max(emptyOffset, offset) : emptyOffset;
        if (length == 0)
            continue;
        if (offset < at + entrySize) {
            failHere(" points into the index");
            continue;
        }

        hasString = true;
        end = std::min(end, offset);
        if (offset > bytes.size() || length > bytes.size() - offset) {
            failHere(" reaches past the end of the file");
            continue;
        }
        table.strings[index] = bytes.substr(offset, length);
        use(block.tableOffset + offset, length);
        total += length;
        if (total > tableLimit)
            return fail("the strings of section ", +block.section, " in ", block.language.code,
                        " overlap; apart they would not fit 64 KiB");
    }
    use(block.tableOffset, at);

    const bool isCut = end == bytes.size() && !hasString &&
                       (at < end || emptyOffset > end || emptyOffset == 0) && at < nextTable;
    if (isCut)
        diagnostics_.warning("cut", {}, "the end of the file cuts the index at offset ",
                             Hex{block.tableOffset}, ", of section ", +block.section, " in ",
                             block.language.code);
    // A language without a table reads the first one's in some sections; this one reads its own.
    if (table.strings.empty())
        table.strings[0];
}

void FileReader::readTables() {
    std::set<std::size_t> ends{bytes_.size()};
    for (const Block &block : blocks_)
        ends.insert(block.tableOffset);

    std::size_t total = 0;
    for (const Block &block : blocks_) {
        const Language &language = block.language;
        std::vector<LanguageTable> &tables = file_.sections[block.section];
        const auto isSame = [&](const auto &table) { return table.language.code == language.code; };
        if (std::ranges::any_of(tables, isSame)) {
            diagnostics_.warning("twice", {}, "section ", +block.section, " has ", language.code,
                                 " twice; the second is never used and left out");
            continue;
        }

        LanguageTable &table = tables.emplace_back(LanguageTable{language, {}});
        if (block.tableOffset == 0)
            continue;
        if (bytes_.size() < uint64_t{block.tableOffset} + entrySize) {
            fail("the string table of section ", +block.section, " in ", language.code,
                 " would lie at offset ", Hex{block.tableOffset}, ", past the end of the file");
            continue;
        }
        readTable(block, *ends.upper_bound(block.tableOffset) - block.tableOffset, table);
        total += stringsSize(table.strings);
        if (total > sharingLimit * bytes_.size())
            return fail("the string tables overlap far too often");
    }
}

void FileReader::checkLimits() {
    for (const auto &[section, tables] : file_.sections) {
        for (const auto &[language, strings] : tables) {
            if (firstBeyondLimit(strings, indexSize(tables)))
                fail("the strings of section ", +section, " in ", language.code,
                     " overlap; apart they would not fit 64 KiB");
        }
    }
}

// What nothing names may be of no use, or belong to a string whose entry is damaged.
void FileReader::reportUnused() {
    for (auto from = isUsed_.begin();
         (from = std::find(from, isUsed_.end(), false)) != isUsed_.end();) {
        const auto to = std::find(from, isUsed_.end(), true);
        diagnostics_.warning("unused", {}, "no string takes the ", to - from, " bytes at offset ",
                             Hex{static_cast<uint32_t>(from - isUsed_.begin())});
        from = to;
    }
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
    readRoot(root);
    readTables();
    if (!diagnostics_.hasErrors())
        checkLimits();
    reportUnused();
    return diagnostics_.hasErrors() ? std::nullopt : std::optional(std::move(file_));
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
