// window_face.cpp: the window. Stands on SDL for events and for bringing pixels to the screen; the
// pixels themselves are computed here, so that they are the same on every machine.
#include "host/faces/window_face.h"

#include "common/utf8.h"
#include "host/faces/keypad.h"
#include "host/faces/recorder.h"
#include "host/terminal/clock.h"
#include "host/toolkit/display.h"
#include "host/toolkit/dump.h"
#include "host/toolkit/image.h"
#include "terminal.h"
#include "toolkit.h"

#include <SDL.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <utility>

namespace uti::host {

namespace {

// How long an application may go on after its window was closed, in ms, while it shows no form.
constexpr uint32_t patience = 10000;

// SDL's own waiting sends itself messages, which may come after their window is gone; the X server
// then ends the process. So events are looked for this often, in ms.
constexpr uint32_t pollInterval = 10;

struct WindowDeleter {
    void operator()(SDL_Window *window) const { SDL_DestroyWindow(window); }
    void operator()(SDL_Surface *surface) const { SDL_FreeSurface(surface); }
};

SDL_Rect toSdl(const Rect &area) {
    return {area.x, area.y, area.width, area.height};
}

// The keys of the number pad are those of the keypad; they are told apart from the digits above the
// letters, which are typed.
SDL_Keycode withoutNumberPad(SDL_Keycode key) {
    if (key >= SDLK_KP_1 && key <= SDLK_KP_9)
        return SDLK_1 + (key - SDLK_KP_1);
    switch (key) {
    case SDLK_KP_0:
        return SDLK_0;
    case SDLK_KP_MULTIPLY:
        return SDLK_ASTERISK;
    case SDLK_KP_ENTER:
        return SDLK_RETURN;
    default:
        return key;
    }
}

bool isTyped(SDL_Keycode key) {
    return key > ' ' && key < SDLK_DELETE;
}

bool mayRepeat(uint8_t key) {
    return key == IG_KEY_BACKSPACE || key == IG_KEY_UP || key == IG_KEY_DOWN ||
           key == IG_KEY_LEFT || key == IG_KEY_RIGHT;
}

class WindowFace final : public Face {
public:
    WindowFace(Display &display, const WindowOptions &options)
        : display_(display), scale_(options.scale), pictures_(options.pictures),
          keypad_(display.stage().fonts, display.size(), options.scale) {}
    ~WindowFace() override;
    WindowFace(const WindowFace &) = delete;
    WindowFace &operator=(const WindowFace &) = delete;

    bool open();
    bool record(const std::string &path);

    void show(const Surface &surface, const Rect &changed) override;
    std::optional<Event> next(uint32_t milliseconds) override;

private:
    void close();
    void put(const Surface &from, const Rect &part, Point to, int scale);
    void present(const Rect &part);
    void drawKeypad(const Rect &part);
    void press(const Cap *cap);

    void take(const SDL_Event &event);
    void takeKey(const SDL_KeyboardEvent &event);
    void takeText(const char *text);
    void takeButton(const SDL_MouseButtonEvent &event);
    void pen(Event::Kind kind, Point at);
    void savePicture();
    // What the display can do with an event now; nothing when that is nothing.
    std::optional<Event> usable(Event event);
    std::optional<Event> afterClose(uint32_t milliseconds);

    Display &display_;
    const int scale_;
    const std::filesystem::path pictures_;
    const Keypad keypad_;
    std::unique_ptr<SDL_Window, WindowDeleter> window_;
    std::unique_ptr<SDL_Surface, WindowDeleter> shown_; // what the window shows, 32 bits a pixel
    std::unique_ptr<Recorder> recorder_;

