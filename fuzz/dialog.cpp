// Dialogs from their description through parser, form and run on the toolkit of the tests, which
// reads every text it was given until its widget is gone: no call fails unnoticed, none leaks, and
// the dialog after a failure is shown.
#include "fuzz/dialogs.h"
#include "fuzz/terminal.h"

using namespace fuzz;

void fuzz::run(Input &in) {
    Library library;
    fake::Toolkit &toolkit = fake::toolkit();
    library.terminal.environment["default_lang"] = "en";
    if (in.oneIn(2))
        openLog(TRACE_OUTPUT_SERIAL, 1);
    armFault(in);
    for (uint32_t dialogs = 1 + in.below(3); dialogs > 0; --dialogs) {
        const uint32_t type = in.below(5);
        support::forgetResources();
        library.terminal.files["m.res"] = support::resourceFile(
            1, {{0, {{"en", 0, {"", describeDialog(in, in.oneIn(16) ? in.byte() : type)}}}}});
        toolkit.script.clear();
        for (uint32_t keys = in.below(12); keys > 0; --keys)
            toolkit.script.push_back({in.oneIn(3) ? in.byte() : static_cast<uint8_t>('0' + keys)});

        const bool isFaulty = fake::faultStruck();
        const int32_t result = showDialog(in, type);
        REQUIRE(isFaulty || toolkit.failed.empty() || result <= 12);
        // A time-out that could not be set leaves a form running on, as the toolkit notes.
        const std::string endless = "the script is over and the form runs on\n";
        if (const std::size_t at = toolkit.mistakes.find(endless); at != std::string::npos)
            toolkit.mistakes.erase(at, endless.size());
        REQUIRE(toolkit.mistakes.empty());
    }
}
