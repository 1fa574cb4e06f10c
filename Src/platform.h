// platform.h: the platform operations that several rooms use together, each dance told once.
#pragma once

#include "terminal.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace uti {

// An environment value of up to 128 characters.
class EnvironmentValue {
public:
    explicit EnvironmentValue(const char *name) {
        const int32_t copied = System_GetEnv(name, text_, limit, 0);
        length_ = copied > 0 ? static_cast<std::size_t>(copied) : 0;
        if (length_ > limit)
            length_ = limit;
    }

    // Empty when the variable is missing.
    std::string_view text() const { return {text_, length_}; }

private:
    static constexpr int32_t limit = 128;
    char text_[limit + 1] = {};
    std::size_t length_;
};

// Reads `count` bytes at `offset` of an open file. True when all came.
inline bool readFileAt(int32_t handle, uint32_t offset, void *destination, uint32_t count) {
    return File_SetPosition(handle, offset) == 0 &&
           File_Read(handle, destination, count) == static_cast<int32_t>(count);
}

} // namespace uti
