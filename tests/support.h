// support.h: helpers that make a test case three lines.
#pragma once

#include "fakes/terminal.h"
#include "uti.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace support {

using namespace std::string_literals;

// The bytes of a text such as "00 0B ff"; blanks are free.
inline std::string hex(std::string_view digits) {
    std::string bytes;
    std::string pair;
    for (const char c : digits) {
        if (c == ' ')
            continue;
        pair += c;
        if (pair.size() == 2) {
            bytes += static_cast<char>(std::stoi(pair, nullptr, 16));
            pair.clear();
        }
    }
    return bytes;
}

inline std::string toHex(std::string_view bytes) {
    std::string text;
    for (const char c : bytes) {
        char pair[4];
        snprintf(pair, sizeof pair, "%02X ", static_cast<unsigned char>(c));
        text += pair;
    }
    return text;
}

// Bytes in a heap block of exactly their size, so that the sanitizer sees any step past the end.
class ExactBlock {
public:
    explicit ExactBlock(std::string_view bytes)
        : bytes_(new char[bytes.size()]), size_(static_cast<uint32_t>(bytes.size())) {
        std::memcpy(bytes_.get(), bytes.data(), bytes.size());
    }
    char *data() const { return bytes_.get(); }
    uint32_t size() const { return size_; }

private:
    std::unique_ptr<char[]> bytes_;
    uint32_t size_;
};

// Calls `feed` with every truncation of `bytes`, the whole included, each in its own exact block.
template <class Feed>
void forEachTruncation(std::string_view bytes, Feed feed) {
    for (std::size_t size = 0; size <= bytes.size(); ++size) {
        SCOPED_TRACE("cut to " + std::to_string(size));
        const ExactBlock block(std::string_view(bytes.data(), size));
        feed(block);
    }
}

// Little-endian numbers.
inline std::string number(uint64_t value, int size) {
    std::string bytes;
    for (int i = 0; i < size; ++i)
        bytes += static_cast<char>(value >> 8 * i);
    return bytes;
}

// A node with a `tagSize`-byte tag and a `lengthSize`-byte length.
inline std::string node(uint32_t tag, std::string_view value, int tagBytes, int lengthBytes) {
    return number(tag, tagBytes) + number(value.size(), lengthBytes) + std::string(value);
}

// A language of a section for `resourceFile`: strings by index.
struct Language {
    std::string code;
    uint16_t info;
    std::vector<std::string> strings;
};

// The bytes of a resource file: sections by number, each with its languages.
inline std::string resourceFile(uint16_t version,
                                const std::vector<std::pair<int, std::vector<Language>>> &sections) {
    const auto build = [&](uint32_t tablesAt) {
        std::string header = node(0x0001, "\4" + number(version, 2), 2, 4);
        std::string tables;
        for (const auto &[section, languages] : sections) {
            std::string blocks;
            for (const Language &language : languages) {
                const auto at = static_cast<uint32_t>(tablesAt + tables.size());
                blocks += node(0x8020,
                               node(0x0021, "\1" + language.code, 2, 4) +
                                   node(0x0022, "\4" + number(language.info, 2), 2, 4) +
                                   node(0x0023, "\5" + number(at, 4), 2, 4),
                               2, 4);
                std::string index;
                std::string bytes;
                for (const std::string &text : language.strings) {
                    index += number(4 * language.strings.size() + bytes.size(), 2) +
                             number(text.size(), 2);
                    bytes += text;
                }
                tables += index + bytes;
            }
            header += node(0x8100u + static_cast<uint32_t>(section), blocks, 2, 4);
        }
        const std::string tree = node(0x8001, node(0x8002, header, 2, 4), 2, 4);
        return std::pair(tree, tree + tables);
    };
    return build(static_cast<uint32_t>(build(0).first.size())).second;
}

// Forgets every module, stored string and language, as if the library had just been loaded.
inline void forgetResources() {
    while (ModuleList && !ModuleList->IsEmpty(ModuleList)) {
        CheckExternalResources = 0;
        Resource_Close(static_cast<ResourceModule *>(ModuleList->First(ModuleList))->name);
    }
    List_Destroy(ModuleList);
    List_Destroy(ResourceStorageList);
    ModuleList = nullptr;
    ResourceStorageList = nullptr;
    CheckExternalResources = 0;
    std::memset(CurrentLanguage, 0, sizeof CurrentLanguage);
}

// A fresh terminal for every test, the log closed and nothing left behind at its end.
class Terminal : public testing::Test {
protected:
    Terminal() { fake::reset(); }
    ~Terminal() override {
        fake::disarm();
        TraceExClose();
        forgetResources();
        EXPECT_EQ(fake::terminal().openFiles, 0);
    }
    fake::Terminal &terminal = fake::terminal();
};

} // namespace support
