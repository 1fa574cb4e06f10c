// script.h: key scripts, the small language in which a person at the display is written down. The
// language is told in docs/script.md.
#pragma once

#include "common/diagnostics.h"
#include "host/toolkit/face.h"

#include <string>
#include <string_view>
#include <vector>

namespace uti::host {

using ScriptPlace = Place;

struct ScriptCommand {
    enum class Kind : uint8_t {
        event,        // `event` happens
        advance,      // `milliseconds` of the clock pass
        waitText,     // `text` is shown within `milliseconds`
        expectText,   // `text` is shown
        expectNoText, // `text` is not shown
        expectFits,   // no text that is shown is cut
        expectShot,   // the display looks like the golden picture `text`.png
        shot,         // the display is saved as the picture `text`.png
        dump,         // the display is saved as `text`.txt
        paperOut,     // the printer has no paper
        paperIn,
        portsFail, // the serial ports are broken
        portsWork,
        modem // a modem answers `text` with `reply`, `milliseconds` later
    };
    Kind kind;
    ScriptPlace place;
    Event event{};
    std::string text{}; // UTF-8
    std::string reply{};
    uint32_t milliseconds = 0;
};

struct Script {
    SourceText source;
    std::vector<ScriptCommand> commands{};
    bool isValid = true;

    // Says on standard error what is wrong at a place, with the line itself.
    void report(ScriptPlace place, std::string_view what) const;
    ScriptPlace end() const; // of the last line
};

// Reads a script. Whatever is wrong in it is reported, and the script then not valid.
Script parseScript(std::string path, std::string source);

// The longest time that one line lets pass, in ms: a day.
inline constexpr uint32_t longestAdvance = 24 * 60 * 60 * 1000;

// A key as scripts write it.
std::string keyName(uint8_t key);

} // namespace uti::host
