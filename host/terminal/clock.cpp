// clock.cpp: date, time, ticks and waiting. Stands on the clocks and the time zone of the C
// library, or on nothing but its own count when the clock is virtual.
#include "host/terminal/clock.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace uti::host {

namespace {

constinit bool isVirtual = false;
constinit std::time_t virtualStart = 0;
constinit uint64_t virtualTicks = 0;
constinit int realDevices = 0;
constinit Waiter installedWaiter = nullptr;

void wait(uint32_t milliseconds) {
    installedWaiter ? installedWaiter(milliseconds) : pass(milliseconds);
}

} // namespace

void useVirtualClock() {
    std::tm noon{};
    noon.tm_year = 2026 - 1900;
    noon.tm_mday = 1;
    noon.tm_hour = 12;
    noon.tm_isdst = -1;
    virtualStart = std::mktime(&noon);
    virtualTicks = 0;
    isVirtual = true;
}

bool isVirtualClock() {
    return isVirtual;
}

void useRealDevice(bool isUsed) {
    realDevices += isUsed ? 1 : -1;
}

std::time_t now() {
    if (isVirtual)
        return virtualStart + static_cast<std::time_t>(virtualTicks / 1000);
    return std::time(nullptr);
}

uint32_t ticks() {
    using namespace std::chrono;
    if (isVirtual)
        return static_cast<uint32_t>(virtualTicks);
    const auto sinceStart = steady_clock::now().time_since_epoch();
    return static_cast<uint32_t>(duration_cast<milliseconds>(sinceStart).count());
}

void pass(uint32_t milliseconds) {
    if (isVirtual)
        virtualTicks += milliseconds;
    if (!isVirtual || realDevices > 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

void setWaiter(Waiter waiter) {
    installedWaiter = waiter;
}

bool toLocalTime(std::time_t moment, LocalTime &local) {
    std::tm fields{};
    tzset(); // localtime_r alone looks at the zone only once
    if (!localtime_r(&moment, &fields) || fields.tm_year < INT16_MIN - 1900 ||
        fields.tm_year > INT16_MAX - 1900)
        return false;

    local.date = {.year = static_cast<int16_t>(fields.tm_year + 1900),
                  .month = static_cast<uint8_t>(fields.tm_mon + 1),
                  .day = static_cast<uint8_t>(fields.tm_mday),
                  .reserved = {}};
    local.time = {.hour = static_cast<uint8_t>(fields.tm_hour),
                  .minute = static_cast<uint8_t>(fields.tm_min),
                  .second = static_cast<uint8_t>(std::min(fields.tm_sec, 59))}; // leap seconds
    return true;
}

} // namespace uti::host

using namespace uti::host;

// Called for every trace record: the calendar is worked out once a second only, which also follows
// every change of the time zone and of daylight saving time within that second. The reserved bytes
// are 0; a null record is passed over.
void GetDateTime(TerminalDate *date, TerminalTime *time) {
    static constinit std::time_t second = -1;
    static constinit LocalTime local{{1970, 1, 1, {}}, {}};

    const std::time_t present = now();
    if (present != second) {
        toLocalTime(present, local);
        second = present;
    }
    if (date)
        *date = local.date;
    if (time)
        *time = local.time;
}

uint32_t GetTicks(void) {
    return ticks();
}

void Wait(uint32_t milliseconds) {
    wait(milliseconds);
}

void WaitSleep(uint32_t milliseconds) {
    wait(milliseconds);
}
