// descriptors.cpp: opening and writing what files, serial ports and the printer have in common.
#include "host/terminal/descriptors.h"

#include <chrono>
#include <fcntl.h>
#include <poll.h>

namespace uti::host {

// Reading and writing, so that a FIFO opens before its reader does and a reader that leaves ends
// nothing (on Linux); without waiting, so that neither opening nor writing can hang.
int openForAppending(const char *path, int moreFlags) {
    const int flags = O_RDWR | O_APPEND | O_NONBLOCK | O_NOCTTY | O_CLOEXEC | moreFlags;
    const int descriptor = uninterrupted([&] { return ::open(path, flags, 0666); });
    return descriptor < 0 ? -errno : descriptor;
}

int64_t writeAll(int descriptor, const void *buffer, std::size_t count) {
    // A device's patience is real time, whatever the platform's clock shows.
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::seconds patience(1);

    const auto *bytes = static_cast<const char *>(buffer);
    std::size_t done = 0;
    constexpr Clock::time_point none;
    auto deadline = none; // set when the device takes nothing
    while (done < count) {
        const ssize_t written =
            uninterrupted([&] { return ::write(descriptor, bytes + done, count - done); });
        if (written > 0) {
            done += static_cast<std::size_t>(written);
            deadline = none;
            continue;
        }
        if (written < 0 && errno != EAGAIN)
            return done > 0 ? static_cast<int64_t>(done) : -errno;
        if (deadline == none)
            deadline = Clock::now() + patience;
        else if (Clock::now() >= deadline)
            break;

        // Tried again after 50 ms even when the device does not call itself writable: a slow line
        // takes single bytes long before it does.
        pollfd writable{descriptor, POLLOUT, 0};
        poll(&writable, 1, 50);
    }
    return done > 0 || count == 0 ? static_cast<int64_t>(done) : -ETIMEDOUT;
}

} // namespace uti::host
