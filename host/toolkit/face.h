// face.h: how the display reaches a person, and the person the display. A face is given what
// changed on the display and is asked for events; it does nothing on its own.
#pragma once

#include "host/toolkit/surface.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace uti::host {

class Display;

struct Event {
    enum class Kind : uint8_t {
        key,       // a key of the keypad: `key`
        character, // a character of a full keyboard, which no key code stands for: `character`
        keyboard,  // a key that is meant for the application and for no form: `key`
        penDown,   // the pen: `at`
        penMove,
        penUp,
        close // the person went away: the running form is cancelled
    };
    Kind kind;
    uint8_t key = 0; // code of the toolkit
    char32_t character = 0;
    Point at = {}; // pixels of the display
};

class Face {
public:
    virtual ~Face() = default;

    // Shows the part of the surface that changed.
    virtual void show(const Surface &surface, const Rect &changed) = 0;

    // Gives the next event. Waits for it up to `milliseconds` of the platform's clock (through
    // `pass` of clock.h when it does not wait itself), and gives none when that time is over or
    // earlier.
    virtual std::optional<Event> next(uint32_t milliseconds) = 0;
};

// Forms that an application may still show after the person went away; each is cancelled. One that
// shows more will never end by itself.
inline constexpr int mostCancelled = 100;

// Makes the face of the process's display when that is used first.
using FaceMaker = std::unique_ptr<Face> (*)(Display &display);
void setFaceMaker(FaceMaker maker);

} // namespace uti::host
