// display.cpp: the modal run and the drawing of the whole display.
#include "host/toolkit/display.h"

#include "host/terminal/clock.h"
#include "host/terminal/notice.h"
#include "terminal.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace uti::host {

namespace {

constexpr Color desktop = rgb(226, 231, 238);

// The application's callback sees the running form at least this often.
constexpr uint32_t pollInterval = 100;

// UTI_DISPLAY, such as 240x320; each side 32 to 2048.
Size sizeFromEnvironment() {
    int width = 0, height = 0;
    const char *value = std::getenv("UTI_DISPLAY");
    if (!value || !*value)
        return {240, 320};
    if (std::sscanf(value, "%dx%d", &width, &height) == 2 && width >= 32 && width <= 2048 &&
        height >= 32 && height <= 2048)
        return {width, height};
    std::fprintf(stderr, "uti: UTI_DISPLAY=%s is no size such as 240x320\n", value);
    return {240, 320};
}

} // namespace

// While the events of a form are handled, its code may delete it or run another form; what was
// deleted stays in memory until nothing of it runs any more.
class Display::Dispatch {
public:
    Dispatch(Display &display, int32_t form)
        : display_(display), before_(std::exchange(display.dispatching_, form)) {}
    ~Dispatch() {
        display_.dispatching_ = before_;
        display_.sweep();
    }
    Dispatch(const Dispatch &) = delete;
    Dispatch &operator=(const Dispatch &) = delete;

private:
    Display &display_;
    int32_t before_;
};

Display::Display(Size size) : surface_(size) {
    enableStatusLine(true);
    stage_.damage.add(surface_.area());
}

Display::~Display() {
    setWaiter(nullptr);
}

int32_t Display::loadImage(const std::string &name) {
    if (lastHandle_ == INT32_MAX)
        return IG_ERROR_HANDLE;
    const int32_t image = stage_.images.load(name, lastHandle_ + 1);
    lastHandle_ = std::max(lastHandle_, image);
    return image;
}

void Display::add(int32_t form) {
    Form *added = this->form(form);
    std::erase(stack_, added);
    stack_.push_back(added);
    added->changed();
}

void Display::remove(int32_t form) {
    std::unique_ptr<Form> removed = forms_.take(form);
    std::erase(stack_, removed.get());
    stage_.damage.add(surface_.area()); // a form that filled the display hid others
    for (const Widget *widget : removed->widgets)
        deletedWidgets_.push_back(widgets_.take(widget->handle));
    deletedForms_.push_back(std::move(removed));
    sweep();
}

void Display::sweep() {
    if (dispatching_ != 0)
        return;
    deletedForms_.clear();
    deletedWidgets_.clear();
}

void Display::show(int32_t form) {
    Form *shown = this->form(form);
    if (std::ranges::find(stack_, shown) == stack_.end())
        stack_.push_back(shown);
    shown->changed();
    shown->layOut();
    shown->shown = true;
    updateStatusLine();
    stage_.damage.add(surface_.area());
    redraw();
}

void Display::run(int32_t form, IgEventCallback callback) {
    if (Form *before = running())
        before->end(IG_STATE_CANCELLED);
    Form *started = this->form(form);
    started->state = IG_STATE_RUNNING;
    started->started = ticks();
    isRunAgain_ = std::exchange(polledOut_, 0) == form && ticks() - asked_ <= 2 * pollInterval;
    if (!isRunAgain_)
        waiting_.reset();
    modal_ = form;
    callback_ = callback;
    asked_ = ticks() - pollInterval;
    ++runs_;
    show(form);
    if (std::exchange(isClosed_, false))
        started->end(IG_STATE_CANCELLED);
}

Form *Display::running() const {
    Form *form = this->form(modal_);
    return form && form->running() ? form : nullptr;
}

Form *Display::listening() const {
    return dispatching_ == modal_ ? nullptr : running();
}

std::vector<const Form *> Display::visibleForms() const {
    std::vector<const Form *> visible;
    for (const Form *form : stack_) {
        if (form->shown && form->fillsDisplay())
            visible.clear();
        if (form->shown)
            visible.push_back(form);
    }
    return visible;
}

// --------------------------------------------------------------------------------- events

