// choose.cpp: which face the environment asks for. A key script is read when the library is loaded,
// so that its clock and its peripherals hold from the application's first call on.
#include "clock.h"
#include "display.h"
#include "scriptFace.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

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
        const Form *form = display_.running();
        if (form && form->timeOut == 0) {
            std::fprintf(stderr,
                         "uti: a form without a time-out is cancelled, since there is nobody to "
                         "answer it: name a key script in UTI_SCRIPT\n");
            return Event{.kind = Event::Kind::close};
        }
        pass(milliseconds);
        return std::nullopt;
    }

private:
    Display &display_;
};

const char *scriptPath() {
    const char *path = std::getenv("UTI_SCRIPT");
    return path && *path ? path : nullptr;
}

// Runs after everything that the application has left for its end.
void endRun() {
    if (!runFailed)
        return;
    std::fflush(nullptr);
    _exit(EXIT_FAILURE);
}

[[gnu::constructor]] void startRun() {
    if (!scriptPath())
        return;
    std::atexit(endRun);
    useVirtualClock();
    display();
}

std::string readScript(const char *path) {
    std::ifstream file(path);
    std::ostringstream source;
    source << file.rdbuf();
    if (file)
        return source.str();
    std::fprintf(stderr, "%s: error: the key script cannot be read\n", path);
    std::_Exit(2);
}

} // namespace

std::unique_ptr<Face> makeFace(Display &display) {
    const char *path = scriptPath();
    if (!path)
        return std::make_unique<LonelyFace>(display);

    Script script = parseScript(path, readScript(path));
    if (!script.isValid)
        std::_Exit(EXIT_FAILURE);
    const char *folder = std::getenv("UTI_OUT");
    return std::make_unique<ScriptFace>(display, std::move(script), folder ? folder : "",
                                        runFailed);
}

} // namespace uti::host
