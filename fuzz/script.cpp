// Key scripts: any text is read or refused at a place that it has; what is read can be played, and
// its events, written down by the recorder, are read as the same again.
#include "fuzz/quiet.h"

#include "host/faces/recorder.h"
#include "host/faces/script_face.h"
#include "host/terminal/clock.h"
#include "terminal.h"

#include <tuple>
#include <vector>

using namespace fuzz;
using namespace uti::host;

namespace {

std::vector<Event> eventsOf(const Script &script) {
    std::vector<Event> events;
    for (const ScriptCommand &command : script.commands)
        if (command.kind == ScriptCommand::Kind::event)
            events.push_back(command.event);
    return events;
}

bool isSame(const Event &a, const Event &b) {
    return std::tie(a.kind, a.key, a.character, a.at.x, a.at.y) ==
           std::tie(b.kind, b.key, b.character, b.at.x, b.at.y);
}

} // namespace

void fuzz::run(Input &in) {
    silence();
    if (!isVirtualClock())
        useVirtualClock();
    const std::string source = in.takeRest();
    const Script script = parseScript("fuzz", source);
    const auto lines = static_cast<std::size_t>(std::count(source.begin(), source.end(), '\n')) + 1;
    std::size_t last = 1;
    bool savesFiles = false;
    for (const ScriptCommand &command : script.commands) {
        REQUIRE(command.place.line >= last && command.place.line <= lines);
        REQUIRE(command.place.column >= 1 && command.place.column <= source.size() + 1);
        last = command.place.line;
        script.report(command.place, "somewhere");
        savesFiles = savesFiles || command.kind == ScriptCommand::Kind::expectShot ||
                     command.kind == ScriptCommand::Kind::shot ||
                     command.kind == ScriptCommand::Kind::dump;
    }
    if (!script.isValid)
        return;

    static const MemoryFile file;
    const std::vector<Event> events = eventsOf(script);
    {
        Recorder recorder(file.path(), 0);
        uint32_t ticks = 0;
        for (const Event &event : events)
            recorder.add(event, ticks += 7);
        recorder.end(ticks);
    }
    const Script again = parseScript("recorded", file.read());
    const std::vector<Event> recorded = eventsOf(again);
    REQUIRE(again.isValid && events.size() == recorded.size());
    REQUIRE(std::equal(events.begin(), events.end(), recorded.begin(), isSame));
    if (savesFiles)
        return;

    static bool failed; // which the face of the run before may still write to
    const int32_t screen = Display_GetHandle(), form = igForm_Create("Form", 0);
    igForm_Add(form, igInput_Create(8, 30, 222, 28, 20, IG_INPUT_CURSOR));
    igForm_SetTimeOut(form, 2000);
    display().useFace(std::make_unique<ScriptFace>(display(), script, "/dev/null", failed));
    igUI_Add(screen, form);
    igUI_ShowExt(screen, form, [](uint8_t *) { return 0; });
    while (igForm_GetState(form) == IG_STATE_RUNNING)
        WaitSleep(100);
    igUI_Del(screen, form);
}
