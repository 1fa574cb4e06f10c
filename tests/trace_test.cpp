// The trace log's core through its public header: outputs, levels, filter, rotation, buffer,
// binary records, and what happens when a call underneath fails.
#include "tests/support.h"

using namespace support;
using fake::Call;
using fake::Persistence;

namespace {

const void *const nowhere = nullptr;

TraceExSettings settings(uint32_t output, int32_t maxSize = 65536) {
    TraceExSettings result{};
    result.output = output;
    result.mode = 3;
    result.maxSize = maxSize;
    if (output == TRACE_OUTPUT_FILE || output == TRACE_OUTPUT_BUFFERED)
        std::strcpy(result.device.baseName, "t");
    return result;
}

int32_t open(const TraceExSettings &wanted) {
    return TraceExOpen(&wanted);
}

// A record without arguments: 24 bytes with a module name of one character.
std::string record(int level, int id, const std::string &module = "M") {
    const auto name = static_cast<char>(module.size());
    return hex("00 00 00") + static_cast<char>(19 + name) + hex("0B 07 EA 0B 10 0C 0B 31 23 02") +
           static_cast<char>(level) + hex("05 00") + static_cast<char>(id) + hex("0D 00 00 00") +
           name + module;
}

using Trace = support::Terminal;

TEST_F(Trace, ClosedLogDropsEverythingAtNoCost) {
    EXPECT_EQ(TraceExAssert("x", 1), UTI_TRACE_NOT_WRITTEN);
    EXPECT_EQ(TraceExError("M", 1, 0), UTI_TRACE_NOT_WRITTEN);
    EXPECT_EQ(TraceExSetMode(1), UTI_TRACE_REFUSED);
    EXPECT_EQ(TraceExGetMode(), 0);
    TraceExFlush();
    TraceExClose();
    EXPECT_EQ(terminal.calls, "");
}

TEST_F(Trace, OpenRefusesWhatItCannotServe) {
    const std::string thirty(30, 'n');
    const struct {
        uint32_t output;
        int32_t maxSize;
        std::string baseName;
        int32_t expected;
    } rows[] = {
        {0, 256, "t", 0},       {0, 255, "t", -3100},
        {0, -1, "t", -3100},    {0, 65536, "", -3100},
        {3, 65536, "", -3100},  {3, 255, "t", -3100},
        {4, 65536, "t", -3100}, {~0u, 65536, "t", -3100},
        {0, 65536, thirty, 0},  {0, 65536, thirty + "n", -3100},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.baseName + " " + std::to_string(row.output));
        TraceExSettings wanted = settings(row.output, row.maxSize);
        std::strcpy(wanted.device.baseName, row.baseName.c_str());
        EXPECT_EQ(open(wanted), row.expected);
        TraceExClose();
    }
    TraceExSettings full = settings(0);
    std::memset(&full.device, 'n', sizeof full.device); // no terminator at all
    EXPECT_EQ(open(full), -3100);

    EXPECT_EQ(open(settings(0)), 0);
    EXPECT_EQ(open(settings(0)), -3100) << "a second open leaves the first alone";
    EXPECT_EQ(TraceExError("M", 7, 0), 0);
}

TEST_F(Trace, EnvironmentChoosesTheOutput) {
    const struct {
        const char *value, *calls;
        int port;
    } rows[] = {
        {"C3", "close port", 3},
        {"C12", "close port", 12},
        {"C9", "close port", 9},
        {"C", "close port", 1},
        {"CU", "close port", 100},
        {"C0", "close port", 1},
        {"P", "", 0},
        {"X", "open app.log 2; close", 0},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.value);
        fake::reset();
        terminal.environment["EXT_DEBUG"] = row.value;
        TraceExSettings ignored = settings(0);
        ignored.mode = 1;
        ASSERT_EQ(open(ignored), 0);
        EXPECT_EQ(TraceExGetMode(), 3);
        TraceExClose();
        EXPECT_EQ(terminal.calls, row.calls);
        EXPECT_EQ(terminal.port.port, row.port);
        if (row.port) {
            EXPECT_EQ(terminal.port.speed, 9u);
            EXPECT_EQ(terminal.port.format, 4u);
        }
    }
    fake::reset();
    ASSERT_EQ(TraceExOpen(nullptr), 0);
    EXPECT_EQ(TraceExGetMode(), 1) << "the defaults without settings";
    EXPECT_EQ(terminal.calls, "open app.log 2");
}

