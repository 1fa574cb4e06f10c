// script_face.h: the person of a key script at the display. Commands are performed in order, each
// as soon as it can be; what cannot be performed at all fails the run.
#pragma once

#include "host/faces/script.h"
#include "host/toolkit/display.h"

#include <filesystem>
#include <optional>

namespace uti::host {

class ScriptFace final : public Face {
public:
    // Pictures and dumps go to `folder`; golden pictures are looked for beside the script. `failed`
    // becomes true when the run fails; what is wrong was then said on standard error.
    ScriptFace(Display &display, Script script, std::filesystem::path folder, bool &failed);
    // Fails the run when commands are left.
    ~ScriptFace() override;
    ScriptFace(const ScriptFace &) = delete;
    ScriptFace &operator=(const ScriptFace &) = delete;

    void show(const Surface &, const Rect &) override {}
    std::optional<Event> next(uint32_t milliseconds) override;

private:
    enum class Outcome : uint8_t { done, waits };

    Outcome perform(const ScriptCommand &command);
    bool isSettled() const;
    bool isBetweenForms() const;
    void report(ScriptPlace place, const std::string &what);
    void fail(ScriptPlace place, const std::string &what);
    void failAtDisplay(ScriptPlace place, const std::string &what);
    std::optional<Event> afterEnd(uint32_t milliseconds);
    void save(const ScriptCommand &command);
    void save(const Surface &surface, const std::filesystem::path &path, ScriptPlace place);
    void compare(const ScriptCommand &command);
    void endWhenStuck(ScriptPlace place);

    Display &display_;
    const Script script_;
    const std::filesystem::path folder_, goldens_;
    bool &failed_;
    std::size_t at_ = 0;             // the command to be performed next
    uint32_t since_ = 0;             // ticks at which its turn came
    std::optional<uint32_t> ranAt_;  // ticks at which a form ran last
    std::optional<uint32_t> looked_; // modal runs started when time was last waited for
    bool isGone_ = false;            // the script ended with the person going away
    int cancelled_ = 0;              // forms that were cancelled after the end
};

} // namespace uti::host