void Display::wait(uint32_t milliseconds) {
    const uint32_t start = ticks();
    for (bool wasAsked = false;; wasAsked = true) {
        takeWaiting();
        tick();
        redraw();
        const uint32_t elapsed = ticks() - start;
        if (wasAsked && elapsed >= milliseconds)
            return;
        const uint32_t slice = std::min(milliseconds - elapsed, pollInterval);
        // An application that waits inside its callback is not asked again from there.
        if (dispatching_ == modal_ && running())
            pass(slice);
        else if (const std::optional<Event> event = face_->next(slice))
            handleEvent(*event);
    }
}

// A form that its callback ended and that runs again takes one event before the callback is asked,
// or it would be deaf to a callback that always ends it.
void Display::takeWaiting() {
    if (!isRunAgain_ || !listening())
        return;
    isRunAgain_ = false;
    std::optional<Event> event = std::exchange(waiting_, std::nullopt);
    if (!event)
        event = face_->next(0);
    using Kind = Event::Kind;
    if (event && (event->kind == Kind::key || event->kind == Kind::character))
        press(*event, Asking::nobody);
    else if (event)
        handleEvent(*event);
}

// What comes by itself: the callback's regular turn, the form's time-out and the clock.
void Display::tick() {
    Form *form = listening();
    if (form && ticks() - asked_ >= pollInterval)
        form = poll();
    if (form && form->timeOut > 0 && ticks() - form->started >= form->timeOut)
        form->end(IG_STATE_TIME_OUT);
    updateStatusLine();
}

void Display::updateStatusLine() {
    TerminalTime time;
    GetDateTime(nullptr, &time);
    char clock[8];
    std::snprintf(clock, sizeof clock, "%02u:%02u", time.hour % 100u, time.minute % 100u);
    const Form *form = running();
    const Widget *focused = form ? form->focused() : nullptr;
    if (statusLine_.update(clock, focused ? focused->letters() : ""))
        damageStatusLine();
}

// Lets the callback see that nothing happened. It may end the form all the same, to show it anew.
Form *Display::poll() {
    uint8_t none = 0;
    const uint32_t run = runs_;
    Form *const before = listening();
    Form *const form = ask(none);
    polledOut_ = before && !form && run == runs_ ? modal_ : 0;
    return form;
}

Form *Display::ask(uint8_t &key) {
    Form *form = listening();
    asked_ = ticks();
    if (!form || !callback_)
        return form;
    const uint32_t run = runs_;
    const Dispatch dispatch(*this, modal_);
    const int32_t state = callback_(&key);
    Form *still = running();
    if (!still || run != runs_)
        return nullptr;
    if (state == 0)
        return still;
    still->end(state);
    return nullptr;
}

void Display::handleEvent(const Event &event) {
    switch (event.kind) {
    case Event::Kind::key:
    case Event::Kind::character:
        if (isInputBlocked_)
            return;
        if (!poll() && polledOut_ != 0)
            waiting_ = event; // for the form when it is shown anew
        else
            press(event, Asking::callback);
        return;
    case Event::Kind::keyboard:
        if (!isInputBlocked_)
            keyboardHandler_(handle, event.key);
        return;
    case Event::Kind::penDown:
        return touch(PenPhase::down, event.at);
    case Event::Kind::penMove:
        return touch(PenPhase::move, event.at);
    case Event::Kind::penUp:
        return touch(PenPhase::up, event.at);
    case Event::Kind::close:
        if (Form *form = running())
            form->end(IG_STATE_CANCELLED);
        else
            isClosed_ = true;
    }
}

// The key goes to the display's handler, to the application's callback, to the form, until one
// takes it. Nobody took Enter or Escape: they end the form. To everybody but the form a character
// is the key that gives it, since its own code may be that of a function key.
void Display::press(const Event &event, Asking asking) {
    const bool isCharacter = event.kind == Event::Kind::character;
    const std::optional<char> character =
        isCharacter ? stage_.fonts.codePage().encode(event.character) : std::nullopt;
    if (isCharacter && !character)
        return;
    uint8_t key = isCharacter ? KeySchemes::keyOf(*character) : event.key;
    Form *form = listening();
    if (!isCharacter && form && form->focused())
        key = form->focused()->meaning(key);
    if (isInputBlocked_ || keyboardHandler_(handle, key) != 0)
        return;
    form = asking == Asking::callback ? ask(key) : listening();
    if (!form || key == 0)
        return;

    const uint32_t run = runs_;
    bool taken = false;
    {
        const Dispatch dispatch(*this, modal_);
        // The digits of a full keyboard are keys as well.
        const bool isKey = !isCharacter || key == static_cast<uint8_t>(*character);
        taken = (isCharacter && form->character(*character)) || (isKey && form->key(key));
    }
    form = running();
    if (taken || !form || run != runs_ || isCharacter)
        return;
    if (key == IG_KEY_ENTER)
        form->end(IG_STATE_CONFIRMED);
    if (key == IG_KEY_ESCAPE)
        form->end(IG_STATE_CANCELLED);
}