TEST_F(Trace, RecordIsTheBytesOfItsFormat) {
    const TerminalDate date{2026, 1, 2, {}};
    const TerminalTime time{3, 4, 5};
    ASSERT_EQ(open(settings(0)), 0);
    EXPECT_EQ(TraceExError("M", 0x10007, 0), 0) << "of the id the low 16 bits count";
    EXPECT_EQ(terminal.files["t.log"], record(1, 7));
    ASSERT_EQ(TraceExDebug("M", 7, Char, 'A', Byte, 0x1FF, Bool, 2, Short, -2, Word, 65535, Long,
                           -3, DWord, 0xFFFFFFFEu, Int64, UTI_TRACE_HALVES(-4), UInt64,
                           UTI_TRACE_HALVES(0x0102030405060708), Double, 0x3FF80000u, 0u, Date,
                           &date, Time, &time, String, "hi", String, nowhere, ByteArray, "\1\2\3",
                           3, ByteArray, nowhere, Long, 5, 15),
              0);
    const std::string arguments =
        hex("01 41 02 FF 03 02 04 FFFE 05 FFFF 06 FFFFFFFD 07 FFFFFFFE 08 FFFFFFFFFFFFFFFC"
            "09 0102030405060708 0A 3FF8000000000000 0B 07EA0102 0C 030405 0D 00000002 6869"
            "0D 00000000 0E 00000003 010203 0E 00000000 06 00000005");
    const std::string &bytes = terminal.files["t.log"];
    EXPECT_EQ(toHex(bytes.substr(48)), toHex(arguments));
    EXPECT_EQ(static_cast<unsigned char>(bytes[27]), 20 + arguments.size());
}

TEST_F(Trace, ModeAndFilterSelectRecords) {
    const struct {
        uint32_t mode;
        const char *modules, *module;
        const char *levels; // of the records that are written
    } rows[] = {
        {1, "", "M", "1"},
        {2, "", "M", "12"},
        {3, "", "M", "123"},
        {0, "", "M", "1"},
        {9, "", "M", "12"},
        {3, "GUI,", "GUI", "123"},
        {3, "GUI,", "UI", "123"},
        {3, "GUI,", "ASSERT", ""},
        {3, "GUI,", "", ""},
        {3, "GUI", "GUI", ""},
        {3, "a,GUI,", "a", "123"},
        {3, "", "", "123"},
        {3, "abcdefghijklmnopqrstuvwxyzABCDEF,", "abcdefghijklmnopqrstuvwxyzABCDEF", "123"},
        {3, "abcdefghijklmnopqrstuvwxyzABCDEFG,", "abcdefghijklmnopqrstuvwxyzABCDEFG", ""},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(std::string(row.modules) + " / " + row.module);
        fake::reset();
        TraceExSettings wanted = settings(0);
        wanted.mode = row.mode;
        std::strcpy(wanted.modules, row.modules);
        ASSERT_EQ(open(wanted), 0);
        std::string written;
        if (TraceExError(row.module, 1, 0) == 0)
            written += '1';
        if (TraceExSupport(row.module, 1, 0) == 0)
            written += '2';
        if (TraceExDebug(row.module, 1, 0) == 0)
            written += '3';
        EXPECT_EQ(written, row.levels);
        TraceExClose();
    }
    ASSERT_EQ(open(settings(0)), 0);
    for (const int mode : {0, 4, -1})
        EXPECT_EQ(TraceExSetMode(mode), -3100);
    EXPECT_EQ(TraceExSetMode(1), 0);
    EXPECT_EQ(TraceExDebug("M", 1, 0), -3102);
}

