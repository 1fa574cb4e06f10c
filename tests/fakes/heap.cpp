// heap.cpp (fakes): malloc, realloc and free of everything linked into the test program, through
// the linker's --wrap. Counts live blocks; the n-th allocation can be made to fail.
#include "terminal.h"

#include <cstdlib>
#include <unordered_set>

namespace {

// Never destroyed: blocks are freed until the very end of the process.
std::unordered_set<void *> &live() {
    static auto *blocks = new std::unordered_set<void *>;
    return *blocks;
}

} // namespace

extern "C" {

void *__real_malloc(std::size_t size);
void *__real_realloc(void *block, std::size_t size);
void __real_free(void *block);
void *__wrap_malloc(std::size_t size);
void *__wrap_realloc(void *block, std::size_t size);
void __wrap_free(void *block);

void *__wrap_malloc(std::size_t size) {
    if (fake::fails(fake::Call::malloc))
        return nullptr;
    void *block = __real_malloc(size);
    live().insert(block);
    return block;
}

void *__wrap_realloc(void *block, std::size_t size) {
    if (fake::fails(fake::Call::realloc))
        return nullptr;
    live().erase(block);
    void *grown = __real_realloc(block, size);
    live().insert(grown);
    return grown;
}

void __wrap_free(void *block) {
    live().erase(block);
    __real_free(block);
}
}

int fake::liveBlocks() {
    return static_cast<int>(live().size());
}