// Whoever draws with the pen is there, so the time-out starts anew.
void Display::touch(PenPhase phase, Point at) {
    uint8_t key = 0, touched = IG_KEY_PEN;
    if (isInputBlocked_)
        return;
    if (Form *form = ask(touched)) {
        form->started = ticks();
        key = form->pen(phase, at);
    }
    if (key != 0)
        press({.kind = Event::Kind::key, .key = key}, Asking::callback);
}

// -------------------------------------------------------------------------------- drawing

void Display::enableStatusLine(bool isEnabled) {
    statusLine_.enabled = isEnabled;
    const int top = isEnabled ? StatusLine::height : 0;
    stage_.formArea = {0, top, size().width, size().height - top};
    damageStatusLine();
}

void Display::damageStatusLine() {
    stage_.damage.add({0, 0, size().width, StatusLine::height});
}

// A form that was shown without the status line covers its place until another one is shown.
bool Display::statusLineShown() const {
    const auto forms = visibleForms();
    const bool covered =
        !forms.empty() && forms.front()->fillsDisplay() && forms.front()->area().y == 0;
    return statusLine_.enabled && !covered;
}

void Display::setBackground(int32_t image) {
    background_ = image;
    stage_.damage.add(surface_.area());
}

void Display::drawAll(const Rect &part) {
    Painter painter(surface_, part);
    const auto forms = visibleForms();
    Rect bare = surface_.area(); // of which no form is sure to cover everything
    if (!forms.empty() && forms.front()->fillsDisplay() && forms.front()->options & IG_FORM_OPAQUE)
        bare.height = forms.front()->area().y;
    if (painter.reaches(bare)) {
        Painter lowest = painter.within(bare);
        drawDesktop(lowest);
        painter.ground = lowest.ground;
    }
    for (const Form *form : forms) {
        form->draw(painter);
        painter.ground.reset();
    }
}

void Display::drawDesktop(Painter &painter) {
    painter.fill(surface_.area(), desktop);
    painter.ground = desktop;
    if (const Image *picture = stage_.images.find(background_)) {
        painter.image({}, *picture);
        painter.ground.reset();
    }
    if (!statusLineShown())
        return;
    Painter line = painter;
    statusLine_.draw(line, size().width, stage_.fonts.label());
}

void Display::redraw() {
    Rect changed;
    for (const Rect &part : stage_.damage.take()) {
        drawAll(part);
        changed = changed.united(part.intersected(surface_.area()));
    }
    if (changed.empty())
        return;
    face_->show(surface_, changed);
    for (const Misfit &misfit : misfits(changed))
        notice(misfit.where, misfit.sentence());
}

std::optional<Cut> Display::cutStatusLine() const {
    return statusLineShown() ? statusLine_.cut(size().width, stage_.fonts.label()) : std::nullopt;
}

std::vector<Misfit> Display::misfits(const Rect &part) const {
    std::vector<Misfit> all;
    if (auto cut = cutStatusLine(); cut && part.y < StatusLine::height)
        all.push_back(
            {"the status line", *std::move(cut), {0, 0, size().width, StatusLine::height}});
    for (const Form *form : visibleForms())
        std::ranges::move(misfitsOf(*form, part), std::back_inserter(all));
    return all;
}

namespace {

constinit FaceMaker faceMaker = nullptr;

} // namespace

void setFaceMaker(FaceMaker maker) {
    faceMaker = maker;
}

Display &display() {
    static Display all(sizeFromEnvironment());
    static const bool ready = [] {
        all.useFace(faceMaker(all));
        setWaiter([](uint32_t milliseconds) { all.wait(milliseconds); });
        return true;
    }();
    static_cast<void>(ready);
    return all;
}

} // namespace uti::host
