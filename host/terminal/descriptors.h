// descriptors.h: what files, serial ports and the printer share: handles that stand for open
// descriptors, and writing to the last byte. Stands on POSIX alone.
#pragma once

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <unistd.h>

namespace uti::host {

// Makes a system call again for as long as a signal interrupts it.
template <class Call>
auto uninterrupted(Call call) {
    auto result = call();
    while (result == -1 && errno == EINTR)
        result = call();
    return result;
}

enum class HandleKind : uint8_t { file, port };

// The open handles. A handle names a slot and how often that slot was used before, so that a closed
// handle stays unknown when its slot is used again, and no handle is mistaken for one of another
// kind or for a descriptor. All failures are negative errno values.
class HandleTable {
public:
    // Calls `open` for a descriptor (or a negative error) and gives it a handle. With no handle
    // left `open` is not called, so nothing is created or cut for a file that cannot be had.
    template <class Open>
    int32_t open(HandleKind kind, Open open) {
        uint32_t index = 0;
        while (index < capacity && slots_[index].descriptor >= 0)
            ++index;
        if (index == capacity)
            return -EMFILE;

        const int descriptor = open();
        if (descriptor < 0)
            return descriptor;
        Slot &slot = slots_[index];
        slot.descriptor = descriptor;
        slot.kind = kind;
        return static_cast<int32_t>(slot.uses * capacity + index);
    }

    // Returns -EBADF for a handle that is not open or is of another kind.
    int descriptor(HandleKind kind, int32_t handle) const {
        if (handle < 0)
            return -EBADF;
        const Slot &slot = slots_[static_cast<uint32_t>(handle) % capacity];
        const bool known = slot.descriptor >= 0 && slot.kind == kind &&
                           slot.uses == static_cast<uint32_t>(handle) / capacity;
        return known ? slot.descriptor : -EBADF;
    }

    // Returns 0, -EBADF as above, or the error of a write that was still under way; the handle is
    // closed in that case too.
    int32_t close(HandleKind kind, int32_t handle) {
        const int open = descriptor(kind, handle);
        if (open < 0)
            return open;
        Slot &slot = slots_[static_cast<uint32_t>(handle) % capacity];
        slot.descriptor = -1;
        slot.uses = (slot.uses + 1) % mostUses;
        return ::close(open) == 0 || errno == EINTR ? 0 : -errno;
    }

private:
    static constexpr uint32_t capacity = 256;
    static constexpr uint32_t mostUses = (uint32_t{INT32_MAX} + 1) / capacity;

    struct Slot {
        int descriptor = -1;
        HandleKind kind = HandleKind::file;
        uint32_t uses = 0;
    };
    std::array<Slot, capacity> slots_;
};

inline constinit HandleTable handles;

// Opens a device, FIFO or file for appending; with `moreFlags` O_CREAT a missing one is created as
// a file. Returns a descriptor for `writeAll`, or a negative errno value.
int openForAppending(const char *path, int moreFlags);

// Writes `count` bytes. Returns how many were written before the first error, or that error as a
// negative errno value when it was none of them. A device that takes nothing for a second
// ends the writing (-ETIMEDOUT when it took nothing at all).
int64_t writeAll(int descriptor, const void *buffer, std::size_t count);

} // namespace uti::host
