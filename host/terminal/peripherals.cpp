// peripherals.cpp: the scripted modem, one end of a socket pair.
#include "host/terminal/peripherals.h"

#include "host/terminal/clock.h"
#include "host/terminal/descriptors.h"

#include <sys/socket.h>

namespace uti::host {

ScriptedModem::~ScriptedModem() {
    remove();
}

void ScriptedModem::remove() {
    if (line_ >= 0)
        ::close(line_);
    line_ = -1;
    present_ = false;
    exchanges_.clear();
}

void ScriptedModem::add(std::string expected, uint32_t after, std::string reply) {
    present_ = true;
    exchanges_.push_back({std::move(expected), std::move(reply), after});
}

int ScriptedModem::connect() {
    if (!present_)
        return -ENODEV;
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, ends) != 0)
        return -errno;
    if (line_ >= 0)
        ::close(line_);
    line_ = ends[0];
    received_.clear();
    return ends[1];
}

void ScriptedModem::answer() {
    if (line_ < 0)
        return;
    char bytes[256];
    ssize_t count;
    while ((count = uninterrupted([&] { return ::read(line_, bytes, sizeof bytes); })) > 0)
        received_.append(bytes, static_cast<std::size_t>(count));

    while (!exchanges_.empty()) {
        Exchange &next = exchanges_.front();
        const std::size_t found = next.cameAt ? 0 : received_.find(next.expected);
        if (found == std::string::npos)
            return;
        if (!next.cameAt)
            received_.erase(0, found + next.expected.size());
        next.cameAt = next.cameAt.value_or(ticks());
        if (ticks() - *next.cameAt < next.after)
            return;
        // The application's end may be closed by now; its signal is not for us.
        ::send(line_, next.reply.data(), next.reply.size(), MSG_NOSIGNAL);
        exchanges_.pop_front();
    }
}

Peripherals &peripherals() {
    static Peripherals all;
    return all;
}

} // namespace uti::host
