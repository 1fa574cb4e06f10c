// script_face.cpp: performing the commands of a key script, on the platform's clock.
#include "host/faces/script_face.h"

#include "host/terminal/clock.h"
#include "host/terminal/peripherals.h"
#include "host/toolkit/dump.h"

#include <cstdio>
#include <cstdlib>

namespace uti::host {

namespace {

using Kind = ScriptCommand::Kind;

// An application that shows no form for so long will never end by itself.
constexpr uint32_t patience = 60 * 60 * 1000;

// An application that shows forms looks for their end every 100 ms.
constexpr uint32_t betweenForms = 200;

bool needsNoForm(const Event &event) {
    return event.kind == Event::Kind::keyboard || event.kind == Event::Kind::close;
}

bool isPeripheral(Kind kind) {
    return kind >= Kind::paperOut;
}

void setPeripheral(const ScriptCommand &command) {
    Peripherals &all = peripherals();
    switch (command.kind) {
    case Kind::paperOut:
    case Kind::paperIn:
        all.paperOut = command.kind == Kind::paperOut;
        break;
    case Kind::portsFail:
    case Kind::portsWork:
        all.portsFail = command.kind == Kind::portsFail;
        break;
    default:
        all.modem.add(command.text, command.milliseconds, command.reply);
    }
}

} // namespace

// What a script says about the peripherals at its start holds before the application does anything.
ScriptFace::ScriptFace(Display &display, Script script, std::filesystem::path folder, bool &failed)
    : display_(display), script_(std::move(script)), folder_(std::move(folder)), failed_(failed),
      since_(ticks()) {
    peripherals().paperOut = false;
    peripherals().portsFail = false;
    peripherals().modem.remove();
    while (at_ < script_.commands.size() && isPeripheral(script_.commands[at_].kind))
        setPeripheral(script_.commands[at_++]);
}

// Time at the end is there for whatever the application still does; it may need less.
ScriptFace::~ScriptFace() {
    if (at_ == script_.commands.size())
        return;
    const ScriptCommand &last = script_.commands[at_];
    if (at_ + 1 < script_.commands.size() || last.kind != Kind::advance)
        fail(last.place, "the application ended before this");
}

void ScriptFace::fail(ScriptPlace place, const std::string &what) {
    script_.report(place, what);
    failed_ = true;
    at_ = script_.commands.size();
    since_ = ticks();
}

// What the script did not expect is kept, as a picture and as text.
void ScriptFace::failAtDisplay(ScriptPlace place, const std::string &what) {
    fail(place, what);
    const auto path = folder_ / "failed.png";
    display_.redraw();
    const bool isSaved = saveImage(display_.surface(), path);
    std::fprintf(stderr, "%s%s %s\n", dump(display_).c_str(), path.c_str(),
                 isSaved ? "shows it" : "cannot be written");
}

std::optional<Event> ScriptFace::next(uint32_t milliseconds) {
    if (display_.running())
        ranAt_ = ticks();
    while (at_ < script_.commands.size()) {
        const ScriptCommand &command = script_.commands[at_];
        if (perform(command) == Outcome::waits) {
            if (command.milliseconds == 0)
                endWhenStuck(command.place);
            const uint32_t waited = ticks() - since_;
            const bool isUnderWay = waited < command.milliseconds;
            pass(isUnderWay ? std::min(milliseconds, command.milliseconds - waited) : milliseconds);
            return std::nullopt;
        }
        if (at_ < script_.commands.size())
            ++at_;
        since_ = ticks();
        if (command.kind != Kind::event)
            continue;
        isGone_ = command.event.kind == Event::Kind::close;
        return command.event;
    }
    return afterEnd(milliseconds);
}

// A form runs, or the script has waited since the last one ended: what is shown now is what it
// means.
bool ScriptFace::isSettled() const {
    return display_.running() || looked_ == display_.runs();
}

// A form has ended and is still on the display: the application may be about to show the next one.
bool ScriptFace::isBetweenForms() const {
    return !display_.running() && ranAt_ && ticks() - *ranAt_ < betweenForms;
}

ScriptFace::Outcome ScriptFace::perform(const ScriptCommand &command) {
    const uint32_t waited = ticks() - since_;
    if (isBetweenForms())
        return Outcome::waits;
    switch (command.kind) {
    case Kind::event:
        if (!display_.running() && !needsNoForm(command.event))
            return Outcome::waits;
        if (const CodePage &page = display_.stage().fonts.codePage();
            command.event.kind == Event::Kind::character && !page.encode(command.event.character))
            failAtDisplay(command.place, describe(command.event.character) + " is not in " +
                                             page.name() + ", in which the display is");
        return Outcome::done;
    case Kind::advance:
        if (waited < command.milliseconds)
            return Outcome::waits;
        break;
    case Kind::waitText:
        if (shows(display_, command.text))
            break;
        if (waited < command.milliseconds)
            return Outcome::waits;
        failAtDisplay(command.place, "the text was not shown in time");
        return Outcome::done;
    case Kind::expectFits:
        if (!isSettled())
            return Outcome::waits;
        if (const auto all = display_.misfits(display_.surface().area()); !all.empty())
            failAtDisplay(command.place, all.front().sentence());
        return Outcome::done;
    case Kind::expectText:
    case Kind::expectNoText:
        if (!isSettled())
            return Outcome::waits;
        if (shows(display_, command.text) != (command.kind == Kind::expectText))
            failAtDisplay(command.place, command.kind == Kind::expectText ? "the text is not shown"
                                                                          : "the text is shown");
        return Outcome::done;
    case Kind::shot:
    case Kind::dump:
        if (!isSettled())
            return Outcome::waits;
        save(command);
        return Outcome::done;
    default:
        setPeripheral(command);
        return Outcome::done;
    }
    looked_ = display_.runs();
    return Outcome::done;
}

void ScriptFace::save(const ScriptCommand &command) {
    const auto path = folder_ / (command.text + (command.kind == Kind::shot ? ".png" : ".txt"));
    display_.redraw();
    if (command.kind == Kind::shot ? !saveImage(display_.surface(), path)
                                   : !saveDump(display_, path))
        fail(command.place, path.string() + " cannot be written");
}

// Nobody is left to answer: forms are cancelled, and the first one fails the run.
std::optional<Event> ScriptFace::afterEnd(uint32_t milliseconds) {
    const Form *form = display_.running();
    if (!form) {
        if (isGone_ && !display_.isClosed())
            return Event{.kind = Event::Kind::close};
        endWhenStuck(script_.end());
        pass(milliseconds);
        return std::nullopt;
    }
    if (!failed_ && !isGone_)
        fail(script_.end(), "the script ends while a form waits for an answer");
    if (++cancelled_ > mostCancelled) {
        script_.report(script_.end(), "the application goes on without end");
        std::exit(EXIT_FAILURE);
    }
    since_ = ticks();
    return Event{.kind = Event::Kind::close};
}

void ScriptFace::endWhenStuck(ScriptPlace place) {
    if (ticks() - since_ < patience || display_.running())
        return;
    if (!std::exchange(failed_, true))
        script_.report(place, "the application shows no form for an hour");
    at_ = script_.commands.size();
    std::exit(EXIT_FAILURE);
}

} // namespace uti::host
