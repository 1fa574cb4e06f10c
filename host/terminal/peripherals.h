// peripherals.h: the troubles and answers that a key script gives the printer and the serial ports.
// Without a script nothing here is ever set. Stands on POSIX sockets.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>

namespace uti::host {

// A modem that knows what to say: each exchange is played once, in order, when its expected text
// has come; what comes before that text is passed over.
class ScriptedModem {
public:
    ScriptedModem() = default;
    ScriptedModem(const ScriptedModem &) = delete;
    ScriptedModem &operator=(const ScriptedModem &) = delete;
    ~ScriptedModem();

    // The reply is sent so many milliseconds of the clock after the text has come.
    void add(std::string expected, uint32_t after, std::string reply);
    // Takes the modem away.
    void remove();

    // Returns the application's end of a new line to the modem, a descriptor that does not block;
    // -ENODEV when there is no modem, or another negative errno value.
    int connect();

    // Plays the exchanges whose texts have come and whose time it is.
    void answer();

private:
    struct Exchange {
        std::string expected, reply;
        uint32_t after;
        std::optional<uint32_t> cameAt{}; // ticks
    };

    bool present_ = false;
    int line_ = -1;        // the modem's end, negative before it is connected
    std::string received_; // since the last exchange
    std::deque<Exchange> exchanges_;
};

struct Peripherals {
    bool paperOut = false;  // nothing can be printed
    bool portsFail = false; // serial ports neither open nor send nor receive
    ScriptedModem modem;    // behind every port that no variable names
};

Peripherals &peripherals();

} // namespace uti::host
