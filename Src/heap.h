// heap.h: blocks of the process heap with an owner. Stands on malloc and free alone.
#pragma once

#include <cstdlib>
#include <cstring>
#include <memory>

namespace uti {

struct HeapDeleter {
    void operator()(void *block) const { std::free(block); }
};

template <class T>
using HeapPointer = std::unique_ptr<T, HeapDeleter>;

// A zeroed record of a plain type, or null when memory is short.
template <class T>
HeapPointer<T> allocateZeroed() {
    constexpr std::size_t size = sizeof(T); // NOLINT(bugprone-sizeof-expression): also of a pointer
    void *block = std::malloc(size);
    return HeapPointer<T>(block ? static_cast<T *>(std::memset(block, 0, size)) : nullptr);
}

// `count` bytes as they are, or null when memory is short.
inline HeapPointer<char> allocateBytes(std::size_t count) {
    return HeapPointer<char>(static_cast<char *>(std::malloc(count)));
}

// An owned copy of `count` bytes, or null when memory is short.
inline HeapPointer<char> copyBytes(const void *bytes, std::size_t count) {
    HeapPointer<char> copy = allocateBytes(count);
    if (copy)
        std::memcpy(copy.get(), bytes, count);
    return copy;
}

} // namespace uti
