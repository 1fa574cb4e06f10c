// copy_text.h: the one way in which the platform cuts a text to a caller's buffer.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace uti::host {

// Copies at most `size` - 1 characters and a terminating zero; a null buffer or a size of 0 gets
// nothing. Returns the number of characters copied.
inline std::size_t copyText(std::string_view text, char *buffer, std::size_t size) {
    if (!buffer || size == 0)
        return 0;
    const std::size_t count = std::min(text.size(), size - 1);
    std::memcpy(buffer, text.data(), count);
    buffer[count] = '\0';
    return count;
}

} // namespace uti::host
