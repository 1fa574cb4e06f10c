// text.h: small text helpers that several rooms share. Stands on the C library alone.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace uti {

// The text in a fixed field that may be full and then has no terminator.
template <std::size_t size>
std::string_view fieldText(const char (&field)[size]) {
    return {field, strnlen(field, size)};
}

// Copies as much of `text` as fits with its terminator, zeroing the rest of the field.
template <std::size_t size>
void setField(char (&field)[size], std::string_view text) {
    const std::size_t count = text.size() < size ? text.size() : size - 1;
    std::memcpy(field, text.data(), count);
    std::memset(field + count, 0, size - count);
}

} // namespace uti
