// choose.cpp: which face the environment asks for: a key script, a window or none. A key script is
// read when the library is loaded, so that its clock and its peripherals hold from the
// application's first call on.
#include "host/faces/choose.h"

#include "host/faces/script_face.h"
#include "host/faces/window_face.h"
#include "host/terminal/clock.h"
#include "host/terminal/notice.h"
#include "host/toolkit/display.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <utility>

#include <unistd.h>

namespace uti::host {

namespace {

constinit bool runFailed = false;

// Nobody sees the display: forms end with their time-out.
class LonelyFace final : public Face {
public:
    explicit LonelyFace(Display &display) : display_(display) {}

    void show(const Surface &, const Rect &) override {}

    std::optional<Event> next(uint32_t milliseconds) override {
        notice("nobody sees the display, and forms without a time-out are cancelled: set "
               "UTI_WINDOW=1, or name a key script in UTI_SCRIPT");
        const Form *form = display_.running();
        if (form && form->timeOut == 0)
            return Event{.kind = Event::Kind::close};
        pass(milliseconds);
        return std::nullopt;
    }

private:
    Display &display_;
};

// The value of a variable; empty when it is not set.
std::string valueOf(const char *variable) {
    const char *value = std::getenv(variable);
    return value ? value : "";
}

// Runs after everything that the application has left for its end.
void endRun() {
    if (!runFailed)
        return;
    std::fflush(nullptr);
    _exit(EXIT_FAILURE);
}

[[gnu::constructor]] void startRun() {
    setFaceMaker(makeFace);
    if (valueOf("UTI_SCRIPT").empty())
        return;
    std::atexit(endRun);
    useVirtualClock();
    display();
}

std::string readScript(const std::string &path) {
    std::ifstream file(path);
    std::ostringstream source;
    source << file.rdbuf();
    if (file)
        return source.str();
    std::fprintf(stderr, "%s: error: the key script cannot be read\n", path.c_str());
    std::_Exit(2);
}

// The application may have written something that is still on its way.
[[noreturn]] void refuse() {
    std::fflush(nullptr);
    std::_Exit(2);
}

std::unique_ptr<Face> makeWindow(Display &display, const std::string &scale) {
    if (scale.size() != 1 || scale[0] < '1' || scale[0] > '4') {
        std::fprintf(stderr, "uti: UTI_WINDOW=%s is no scale from 1 to 4\n", scale.c_str());
        refuse();
    }
    std::unique_ptr<Face> window =
        openWindow(display, {scale[0] - '0', valueOf("UTI_RECORD"), valueOf("UTI_OUT")});
    if (!window)
        refuse();
    return window;
}

} // namespace

std::unique_ptr<Face> makeFace(Display &display) {
    const std::string path = valueOf("UTI_SCRIPT"), scale = valueOf("UTI_WINDOW");
    if (path.empty() && (scale.empty() || scale == "0"))
        return std::make_unique<LonelyFace>(display);
    if (path.empty())
        return makeWindow(display, scale);

    Script script = parseScript(path, readScript(path));
    if (!script.isValid)
        std::_Exit(EXIT_FAILURE);
    // The application may go to another folder.
    const auto pictures = std::filesystem::current_path() / valueOf("UTI_OUT");
    return std::make_unique<ScriptFace>(display, std::move(script), pictures, runFailed);
}

} // namespace uti::host
