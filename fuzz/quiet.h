// quiet.h: for harnesses whose rooms talk on standard error: what they say goes nowhere, while the
// sanitizers, which write to the descriptor, are still heard. And files without a name.
#pragma once

#include "fuzz/harness.h"

#include <sys/mman.h>
#include <unistd.h>

namespace fuzz {

inline void silence() {
    static const bool isSilent = (stderr = std::fopen("/dev/null", "w")) != nullptr;
    REQUIRE(isSilent);
}

// A file in memory that a path leads to.
class MemoryFile {
public:
    const char *path() const { return path_.c_str(); }
    void write(std::string_view bytes) const {
        const auto size = static_cast<ssize_t>(bytes.size());
        REQUIRE(ftruncate(file_, 0) == 0 && pwrite(file_, bytes.data(), bytes.size(), 0) == size);
    }
    std::string read() const {
        std::string bytes(static_cast<std::size_t>(lseek(file_, 0, SEEK_END)), '\0');
        REQUIRE(pread(file_, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size()));
        return bytes;
    }

private:
    const int file_ = memfd_create("fuzz", 0);
    const std::string path_ = "/proc/self/fd/" + std::to_string(file_);
};

} // namespace fuzz
