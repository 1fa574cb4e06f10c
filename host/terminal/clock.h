// clock.h: the one place where the stand-in asks for the time and lets it pass: the real clock, or
// a virtual one that moves only when somebody waits.
#pragma once

#include "terminal.h"

#include <cstdint>
#include <ctime>

namespace uti::host {

// Seconds since 1970 began in UTC.
std::time_t now();

// Milliseconds since some fixed moment, wrapping around at 2^32.
uint32_t ticks();

// Lets `milliseconds` pass and nothing else: sleeps, and signals do not cut it short, or moves the
// virtual clock on.
void pass(uint32_t milliseconds);

// What the platform's `Wait` does: the waiter's work, `pass` when there is none.
using Waiter = void (*)(uint32_t milliseconds);
void setWaiter(Waiter waiter);

// Makes the clock virtual from now on: it stands at noon of the first day of 2026 in the local time
// zone, with the ticks at 0, and nothing sleeps any more.
void useVirtualClock();
bool isVirtualClock();

// While a device is used that knows nothing of the virtual clock, passing time takes its time.
// Calls with true and false come in pairs.
void useRealDevice(bool isUsed);

// A date and a time of day as the platform gives them.
struct LocalTime {
    TerminalDate date;
    TerminalTime time;
};

// Fills the local date and time of a moment by the time zone as it is set now. False, with
// `local` untouched, when the year is past what a record holds.
bool toLocalTime(std::time_t moment, LocalTime &local);

} // namespace uti::host
