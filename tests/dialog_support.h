// dialog_support.h: what the tests of the dialogs share: a clean dialog room for every test, and
// descriptions served from a resource module.
#pragma once

#include "tests/fakes/toolkit.h"
#include "tests/support.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace support {

// Compares with a file of tests/golden; with UTI_GOLDEN_UPDATE set it is written anew.
inline void expectGolden(const std::string &name, const std::string &seen) {
    const std::string path = UTI_GOLDEN "/" + name;
    if (std::getenv("UTI_GOLDEN_UPDATE"))
        std::ofstream(path) << seen;
    std::ostringstream expected;
    expected << std::ifstream(path).rdbuf();
    EXPECT_EQ(seen, expected.str());
}

inline int countOf(const std::string &text, const std::string &piece) {
    int count = 0;
    for (std::size_t at = 0; (at = text.find(piece, at) + 1) > 0;)
        ++count;
    return count;
}

// What a dialog must not leave behind.
inline void expectNothingInstalled() {
    EXPECT_FALSE(NeedToBreakFunction || RefreshDialogFunction || KeyPostProcessingFunction ||
                 currentKeyPressedCallback || refLabelData);
    EXPECT_EQ(UserDialogResult, 0);
    EXPECT_EQ(EndDialog, 0);
}

// Starts a log as text on the serial port.
inline void openLog() {
    TraceExSettings settings{};
    settings.output = TRACE_OUTPUT_SERIAL;
    settings.mode = 3;
    settings.text = 1;
    EXPECT_EQ(TraceExOpen(&settings), 0);
}

// A fresh toolkit and fresh records for every test; no block, no wrong handle left at its end.
class Dialogs : public Terminal {
protected:
    Dialogs() {
        openLog();
        TraceExAssert("", 0); // the log keeps a table from its first record on
        forgetDialogs();
        terminal.serial.clear();
        blocks_ = fake::liveBlocks();
        request.resourceId = 1;
        request.module = "m";
    }
    ~Dialogs() override {
        fake::disarm();
        forgetDialogs();
        EXPECT_EQ(toolkit.mistakes, "");
        EXPECT_EQ(fake::liveBlocks(), blocks_);
    }

    // Makes a description string 1 of the module m.
    void serve(const std::string &description) {
        forgetResources();
        terminal.environment["default_lang"] = "en";
        terminal.files["m.res"] = resourceFile(1, {{0, {{"en", 0, {"", description}}}}});
    }

    // A fresh toolkit and library in the middle of a test, with such a description.
    void renew(const std::string &description) {
        EXPECT_EQ(toolkit.mistakes, "");
        fake::reset();
        forgetDialogs();
        serve(description);
    }

    // How often the log holds a text; the log is then empty.
    int reports(const std::string &text) {
        return countOf(std::exchange(terminal.serial, {}), text);
    }

    fake::Toolkit &toolkit = fake::toolkit();
    DialogRequest request{}; // of that string

private:
    int blocks_;
};

} // namespace support
