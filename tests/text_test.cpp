// Trace records as lines of text: wording from the resources, every argument type, the printer.
#include "tests/support.h"

using namespace support;
using fake::Call;
using fake::Persistence;

namespace {

constexpr const char *header = "\r\n26-11-16 11:49:35 [m] ";

class Text : public support::Terminal {
protected:
    // Makes `format` the wording of message 1 of the module m.
    void word(const std::string &format) {
        Resource_Close("m");
        terminal.files["m.res"] = resourceFile(1, {{0, {{"en", 0, {"", format}}}}});
        terminal.environment["default_lang"] = "en";
    }

    static int32_t open(uint32_t output, int32_t maxSize = 65536) {
        TraceExSettings wanted{};
        wanted.output = output;
        wanted.mode = 3;
        wanted.text = 1;
        wanted.maxSize = maxSize;
        if (output == TRACE_OUTPUT_FILE || output == TRACE_OUTPUT_BUFFERED)
            std::strcpy(wanted.device.baseName, "t");
        return TraceExOpen(&wanted);
    }
};

TEST_F(Text, AssertionIsBuiltIn) {
    ASSERT_EQ(open(TRACE_OUTPUT_SERIAL), 0);
    EXPECT_EQ(TraceExAssert("P", 52), 0);
    EXPECT_EQ(terminal.serial, "\r\n26-11-16 11:49:35 [ASSERT] ASSERT File: P  Line: 52");
    EXPECT_EQ(terminal.calls, "") << "the resources were not asked";
    terminal.now.date.day = 17; // and nothing else
    EXPECT_EQ(TraceExError(nullptr, 1, 0), 0);
    EXPECT_TRUE(terminal.serial.ends_with("\r\n26-11-17 11:49:35 [] ")) << terminal.serial;
}

TEST_F(Text, MissingWordingGivesTheFailureAndTheHeader) {
    for (const uint32_t output : {TRACE_OUTPUT_SERIAL, TRACE_OUTPUT_PRINTER}) {
        fake::reset();
        ASSERT_EQ(open(output), 0);
        ASSERT_EQ(Resource_Initialize("x"), -3052); // the state's own first reports go ahead
        terminal.serial.clear();
        terminal.printed.clear();
        EXPECT_EQ(TraceExError("m", 1, Long, 5, 0), 0);
        const std::string line = terminal.serial + terminal.printedText();
        const std::size_t last = line.rfind("\r\n");
        EXPECT_EQ(line.substr(last), header) << "the header alone comes last";
        EXPECT_NE(line.find("[ASSERT] ASSERT File: Src/utiResource  Line: "), std::string::npos);
        EXPECT_LT(line.find("ASSERT"), last);
        TraceExClose();
        forgetResources();
    }
}

TEST_F(Text, PrinterGetsPieces) {
    word("{0} and {1}{2}.");
    ASSERT_EQ(open(TRACE_OUTPUT_PRINTER), 0);
    const std::string bytes(34, '\xAB');
    ASSERT_EQ(TraceExError("m", 1, String, "x", ByteArray, bytes.data(), 34, Long, 5, 0), 0);
    const auto repeated = [](int count) {
        std::string text;
        for (int i = 0; i < count; ++i)
            text += "0xAB ";
        return text;
    };
    const std::vector<std::string> expected = {
        header, "", "x", " and ", repeated(17), repeated(16), repeated(1), "", "5", "."};
    EXPECT_EQ(terminal.printed, expected);

    for (int nth = 1; nth <= 10; ++nth) {
        terminal.printed.clear();
        fake::failCall(Call::print, nth, Persistence::once);
        EXPECT_EQ(TraceExError("m", 1, String, "x", ByteArray, bytes.data(), 34, Long, 5, 0),
                  -3102);
        EXPECT_EQ(terminal.printed.size(), static_cast<std::size_t>(nth - 1));
    }
    const std::string wide(2500, 'w');
    word(wide + "{9}" + wide);
    terminal.printed.clear();
    ASSERT_EQ(TraceExError("m", 1, 0), 0);
    EXPECT_EQ(terminal.printedText(), header + wide + wide) << "longer than one piece";
    EXPECT_EQ(terminal.printed.back(), wide) << "the end is one piece";
}

TEST_F(Text, LinesRotateByTheirBinarySize) {
    word("a line of text with {0}");
    ASSERT_EQ(open(TRACE_OUTPUT_FILE, 800), 0); // 100 bytes a file
    for (int i = 0; i < 3; ++i)
        ASSERT_EQ(TraceExError("m", 1, Long, 5, 0), 0);
    const std::string line = header + "a line of text with 5"s;
    EXPECT_EQ(terminal.files["t.log"], line + line) << "47 and 25 bytes fit into 100";
    EXPECT_EQ(terminal.files["t1.log"], line);
}

TEST_F(Text, ReportInsideARecordLeavesItsArguments) {
    // The wording is found only after a failed load has been reported inside the record.
    word("{0} {1} {2} {3} {4} {5} {6}");
    terminal.environment["EXTRES"] = "1";
    ASSERT_EQ(Resource_Initialize("m"), 0);
    ASSERT_EQ(open(TRACE_OUTPUT_FILE), 0);
    ASSERT_EQ(TraceExError("m", 1, Long, 1, Long, 2, Long, 3, Long, 4, Long, 5, Long, 6, String,
                           "seven", 0),
              0);
    const std::string &log = terminal.files["t.log"];
    EXPECT_NE(log.find("[ASSERT]"), std::string::npos);
    EXPECT_NE(log.find(header + "1 2 3 4 5 6 seven"s), std::string::npos) << log;
    EXPECT_STREQ(CurrentModule->smallStrings[0].text, "") << "the wording was released";
}

} // namespace
