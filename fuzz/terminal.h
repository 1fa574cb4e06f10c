// terminal.h (fuzz): the library on the terminal of the tests, where the input may let one call
// fail, and what is to be left when a run is over.
#pragma once

#include "fuzz/harness.h"
#include "tests/fakes/toolkit.h"
#include "tests/state.h"

// A promise that holds until a fault has struck.
#define REQUIRE_UNLESS_STRUCK(condition) REQUIRE(fake::faultStruck() || (condition))

namespace fuzz {

// Lets a call fail, once or from then on, when the input says so: one input in four or so.
inline void armFault(Input &in) {
    const uint32_t kind = in.below(64), nth = in.below(256);
    if (kind < static_cast<uint32_t>(fake::Call::count))
        fake::failCall(static_cast<fake::Call>(kind), static_cast<int>(nth / 2 + 1),
                       nth % 2 ? fake::Persistence::fromThenOn : fake::Persistence::once);
}

// Opens the trace log, so that whatever is reported goes through it.
inline void openLog(uint32_t output, uint8_t text, const char *baseName = "", int32_t maxSize = 0) {
    TraceExSettings settings{output, 3, "", text, {}, maxSize};
    std::strncpy(settings.device.baseName, baseName, sizeof settings.device.baseName - 1);
    TraceExOpen(&settings);
}

// The library as if it had just been loaded, and at the end nothing open, leaked or misused.
class Library {
public:
    ~Library() {
        fake::disarm();
        MonitorExClose();
        support::forgetDialogs();
        REQUIRE(fake::terminal().openFiles == 0);
        REQUIRE(fake::toolkit().mistakes.empty());
        const bool isFormLeft = keepTextsOfForms();
        fake::reset();
        REQUIRE(isFormLeft || fake::liveBlocks() == blocks_);
    }

    fake::Terminal &terminal = fake::terminal();

private:
    // A form that could not be deleted goes on reading its texts; the leak detection finds them
    // here.
    static bool keepTextsOfForms() {
        static std::vector<const char *> kept;
        bool isLeft = false;
        for (const auto &[handle, object] : fake::toolkit().objects) {
            isLeft |= object.kind == "form";
            if (object.form != 0)
                kept.insert(kept.end(), object.texts.begin(), object.texts.end());
        }
        return isLeft;
    }

    // Both logs keep a table from their first record on.
    static int blocksBefore() {
        fake::reset();
        openLog(TRACE_OUTPUT_SERIAL, 0);
        TraceExAssert("", 0);
        TraceExClose();
        const MonitorExSettings settings{0, "w", 0};
        MonitorExOpen(&settings);
        MonitorExWrite(0, 0);
        MonitorExClose();
        fake::reset();
        return fake::liveBlocks();
    }

    const int blocks_ = blocksBefore();
};

} // namespace fuzz
