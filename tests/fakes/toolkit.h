// toolkit.h (fakes): the widget toolkit of the tests. It writes every call that changes something
// as one line, runs forms on a script of events against the fake clock, and notices handles that
// are not alive and texts that are freed while a widget may still read them. Each call can be made
// to fail (Call::toolkit) or be given its answer.
#pragma once

#include "platform/toolkit.h"
#include "terminal.h"

#include <deque>

namespace fake {

inline constexpr int32_t failure = -77;  // of a toolkit call that is made to fail
inline constexpr int32_t refused = -2;   // of a call with a handle that is not alive
inline constexpr int32_t noDisplay = -9; // of the display when it is made to fail

// What happens at one wait of a running form: `act`, then a key for the form, 0 for none.
struct Event {
    uint8_t key = 0;
    std::function<void()> act = {};
};

// A form, a widget or an image.
struct Object {
    std::string kind;
    int32_t type = 0;                // of a widget
    std::string value;               // of an input; the name of an image's file
    std::vector<const char *> texts; // the library's, read whenever the form is drawn
    int32_t form = 0;                // that a widget was added to
    IgInputFunction function = nullptr;
    int32_t focus = 0; // of a form
    int32_t state = 0;
    uint32_t timeOut = 0;
    uint32_t started = 0;
};

struct Toolkit {
    std::string calls;    // lines such as "igWidget_SetBorder static2 1"
    std::string mistakes; // uses of handles that are not alive or are of another kind
    std::string drawn;    // what was read from the texts of the form drawn last
    std::string failed;   // the function that a fault has struck first
    std::size_t read = 0; // characters of all texts, which are read again at every call
    std::map<std::string, int32_t> answers; // results by function name or by the call's line
    std::deque<Event> script;

    std::map<int32_t, Object> objects;
    std::map<int32_t, std::vector<const char *>> keySchemes;
    int32_t lastHandle = 0;
    int32_t running = 0; // form
    IgEventCallback callback = nullptr;

    // Takes the lines that begin with one of the words out of `calls`; all lines without a word.
    std::string take(std::initializer_list<const char *> words = {""});
};

// The toolkit of the running test; made new by `fake::reset`.
Toolkit &toolkit();
void resetToolkit();

} // namespace fake
