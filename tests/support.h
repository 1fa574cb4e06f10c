// support.h: helpers that make a test case three lines.
#pragma once

#include "tests/fakes/terminal.h"
#include "tests/state.h"
#include "tests/streams.h"
#include "uti.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace support {

using namespace std::string_literals;

// The bytes of a text such as "00 0B ff"; blanks are free.
inline std::string hex(std::string_view digits) {
    std::string bytes, pair;
    for (const char c : digits) {
        if (c != ' ')
            pair += c;
        if (pair.size() == 2)
            bytes += static_cast<char>(std::stoi(std::exchange(pair, ""), nullptr, 16));
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

// Calls `feed` with every truncation of `bytes`, the whole included, each in its own exact block.
template <class Feed>
void forEachTruncation(std::string_view bytes, Feed feed) {
    for (std::size_t size = 0; size <= bytes.size(); ++size) {
        SCOPED_TRACE("cut to " + std::to_string(size));
        const ExactBlock block(std::string_view(bytes.data(), size));
        feed(block);
    }
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
