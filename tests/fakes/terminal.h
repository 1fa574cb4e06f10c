// terminal.h (fakes): the controllable terminal of the tests. Files live in memory, the clock
// stands still until it is set, what is printed or sent is captured, and the n-th call of any kind
// can be made to fail, once or from then on. fakes/heap.cpp does the same for malloc and realloc,
// and fakes/toolkit.cpp for the widget toolkit.
#pragma once

#include "platform/terminal.h"

#include <functional>
#include <initializer_list>
#include <map>
#include <string>
#include <vector>

namespace fake {

enum class Call {
    open,
    read,
    write,
    seek,
    length,
    fileTime,
    isValid,
    remove,
    environment,
    comOpen,
    comWrite,
    printerOpen,
    print,
    display,
    toolkit, // any call of the widget toolkit
    malloc,
    realloc,
    count
};

inline constexpr Call fileCalls[] = {Call::open,   Call::read,     Call::write,   Call::seek,
                                     Call::length, Call::fileTime, Call::isValid, Call::remove};
inline constexpr Call heapCalls[] = {Call::malloc, Call::realloc};

enum class Persistence { once, fromThenOn };

struct Stamp {
    TerminalDate date;
    TerminalTime time;
};

struct Terminal {
    std::map<std::string, std::string> files;
    std::map<std::string, Stamp> fileTimes; // a file without an entry has no time
    std::map<std::string, std::string> environment;
    std::string applicationName = "app";
    Stamp now{{2026, 11, 16, {}}, {11, 49, 35}};
    uint32_t ticks = 0;
    std::function<void()> onWait; // called at every `WaitSleep`
    // Called whenever `files` has changed: by a deletion, a truncation, each byte of a write.
    std::function<void()> onDisk;

    std::string serial;               // bytes sent to serial ports
    ComPortParameters port{};         // of the last ComPort_Open
    std::vector<std::string> printed; // one entry a Printer_PrintString
    std::string calls;                // "open app.log 2; write 4; ..." of the file calls
    int openFiles = 0;

    int32_t type = 0;
    int32_t displayEvent = 0; // of Display_CheckEvent
    uint8_t lastKey = 0;      // taken by Keyboard_GetLastKey
    std::string cursor;       // column and row of the last Display_SetCursorPosition

    std::string printedText() const;
};

// The terminal of the running test; `reset` makes it new and disarms faults.
Terminal &terminal();
void reset();

// Makes the nth call of a kind from now fail; kinds with no fault armed succeed.
void failCall(Call kind, int nth, Persistence persistence = Persistence::once);
void disarm();
// True when an armed fault has struck.
bool faultStruck();
// Counts a call and says whether it is to fail.
bool fails(Call kind);

// Blocks of malloc and realloc that are alive.
int liveBlocks();

// Runs `scenario` with every call of every kind failing in turn, once and from then on, until a run
// meets no fault any more. `check` looks at the state after each run.
template <class Kinds, class Scenario, class Check>
int forEachFault(const Kinds &kinds, Scenario scenario, Check check) {
    int faults = 0;
    for (const Call kind : kinds) {
        for (const Persistence persistence : {Persistence::once, Persistence::fromThenOn}) {
            for (int nth = 1;; ++nth) {
                reset();
                failCall(kind, nth, persistence);
                scenario();
                const bool struck = faultStruck();
                disarm();
                if (!struck)
                    break;
                check(static_cast<int>(kind), nth);
                ++faults;
            }
        }
    }
    return faults;
}

} // namespace fake
