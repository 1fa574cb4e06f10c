// Dialogs on the desktop's own toolkit, with a person who presses keys and uses the pen: what is
// drawn piece by piece is at every moment what drawing the whole display gives.
#include "fuzz/dialogs.h"
#include "fuzz/quiet.h"

#include "host/terminal/clock.h"
#include "host/toolkit/display.h"
#include "host/toolkit/dump.h"

using namespace fuzz;
using namespace uti::host;

namespace {

constexpr uint8_t keys[] = {IG_KEY_ENTER, IG_KEY_ESCAPE, IG_KEY_UP, IG_KEY_DOWN,
                            '0',          '1',           '2',       '9'};
constexpr Event::Kind pen[] = {Event::Kind::penDown, Event::Kind::penMove, Event::Kind::penUp};

void compareWithWhole() {
    display().redraw();
    const Surface pieces = display().surface();
    display().drawAll(pieces.area());
    const std::size_t pixels = static_cast<std::size_t>(pieces.size().width * pieces.size().height);
    REQUIRE(std::memcmp(pieces.row(0), display().surface().row(0), pixels * sizeof(Color)) == 0);
    REQUIRE(!shows(display(), "no widget says this"));
}

// Does what the input says until it is over, then waits.
class Person final : public Face {
public:
    explicit Person(const std::string &bytes) : bytes_(bytes), in_(bytes_) {}
    void show(const Surface &surface, const Rect &changed) override {
        REQUIRE(surface.area().covers(changed));
    }
    std::optional<Event> next(uint32_t milliseconds) override {
        const bool isHere = !in_.isOver();
        if (isHere && in_.oneIn(8))
            compareWithWhole();
        const uint32_t choice = isHere ? in_.below(10) : 9;
        if (choice < 4)
            return Event{.kind = Event::Kind::key,
                         .key = in_.oneIn(4) ? in_.byte() : in_.pick(keys)};
        if (choice < 6)
            return Event{.kind = Event::Kind::character,
                         .character = terminalCodePage().decode(static_cast<char>(in_.byte()))};
        if (choice < 9) {
            const int x = static_cast<int>(in_.below(250)), y = static_cast<int>(in_.below(330));
            return Event{.kind = pen[choice - 6], .at = {x, y}};
        }
        // What no time-out ends is cancelled in the end.
        if (!isHere && ++idle_ % 400 == 0)
            return Event{.kind = Event::Kind::key, .key = IG_KEY_ESCAPE};
        pass(isHere ? in_.below(1200) : milliseconds);
        return std::nullopt;
    }

private:
    const std::string bytes_;
    Input in_;
    uint32_t idle_ = 0;
};

} // namespace

void fuzz::run(Input &in) {
    silence();
    setenv("default_lang", "en", 1);
    setenv("UTI_IMAGES", UTI_FUZZ_IMAGES, 1);
    if (!isVirtualClock())
        useVirtualClock();
    const uint32_t type = in.below(5);
    const std::string description = describeDialog(in, type), request = in.bytes(100);
    REQUIRE(Resource_GetString("m", 1) == ResourceEmptyStr); // which sets the language
    resource_StoreString("m", 1, description.data(), static_cast<uint32_t>(description.size()));
    Input choices(request);
    display().useFace(std::make_unique<Person>(in.takeRest()));
    showDialog(choices, type);
    Wait(200);
    compareWithWhole();
    display().useFace(std::make_unique<Person>("")); // nobody is there
    if (uti::currentForm > 0)
        igUI_Del(Display_GetHandle(), uti::currentForm);
    support::forgetDialogs();
    Wait(0);
    compareWithWhole();
}
