// recorder.cpp: events as lines of a key script.
#include "host/faces/recorder.h"

#include "common/utf8.h"
#include "host/faces/script.h"

#include <algorithm>
#include <utility>

namespace uti::host {

namespace {

// A form that ended by its time-out just before the application did takes a little longer when it
// is played.
constexpr uint32_t spare = 1000;

// Characters that follow one another sooner, in ms, are one text.
constexpr uint32_t pauseInTyping = 1000;

} // namespace

// Waiting is written down too, since a key that is pressed again soon gives another letter.
void Recorder::startLine(uint32_t ticks) {
    if (std::exchange(isPenDown_, false))
        out_ << '\n';
    lastTyped_.reset();
    if (ticks != last_)
        out_ << "advance " << std::min(ticks - last_, longestAdvance) << "ms\n";
    last_ = ticks;
}

void Recorder::add(const Event &event, uint32_t ticks) {
    using Kind = Event::Kind;
    const bool goesOn = event.kind == Kind::penMove || event.kind == Kind::penUp;
    if (goesOn && !isPenDown_)
        return;
    const bool isJoined =
        event.kind == Kind::character && lastTyped_ && ticks - *lastTyped_ < pauseInTyping;
    if (!goesOn && !isJoined)
        startLine(ticks);

    switch (event.kind) {
    case Kind::key:
        out_ << "key " << keyName(event.key) << '\n';
        break;
    case Kind::keyboard:
        out_ << "keyboard " << keyName(event.key) << '\n';
        break;
    case Kind::character: {
        const bool isEscaped = event.character == '"' || event.character == '\\';
        isJoined ? out_.seekp(-2, std::ios::cur) : out_ << "type \""; // before the closing quote
        std::string typed;
        appendCharacter(typed, event.character);
        out_ << (isEscaped ? "\\" : "") << typed << "\"\n";
        lastTyped_ = ticks;
        break;
    }
    case Kind::penDown:
    case Kind::penMove:
        out_ << (goesOn ? " " : "pen ") << event.at.x << ',' << event.at.y;
        isPenDown_ = true;
        break;
    case Kind::penUp:
        out_ << '\n';
        isPenDown_ = false;
        break;
    case Kind::close:
        out_ << "close\n";
        break;
    }
    out_.flush(); // what was done before a crash is the most useful part
}

void Recorder::addPicture(const std::string &name, uint32_t ticks) {
    startLine(ticks);
    out_ << "shot " << name << "\ndump " << name << '\n' << std::flush;
}

void Recorder::end(uint32_t ticks) {
    startLine(ticks + spare);
}

} // namespace uti::host
