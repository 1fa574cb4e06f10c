// script_face.cpp: performing the commands of a key script, on the platform's clock.
#include "host/faces/script_face.h"

#include "host/faces/golden.h"
#include "host/terminal/clock.h"
#include "host/terminal/notice.h"
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
    : display_(display), script_(std::move(script)), folder_(std::move(folder)),
      goldens_(std::filesystem::absolute(script_.source.path()).parent_path()), failed_(failed),
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

// Fails the run at its end.
void ScriptFace::report(ScriptPlace place, const std::string &what) {
    script_.report(place, what);
    failed_ = true;
}

// Fails the run at once.
void ScriptFace::fail(ScriptPlace place, const std::string &what) {
    report(place, what);
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
    case Kind::expectShot:
    case Kind::shot:
    case Kind::dump:
        if (!isSettled())
            return Outcome::waits;
        display_.redraw();
        command.kind == Kind::expectShot ? compare(command) : save(command);
        return Outcome::done;
    default:
        setPeripheral(command);
        return Outcome::done;
    }
    looked_ = display_.runs();
    return Outcome::done;
}

void ScriptFace::save(const ScriptCommand &command) {
    if (command.kind == Kind::shot)
        return save(display_.surface(), folder_ / (command.text + ".png"), command.place);
    const auto path = folder_ / (command.text + ".txt");
    if (!saveDump(display_, path))
        fail(command.place, path.string() + " cannot be written");
}

void ScriptFace::save(const Surface &surface, const std::filesystem::path &path,
                      ScriptPlace place) {
    if (!saveImage(surface, path))
        fail(place, path.string() + " cannot be written");
}

// One run tells of all pictures that are not as they have to be, so the script goes on.
void ScriptFace::compare(const ScriptCommand &command) {
    const auto path = goldens_ / (command.text + ".png");
    const Surface &surface = display_.surface();
    const Size size = surface.size();
    const std::optional<Image> golden = loadImage(path);
    const bool isSized =
        golden && golden->size.width == size.width && golden->size.height == size.height;
    const Difference difference = golden ? differenceOf(*golden, surface) : Difference{};
    if (isSized && difference.pixels == 0)
        return;
    if (const char *update = std::getenv("UTI_UPDATE"); update && std::string_view(update) == "1") {
        notice(path.string() + (golden ? " is renewed" : " is new"));
        return save(surface, path, command.place);
    }

    const auto actual = folder_ / (command.text + ".actual.png");
    if (!golden) {
        std::error_code ignored;
        const bool isThere = std::filesystem::exists(path, ignored);
        report(command.place, "the golden picture " + path.string() +
                                  (isThere ? " is no PNG file" : " is not there") + "; " +
                                  actual.string() + " shows the display, UTI_UPDATE=1 " +
                                  (isThere ? "makes it anew" : "makes it"));
    } else {
        const auto marked = folder_ / (command.text + ".difference.png");
        const std::string how =
            isSized ? std::to_string(difference.pixels) +
                          (difference.pixels == 1 ? " pixel differs" : " pixels differ") + " in " +
                          written(difference.box)
                    : "it has " + std::to_string(golden->size.width) + 'x' +
                          std::to_string(golden->size.height) + " pixels, the display " +
                          std::to_string(size.width) + 'x' + std::to_string(size.height);
        report(command.place, "the display is not like " + path.string() + ": " + how + "; " +
                                  marked.string() + " shows both, UTI_UPDATE=1 renews it");
        save(drawDifference(*golden, surface), marked, command.place);
    }
    save(surface, actual, command.place);
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
