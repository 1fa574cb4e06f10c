// recorder.cpp: events as lines of a key script.
#include "recorder.h"

#include "codePage.h"
#include "script.h"

namespace uti::host {

// Waiting is written down too, since a key that is pressed again soon gives another letter.
void Recorder::add(const Event &event, uint32_t ticks) {
    using Kind = Event::Kind;
    const bool goesOn = event.kind == Kind::penMove || event.kind == Kind::penUp;
    if (any_ && !goesOn && ticks - last_ > 0)
        out_ << "advance " << ticks - last_ << "ms\n";
    last_ = ticks;
    any_ = true;

    switch (event.kind) {
    case Kind::key:
        out_ << "key " << keyName(event.key) << '\n';
        break;
    case Kind::keyboard:
        out_ << "keyboard " << keyName(event.key) << '\n';
        break;
    case Kind::character: {
        const bool isEscaped = event.character == '"' || event.character == '\\';
        out_ << "type \"" << (isEscaped ? "\\" : "") << toUtf8({&event.character, 1}) << "\"\n";
        break;
    }
    case Kind::penDown:
    case Kind::penMove:
        out_ << (goesOn ? " " : "pen ") << event.at.x << ',' << event.at.y;
        break;
    case Kind::penUp:
        out_ << '\n';
        break;
    case Kind::close:
        break;
    }
    out_.flush(); // what was done before a crash is the most useful part
}

} // namespace uti::host
