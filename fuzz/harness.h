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
    explicit Input(std::string_view bytes) : rest_(bytes) {}

    bool isOver() const { return rest_.empty(); }
    uint8_t byte() { return static_cast<uint8_t>(take(1)[0]); }
    uint32_t below(uint32_t count) {
        const uint32_t first = byte();
        return (count > 256 ? first << 8 | byte() : first) % count;
    }
    bool oneIn(uint32_t count) { return below(count) == count - 1; }
    uint32_t number() {
        const uint32_t high = below(65536);
        return high << 16 | below(65536);
    }
    template <class Choices>
    auto &pick(Choices &choices) {
        return choices[below(static_cast<uint32_t>(std::size(choices)))];
    }

    // A length of at most `most`, then that many bytes.
    std::string bytes(uint32_t most) { return take(below(most + 1)); }
    // The same without its zero bytes.
    std::string text(uint32_t most) {
        std::string taken = bytes(most);
        std::erase(taken, '\0');
        return taken;
    }
    std::string takeRest() { return take(rest_.size()); }
    // Changes bytes anywhere.
    void damage(std::string &bytes, uint32_t times) {
        for (; times > 0; --times)
            bytes[below(65535) % bytes.size()] = static_cast<char>(byte());
    }

private:
    std::string take(std::size_t most) {
        std::string taken(rest_.substr(0, most));
        rest_.remove_prefix(taken.size());
        return taken;
    }

    std::string_view rest_;
};

// The harness: keeps no state from one input to the next.
void run(Input &in);

} // namespace fuzz
