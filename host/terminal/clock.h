// clock.h: the one place where the stand-in asks for the time and lets it pass. Whoever replaces
// these three functions replaces the clock of the whole platform.
#pragma once

#include "terminal.h"

#include <cstdint>
#include <ctime>

namespace uti::host {

// Seconds since 1970 began in UTC.
std::time_t now();

// Milliseconds since some fixed moment, wrapping around at 2^32.
uint32_t ticks();

// Lets `milliseconds` pass; signals do not cut it short.
void wait(uint32_t milliseconds);

// A date and a time of day as the platform gives them.
struct LocalTime {
    TerminalDate date;
    TerminalTime time;
};

// Fills the local date and time of a moment by the time zone as it is set now. False, with
// `local` untouched, when the year is past what a record holds.
bool toLocalTime(std::time_t moment, LocalTime &local);

} // namespace uti::host