TEST_F(Trace, FilesRotateAndWrapAround) {
    ASSERT_EQ(open(settings(0, 352)), 0); // 44 bytes a file: 24 and the 20 behind a length
    for (int id = 1; id <= 17; ++id)
        ASSERT_EQ(TraceExError("M", static_cast<uint32_t>(id), 0), 0);
    EXPECT_EQ(terminal.files.size(), 8u);
    EXPECT_EQ(terminal.files["t.log"], record(1, 17)) << "file 0 was started anew";
    for (int k = 1; k <= 7; ++k)
        EXPECT_EQ(terminal.files["t" + std::to_string(k) + ".log"],
                  record(1, 2 * k + 1) + record(1, 2 * k + 2));
}

TEST_F(Trace, OpenContinuesTheNewestFile) {
    const auto stamp = [](int16_t year, uint8_t hour, uint8_t minute = 0) {
        return fake::Stamp{{year, 1, 1, {}}, {hour, minute, 0}};
    };
    const struct {
        const char *name;
        std::map<std::string, fake::Stamp> times; // of files that hold one record of 2026-11-16
        std::string expected;
    } rows[] = {
        {"later file", {{"t.log", stamp(2026, 1)}, {"t1.log", stamp(2026, 2)}}, "t1.log"},
        {"equal stamps", {{"t.log", stamp(2026, 1)}, {"t1.log", stamp(2026, 1)}}, "t.log"},
        {"hours", {{"t.log", stamp(2026, 2)}, {"t1.log", stamp(2026, 1, 59)}}, "t.log"},
        {"the year first", {{"t.log", stamp(2027, 1)}, {"t1.log", stamp(2026, 9)}}, "t.log"},
        {"a gap ends the set", {{"t.log", stamp(2025, 1)}, {"t2.log", stamp(2027, 1)}}, "t.log"},
        {"no time: the first record", {{"t.log", {}}, {"t1.log", stamp(2025, 1)}}, "t.log"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        fake::reset();
        for (const auto &[name, time] : row.times) {
            terminal.files[name] = record(1, 1);
            if (time.date.year)
                terminal.fileTimes[name] = time;
        }
        ASSERT_EQ(open(settings(0)), 0);
        ASSERT_EQ(TraceExError("M", 2, 0), 0);
        EXPECT_EQ(terminal.files[row.expected], record(1, 1) + record(1, 2));
        TraceExClose();
    }
}

TEST_F(Trace, FileThatCannotBeAppendedToIsLeftAlone) {
    for (const Call call : {Call::length, Call::seek}) {
        fake::reset();
        terminal.files["t.log"] = record(1, 1);
        terminal.fileTimes["t.log"] = terminal.now;
        fake::failCall(call, 1, Persistence::once);
        ASSERT_EQ(open(settings(0)), 0);
        ASSERT_EQ(TraceExError("M", 2, 0), 0);
        EXPECT_EQ(terminal.files["t.log"], record(1, 1));
        EXPECT_EQ(terminal.files["t1.log"], record(1, 2));
        TraceExClose();
    }
    fake::reset();
    terminal.files["t.log"] = "x"; // without any stamp it is still the newest
    ASSERT_EQ(open(settings(0)), 0);
    ASSERT_EQ(TraceExError("M", 2, 0), 0);
    EXPECT_EQ(terminal.files["t.log"], "x" + record(1, 2));
}

TEST_F(Trace, RecordTooLargeForItsFile) {
    const std::string big(200, 'x');
    ASSERT_EQ(open(settings(0, 1200)), 0); // 150 bytes a file
    EXPECT_EQ(TraceExError("M", 7, String, big.c_str(), 0), -3102);
    EXPECT_NE(terminal.files["t.log"].find("BLOCK SIZE=205 FROM 'M' ID=7 TOO LARGE"),
              std::string::npos);
    EXPECT_EQ(TraceExError("M", 7, String, big.c_str() + 75, 0), -3102) << "N is the limit";
    EXPECT_EQ(TraceExError("M", 7, String, big.c_str() + 76, 0), 0);
    EXPECT_EQ(TraceExError("L", 9, ByteArray, big.data(), 0x80000000u, 0), -3102);
    EXPECT_NE(terminal.files.rbegin()->second.find(" FROM 'L' ID=9 TOO LARGE"), std::string::npos);
    TraceExClose();

    fake::reset();
    ASSERT_EQ(open(settings(0, 256)), 0); // not even the report fits
    EXPECT_EQ(TraceExError("M", 7, String, big.c_str(), 0), -3102);
    EXPECT_EQ(terminal.files["t.log"], "");
    TraceExClose();

    fake::reset();
    ASSERT_EQ(open(settings(3, 1200)), 0);
    EXPECT_EQ(TraceExError("M", 1, 0), 0);
    EXPECT_EQ(TraceExError("M", 7, String, big.c_str(), 0), 0) << "a file of its own";
    EXPECT_EQ(TraceExError("M", 9, ByteArray, big.data(), 0x80000000u, 0), -3102);
    TraceExClose();
    EXPECT_EQ(terminal.files["t.log"], record(1, 1));
    EXPECT_EQ(terminal.files["t1.log"].size(), 24 + 5 + big.size());
}

TEST_F(Trace, BufferIsFlushedWhenItWouldOverflow) {
    ASSERT_EQ(open(settings(3, 1600)), 0); // files and buffer of 200 bytes
    for (int i = 0; i < 8; ++i)
        ASSERT_EQ(TraceExError("M", 1, 0), 0);
    EXPECT_EQ(terminal.calls, "open t.log 2") << "192 bytes wait";
    TraceExFlush();
    EXPECT_EQ(terminal.calls, "open t.log 2; write 192");
    ASSERT_EQ(TraceExError("M", 1, 0), 0);
    EXPECT_EQ(terminal.calls, "open t.log 2; write 192; close; delete t1.log; open t1.log 2");
    TraceExClose();
    EXPECT_EQ(terminal.files["t1.log"], record(1, 1));

    fake::reset();
    ASSERT_EQ(open(settings(3, 4096)), 0); // 512 bytes
    const std::string piece(462, 'x'), exact(463, 'x'), whole(512, 'x');
    ASSERT_EQ(TraceExError("M", 1, String, piece.c_str(), 0), 0); // 29 + 462 stay: 491 of 512
    EXPECT_EQ(terminal.calls, "open t.log 2");
    TraceExClose();
    ASSERT_EQ(open(settings(3, 4096)), 0);
    terminal.calls.clear();
    ASSERT_EQ(TraceExSupport("M", 1, ByteArray, exact.data(), 463, Char, 'x', 0), 0);
    EXPECT_EQ(terminal.calls, "close; delete t1.log; open t1.log 2");
    ASSERT_EQ(TraceExSupport("M", 1, String, whole.c_str(), 0), 0);
    EXPECT_EQ(terminal.calls, "close; delete t1.log; open t1.log 2; write 494; close; "
                              "delete t2.log; open t2.log 2; write 29; write 512")
        << "a piece as long as the buffer goes straight to the file";
    TraceExClose();

    fake::reset();
    ASSERT_EQ(open(settings(3)), 0); // 8192 bytes
    const std::string filling(8192 - 29, 'x');
    ASSERT_EQ(TraceExError("M", 1, String, filling.c_str(), 0), 0);
    EXPECT_EQ(terminal.calls, "open t.log 2; write 29") << "the buffer is never quite full";
}

TEST_F(Trace, ShortFlushIsReportedBehindTheRecordThatMetIt) {
    ASSERT_EQ(open(settings(3, 512)), 0); // files and buffer of 64 bytes
    ASSERT_EQ(TraceExError("M", 1, 0), 0);
    ASSERT_EQ(TraceExError("M", 2, 0), 0);
    fake::failCall(Call::write, 1, Persistence::once);
    ASSERT_EQ(TraceExError("M", 3, Long, 5, 0), 0);
    TraceExClose();
    const std::string third = hex("00000019") + record(1, 3).substr(4) + hex("06 00000005");
    EXPECT_EQ(terminal.files["t1.log"].substr(0, 29), third) << "the record is whole";
    EXPECT_EQ(terminal.files["t2.log"].substr(18, 11), hex("0D00000006") + "ASSERT");
}

TEST_F(Trace, FailedRotationLosesTheRecordAndRotatesOn) {
    ASSERT_EQ(open(settings(0, 256)), 0);
    ASSERT_EQ(TraceExError("M", 1, 0), 0);
    fake::failCall(Call::open, 1, Persistence::once);
    EXPECT_EQ(TraceExError("M", 2, 0), -7);
    EXPECT_EQ(TraceExError("M", 3, 0), 0);
    EXPECT_EQ(terminal.files["t2.log"], record(1, 3));
    EXPECT_EQ(terminal.files.count("t1.log"), 0u);
}

TEST_F(Trace, SerialAndPrinterFailures) {
    ASSERT_EQ(open(settings(1)), 0);
    EXPECT_EQ(TraceExError("M", 7, 0), 0);
    EXPECT_EQ(terminal.serial, record(1, 7));
    EXPECT_EQ(TraceExError("M", 7, ByteArray, "", 0x80000000u, 0), -3102) << "too large";
    EXPECT_EQ(terminal.serial, record(1, 7));
    TraceExClose();

    fake::failCall(Call::comOpen, 1, Persistence::once);
    EXPECT_EQ(open(settings(1)), -5);
    fake::failCall(Call::printerOpen, 1, Persistence::once);
    EXPECT_EQ(open(settings(2)), 4);
    fake::failCall(Call::open, 1, Persistence::once);
    EXPECT_EQ(open(settings(0)), -7);
    fake::failCall(Call::malloc, 1, Persistence::once);
    EXPECT_EQ(open(settings(0)), -3100);
    fake::failCall(Call::malloc, 2, Persistence::once);
    EXPECT_EQ(open(settings(3)), 0) << "without a buffer the log goes on as output 0";
    EXPECT_NE(terminal.files["t.log"].find("ASSERT"), std::string::npos);
}

TEST_F(Trace, ArgumentTableThatCannotGrowLosesTheRecord) {
    // More arguments than any test before has left room for.
    ASSERT_EQ(open(settings(0)), 0);
    const auto write = [] {
        return TraceExError("M", 1, Long, 1, Long, 2, Long, 3, Long, 4, Long, 5, Long, 6, Long, 7,
                            Long, 8, Long, 9, Long, 10, Long, 11, Long, 12, Long, 13, Long, 14,
                            Long, 15, Long, 16, Long, 17, Long, 18, Long, 19, Long, 20, Long, 21,
                            Long, 22, Long, 23, Long, 24, Long, 25, Long, 26, Long, 27, Long, 28,
                            0);
    };
    for (const int nth : {1, 2}) {
        fake::failCall(Call::realloc, nth, Persistence::once);
        EXPECT_EQ(write(), -3102);
    }
    EXPECT_EQ(terminal.files["t.log"].substr(18, 30),
              hex("0D00000006") + "ASSERT" + hex("0D0000000E") + "Src/utiTraceEx");
    EXPECT_EQ(write(), 0);
}

} // namespace
