// harness.h: what the harnesses share: the choices that an input stands for, and checks that end
// the run. A harness takes its choices from the front of the input, so that seeds can be made by
// hand.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size);

// A broken promise: says which and ends the process, which libFuzzer and the replay both report.
#define REQUIRE(condition) ((condition) ? void() : fuzz::fail(__FILE__, __LINE__, #condition))

namespace fuzz {

[[noreturn]] inline void fail(const char *file, int line, const char *promise) {
    fprintf(stdout, "%s:%d: not so: %s\n", file, line, promise);
    fflush(stdout);
    std::abort();
}

// The bytes of an input, taken as choices; behind its end there are zeros.
class Input {
public:
    Input(const uint8_t *data, std::size_t size)
        : rest_(reinterpret_cast<const char *>(data), size) {}

    bool isOver() const { return rest_.empty(); }

    uint8_t byte() {
        if (rest_.empty())
            return 0;
        const auto first = static_cast<uint8_t>(rest_.front());
        rest_.remove_prefix(1);
        return first;
    }
    uint32_t below(uint32_t count) {
        uint32_t value = byte();
        if (count > 256)
            value = value << 8 | byte();
        return value % count;
    }
    bool oneIn(uint32_t count) { return below(count) == count - 1; }
    uint32_t number() {
        uint32_t value = 0;
        for (int i = 0; i < 4; ++i)
            value = value << 8 | byte();
        return value;
    }

    template <class Choices>
    auto &pick(Choices &choices) {
        return choices[below(static_cast<uint32_t>(std::size(choices)))];
    }

    // A length of at most `most`, then that many bytes.
    std::string bytes(uint32_t most) {
        const uint32_t wanted = below(most + 1);
        const std::size_t size = std::min<std::size_t>(wanted, rest_.size());
        const std::string taken(rest_.substr(0, size));
        rest_.remove_prefix(size);
        return taken;
    }
    // The same without its zero bytes.
    std::string text(uint32_t most) {
        std::string taken = bytes(most);
        std::erase(taken, '\0');
        return taken;
    }
    std::string takeRest() {
        const std::string taken(rest_);
        rest_ = {};
        return taken;
    }

private:
    std::string_view rest_;
};

} // namespace fuzz
