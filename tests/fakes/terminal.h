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
    close, // the file is closed all the same
    count
};

enum class Persistence { once, fromThenOn };

// The nth call of a kind from now, alone or with all that come behind it.
struct Fault {
    Call kind;
    int nth;
    Persistence persistence = Persistence::once;
};

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
    std::string deleted;              // what was in the files that were deleted or emptied
    int openFiles = 0;
    int assertions = 0; // of the library, whether or not the log is open

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
// Forgets what was armed; what has struck stays known until the next one is armed.
void disarm();
// True when an armed fault has struck.
bool faultStruck();
// Counts a call and says whether it is to fail.
bool fails(Call kind);

// Blocks of malloc and realloc that are alive.
int liveBlocks();

// Runs `scenario` with every call of every kind failing in turn, once and from then on, until a run
// meets no fault any more. `prepare` brings about the state that it starts from; `check` looks at
// the one that each fault has left. Returns how many faults there were.
template <class Prepare, class Scenario, class Check>
int forEachFault(Prepare prepare, Scenario scenario, Check check) {
    int faults = 0;
    for (int kind = 0; kind < static_cast<int>(Call::count); ++kind) {
        for (const Persistence persistence : {Persistence::once, Persistence::fromThenOn}) {
            for (int nth = 1;; ++nth) {
                const Fault fault{static_cast<Call>(kind), nth, persistence};
                reset();
                prepare();
                failCall(fault.kind, nth, persistence);
                scenario(fault);
                disarm();
                if (!faultStruck())
                    break;
                check(fault);
                ++faults;
            }
        }
    }
    return faults;
}

} // namespace fake