    std::deque<Event> events_;
    const Cap *pressed_ = nullptr; // drawn as held down
    bool textIsKey_ = false;       // the text that comes next was taken as a key
    bool penIsDown_ = false;
    bool isClosed_ = false;
    uint32_t closedAt_ = 0; // ticks
    int cancelled_ = 0;     // forms, since the window was closed
};

bool WindowFace::open() {
    // Plain memory and no driver of a graphics card between us and the screen.
    SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
    if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0)
        return false;
    // Drivers without a screen work anywhere, and nobody would ever see the window.
    const std::string_view driver = SDL_GetCurrentVideoDriver();
    if (driver == "offscreen" || driver == "dummy" || driver == "evdev")
        return SDL_SetError("there is no desktop") == 0;
    SDL_EnableScreenSaver();
    char name[64] = "";
    GetApplicationName(name, sizeof name);
    const std::string title = std::string(name) + " (F12 saves a picture)";
    const auto [width, height] = keypad_.size();
    window_.reset(SDL_CreateWindow(title.c_str(), SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED,
                                   width, height, 0));
    shown_.reset(SDL_CreateRGBSurfaceWithFormat(0, width, height, 32, SDL_PIXELFORMAT_XRGB8888));
    if (!window_ || !shown_ || !SDL_GetWindowSurface(window_.get()))
        return false;
    SDL_StartTextInput();
    drawKeypad({0, 0, width, height});
    show(display_.surface(), display_.surface().area());
    return true;
}

bool WindowFace::record(const std::string &path) {
    if (path.empty())
        return true;
    recorder_ = std::make_unique<Recorder>(path, ticks());
    return recorder_->isGood();
}

WindowFace::~WindowFace() {
    if (recorder_ && !isClosed_)
        recorder_->end(ticks());
    close();
}

// Gives Ctrl-C back to the system, too.
void WindowFace::close() {
    shown_.reset();
    window_.reset();
    if (SDL_WasInit(SDL_INIT_VIDEO))
        SDL_Quit();
}

// ------------------------------------------------------------------------------ pictures

void WindowFace::put(const Surface &from, const Rect &part, Point to, int scale) {
    const auto rowOf = [this](int y) {
        return static_cast<uint8_t *>(shown_->pixels) + std::ptrdiff_t{y} * shown_->pitch;
    };
    const Rect place{to.x + part.x * scale, to.y + part.y * scale, part.width * scale,
                     part.height * scale};
    for (int y = 0; y < part.height; ++y) {
        const Color *pixels = from.row(part.y + y) + part.x;
        uint8_t *first = rowOf(place.y + y * scale) + std::ptrdiff_t{place.x} * 4;
        auto *out = static_cast<uint32_t *>(static_cast<void *>(first));
        for (int x = 0; x < part.width; ++x)
            out = std::fill_n(out, scale, toRgb24(pixels[x]));
        for (int copy = 1; copy < scale; ++copy)
            std::copy_n(first, place.width * 4, first + std::ptrdiff_t{copy} * shown_->pitch);
    }
    present(place);
}

void WindowFace::present(const Rect &part) {
    const SDL_Rect area = toSdl(part);
    SDL_Rect place = area;
    SDL_BlitSurface(shown_.get(), &area, SDL_GetWindowSurface(window_.get()), &place);
    SDL_UpdateWindowSurfaceRects(window_.get(), &area, 1);
}

void WindowFace::show(const Surface &surface, const Rect &changed) {
    if (!isClosed_)
        put(surface, changed, keypad_.screen().origin(), scale_);
}

void WindowFace::drawKeypad(const Rect &part) {
    Surface device(keypad_.size());
    Painter painter(device, part);
    keypad_.draw(painter);
    if (pressed_)
        keypad_.drawCap(painter, *pressed_, true);
    put(device, part, {}, 1);
}

void WindowFace::press(const Cap *cap) {
    if (const Cap *before = std::exchange(pressed_, cap))
        drawKeypad(before->area);
    if (pressed_)
        drawKeypad(pressed_->area);
}

// The picture and the text, under a number that no earlier one has.
void WindowFace::savePicture() {
    std::string name;
    std::filesystem::path picture;
    std::error_code error;
    for (int number = 1; number == 1 || std::filesystem::exists(picture, error); ++number) {
        name = "screen-" + std::to_string(number);
        picture = pictures_ / (name + ".png");
    }
    if (!saveImage(display_.surface(), picture) ||
        !saveDump(display_, pictures_ / (name + ".txt"))) {
        std::fprintf(stderr, "uti: %s cannot be written\n", picture.c_str());
        return;
    }
    std::fprintf(stderr, "uti: saved %s\n", picture.c_str());
    if (recorder_)
        recorder_->addPicture(name, ticks());
}

// -------------------------------------------------------------------------------- events

std::optional<Event> WindowFace::next(uint32_t milliseconds) {
    if (isClosed_)
        return afterClose(milliseconds);
    SDL_Event event;
    if (SDL_PollEvent(&event))
        take(event);
    else if (events_.empty())
        pass(std::min(milliseconds, pollInterval));
    if (events_.empty())
        return std::nullopt;
    const std::optional<Event> first = usable(events_.front());
    events_.pop_front();
    if (first && recorder_)
        recorder_->add(*first, ticks());
    if (first && first->kind == Event::Kind::close) {
        isClosed_ = true;
        closedAt_ = ticks();
        close();
    }
    return first;
}

void WindowFace::take(const SDL_Event &event) {
    switch (event.type) {
    case SDL_QUIT: // the window is closed, or Ctrl-C
        events_.push_back({.kind = Event::Kind::close});
        break;
    case SDL_WINDOWEVENT:
        if (event.window.event == SDL_WINDOWEVENT_EXPOSED)
            present({0, 0, keypad_.size().width, keypad_.size().height});
        if (event.window.event == SDL_WINDOWEVENT_FOCUS_LOST)
            press(nullptr);
        break;
    case SDL_KEYDOWN:
        takeKey(event.key);
        break;
    case SDL_KEYUP:
        press(nullptr);
        break;
    case SDL_TEXTINPUT:
        if (!std::exchange(textIsKey_, false))
            takeText(event.text.text);
        break;
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP:
        takeButton(event.button);
        break;
    case SDL_MOUSEMOTION:
        if (penIsDown_)
            pen(Event::Kind::penMove, {event.motion.x, event.motion.y});
        break;
    default:
        break;
    }
}

void WindowFace::takeKey(const SDL_KeyboardEvent &event) {
    const SDL_Keycode key = withoutNumberPad(event.keysym.sym);
    const Cap *cap = keypad_.capOf(key);
    const bool isCommand = (event.keysym.mod & (KMOD_CTRL | KMOD_ALT | KMOD_GUI)) != 0;
    textIsKey_ = cap && isTyped(key) && key != event.keysym.sym;
    if (key == SDLK_F12 && !event.repeat)
        savePicture();
    if (!cap || isCommand || (event.repeat && !mayRepeat(cap->key)))
        return;
    if ((event.keysym.mod & KMOD_SHIFT) == 0)
        press(cap);
    if (!isTyped(key) || textIsKey_)
        events_.push_back({.kind = Event::Kind::key, .key = cap->key});
}

// Digits are typed as they are, without the letters of their keys.
void WindowFace::takeText(const char *text) {
    for (std::string_view rest(text); !rest.empty();) {
        const char32_t character = takeCharacter(rest);
        if (character == '*' || character == '#')
            events_.push_back({.kind = Event::Kind::key, .key = static_cast<uint8_t>(character)});
        else if (character >= ' ' && display_.stage().fonts.codePage().encode(character))
            events_.push_back({.kind = Event::Kind::character, .character = character});
    }
}

void WindowFace::takeButton(const SDL_MouseButtonEvent &event) {
    if (event.button != SDL_BUTTON_LEFT)
        return;
    const Point at{event.x, event.y};
    if (event.type == SDL_MOUSEBUTTONUP) {
        press(nullptr);
        if (std::exchange(penIsDown_, false))
            pen(Event::Kind::penUp, at);
    } else if (const Cap *cap = keypad_.capAt(at)) {
        press(cap);
        events_.push_back({.kind = Event::Kind::key, .key = cap->key});
    } else if (keypad_.screen().contains(at)) {
        penIsDown_ = true;
        pen(Event::Kind::penDown, at);
    }
}

// A pen cannot leave the display.
void WindowFace::pen(Event::Kind kind, Point at) {
    const Rect &screen = keypad_.screen();
    at.x = std::clamp(at.x - screen.x, 0, screen.width - 1) / scale_;
    at.y = std::clamp(at.y - screen.y, 0, screen.height - 1) / scale_;
    events_.push_back({.kind = kind, .at = at});
}

// Without a form there is only the application's own keyboard. A recorded event then says so and
// does not wait for a form when it is played.
std::optional<Event> WindowFace::usable(Event event) {
    using Kind = Event::Kind;
    if (display_.running() || event.kind == Kind::close)
        return event;
    if (event.kind == Kind::character && event.character >= '0' && event.character <= '9')
        event.key = static_cast<uint8_t>(event.character);
    event.kind = Kind::keyboard;
    return event.key != 0 ? std::optional(event) : std::nullopt;
}

// What the application still shows is cancelled, and one that shows nothing is told, in case it
// looks.
std::optional<Event> WindowFace::afterClose(uint32_t milliseconds) {
    const bool isRunning = display_.running() != nullptr;
    if (isRunning ? ++cancelled_ > mostCancelled : ticks() - closedAt_ > patience) {
        std::fprintf(stderr, "uti: the application goes on without its window, and is ended\n");
        std::exit(EXIT_FAILURE);
    }
    if (isRunning)
        closedAt_ = ticks();
    if (isRunning || !display_.isClosed())
        return Event{.kind = Event::Kind::close};
    pass(milliseconds);
    return std::nullopt;
}

} // namespace

std::unique_ptr<Face> openWindow(Display &display, const WindowOptions &options) {
    auto face = std::make_unique<WindowFace>(display, options);
    if (!face->open()) {
        std::fprintf(stderr, "uti: the window cannot be opened: %s\n", SDL_GetError());
        return nullptr;
    }
    if (!face->record(options.record)) {
        std::fprintf(stderr, "uti: %s cannot be written\n", options.record.c_str());
        return nullptr;
    }
    return face;
}

} // namespace uti::host
