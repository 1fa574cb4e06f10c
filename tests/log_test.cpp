// Reading the trace log back, and the monitoring log.
#include "tests/support.h"

using namespace support;
using fake::Call;
using fake::Persistence;

namespace {

class Retrieval : public support::Terminal {
protected:
    int32_t open(uint32_t output = TRACE_OUTPUT_FILE, int32_t maxSize = 65536) {
        TraceExSettings wanted{};
        wanted.output = output;
        wanted.mode = 3;
        wanted.maxSize = maxSize;
        std::strcpy(wanted.device.baseName, "t");
        return TraceExOpen(&wanted);
    }

    // Makes file `index` of the set, last changed on the given day.
    void file(int index, const std::string &content, uint8_t day) {
        const std::string name = index ? "t" + std::to_string(index) + ".log" : "t.log";
        terminal.files[name] = content;
        terminal.fileTimes[name] = {{2026, 1, day, {}}, {}};
    }

    // What the log gives a buffer of `size`; guards the byte behind it.
    static std::string get(int32_t size) {
        std::string out(static_cast<std::size_t>(size) + 1, '#');
        const int32_t count = TraceExGetLog(out.data(), size);
        EXPECT_LE(count, size);
        EXPECT_EQ(out[static_cast<std::size_t>(size)], '#');
        return out.substr(0, static_cast<std::size_t>(count));
    }
};

TEST_F(Retrieval, OldestFirstAcrossTheWrap) {
    const struct {
        const char *name;
        std::vector<std::pair<std::string, int>> files; // content and day, by index
        std::string expected;
    } rows[] = {
        {"one file", {{"abc", 1}}, "abc"},
        {"file 1 oldest", {{"C", 3}, {"A", 1}, {"B", 2}}, "ABC"},
        {"equal stamps", {{"A", 1}, {"B", 1}}, "AB"},
        {"an empty file", {{"C", 3}, {"", 1}, {"B", 2}}, "BC"},
        {"all eight",
         {{"F", 6}, {"G", 7}, {"H", 8}, {"A", 1}, {"B", 2}, {"C", 3}, {"D", 4}, {"E", 5}},
         "ABCDEFGH"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        fake::reset();
        int index = 0;
        for (const auto &[content, day] : row.files)
            file(index++, content, static_cast<uint8_t>(day));
        ASSERT_EQ(open(), 0);
        EXPECT_EQ(get(100), row.expected);
        EXPECT_EQ(TraceExError("M", 1, 0), 0) << "the log goes on";
        EXPECT_EQ(get(100).size(), row.expected.size() + 24);
        TraceExClose();
    }
}

TEST_F(Retrieval, MessagesAreCutToTheBuffer) {
    file(0, std::string(100, 'x'), 1);
    ASSERT_EQ(open(), 0);
    EXPECT_EQ(get(100), std::string(100, 'x'));
    EXPECT_EQ(get(99), "SIZE 99 TOO SMALL\r\nt.log(100) [-1]\r\n");
    for (int32_t size = 1; size < 99; ++size) {
        const std::string whole = "SIZE " + std::to_string(size) + " TOO SMALL\r\nt.log(100) [" +
                                  std::to_string(size - 100) + "]\r\n";
        EXPECT_EQ(get(size), whole.substr(0, static_cast<std::size_t>(size)));
    }
    char out;
    EXPECT_EQ(TraceExGetLog(nullptr, 100), 0);
    EXPECT_EQ(TraceExGetLog(&out, 0), 0);
    EXPECT_EQ(TraceExGetLog(&out, -5), 0);
    terminal.files.clear();
    EXPECT_EQ(get(100), "LOG FILE NOT FOUND");
    EXPECT_EQ(get(8), "LOG FILE");
    TraceExClose();
    EXPECT_EQ(get(100), "") << "closed";
    ASSERT_EQ(open(TRACE_OUTPUT_BUFFERED), 0);
    EXPECT_EQ(get(100), "") << "another output";
}

TEST_F(Retrieval, FilesThatCannotBeOpenedOrRead) {
    file(0, std::string(30, 'a'), 1);
    file(1, std::string(76, 'b'), 2);
    ASSERT_EQ(open(), 0);
    fake::failCall(Call::open, 1, Persistence::once);
    EXPECT_EQ(get(100), "SIZE 100 TOO SMALL\r\nt1.log(76) [-1]\r\n")
        << "the message takes room as well";
    fake::failCall(Call::open, 1, Persistence::once);
    EXPECT_EQ(get(101), "LOG FILE 't.log' NOT OPEN" + std::string(76, 'b'));
    fake::failCall(Call::open, 2, Persistence::once);
    EXPECT_EQ(get(200), "LOG FILE 't1.log' NOT OPEN");
    fake::failCall(Call::read, 2, Persistence::once);
    EXPECT_EQ(get(200), std::string(30, 'a')) << "what was read before is kept";
    fake::failCall(Call::open, 3, Persistence::once); // the reopening of the current file
    EXPECT_EQ(get(200).size(), 106u);
    EXPECT_EQ(TraceExError("M", 1, 0), -3102);
    file(2, std::string(50, 'c'), 3);
    fake::failCall(Call::open, 2, Persistence::once);
    EXPECT_EQ(get(79), "SIZE 79 TOO SMALL\r\nt.log(30) [49]\r\nt2.log(50) [-1]\r\n")
        << "what a message replaced has taken room as well";
}

class Monitoring : public support::Terminal {
protected:
    ~Monitoring() override { MonitorExClose(); }

    static int32_t open(uint32_t mode, const std::string &baseName = "m", int32_t maxSize = 0) {
        MonitorExSettings wanted{};
        wanted.mode = mode;
        wanted.maxSize = maxSize;
        baseName.copy(wanted.baseName, sizeof wanted.baseName);
        return MonitorExOpen(&wanted);
    }
};

TEST_F(Monitoring, RecordIsTheBytesOfItsFormat) {
    ASSERT_EQ(open(MONITOR_MODE_DIRECT), 0);
    EXPECT_EQ(MonitorExWrite(7, Long, 5, 0), 0);
    const std::string start = hex("0B07EA0B10 0C0B3123 0202 050700 0D07000000") + "Monitor";
    EXPECT_EQ(toHex(terminal.files["m.mlog"]), toHex(hex("1F000000") + start + hex("06 05000000")));

    terminal.files["m.mlog"].clear();
    const TerminalDate date{2026, 1, 2, {}};
    const TraceWord list[] = {Int64,      0x01020304,
                              0x05060708, Short,
                              0xFFFE,     Double,
                              0x3FF80000, 0,
                              Date,       reinterpret_cast<TraceWord>(&date),
                              String,     reinterpret_cast<TraceWord>("hi"),
                              ByteArray,  0,
                              Byte,       9,
                              0};
    MonitorExClose();
    ASSERT_EQ(open(MONITOR_MODE_DIRECT), 0);
    EXPECT_EQ(traceMonitorWrite(0x0102, 3, "X", list), 0);
    EXPECT_EQ(toHex(terminal.files["m.mlog"].substr(4)),
              toHex(hex("0B07EA0B10 0C0B3123 0203 050201 0D01000000 58"
                        "08 04030201 08070605 04 FEFF 0A 0000F83F 00000000 0B 07EA0102"
                        "0D 02000000 6869 0E 00000000 02 09")));
    EXPECT_EQ(traceMonitorWrite(1, 1, nullptr, nullptr), 0);
}

TEST_F(Monitoring, FileIsChosenByWhatExists) {
    const struct {
        std::vector<std::string> present;
        std::string expected;
    } rows[] = {
        {{}, "m.mlog"},
        {{"m.mlog"}, "m.mlog"},
        {{"m.mlog", "m_1.mlog"}, "m_2.mlog"},
        {{"m.mlog", "m_1.mlog", "m_2.mlog"}, "m_3.mlog"},
        {{"m_1.mlog"}, "m.mlog"},
    };
    for (const auto &row : rows) {
        fake::reset();
        for (const std::string &name : row.present)
            terminal.files[name] = "old";
        ASSERT_EQ(open(MONITOR_MODE_BUFFERED), 0);
        EXPECT_EQ(MonitorExWrite(1, 0), 0);
        MonitorExClose();
        const bool appended = std::count(row.present.begin(), row.present.end(), row.expected) > 0;
        EXPECT_EQ(terminal.files[row.expected].size(), 30u + (appended ? 3 : 0)) << row.expected;
    }
}

TEST_F(Monitoring, OpenRefusals) {
    const std::string longest(28, 'n');
    EXPECT_EQ(MonitorExOpen(nullptr), -3105);
    EXPECT_EQ(open(1, ""), -3105);
    EXPECT_EQ(open(1, std::string(33, 'n')), -3105);
    EXPECT_EQ(open(1, longest + "n"), -3105);
    EXPECT_EQ(open(1, longest), 0);
    EXPECT_EQ(open(1), -3105) << "open already";
    MonitorExClose();
    for (int k = 0; k < 10; ++k)
        terminal.files[k ? longest + "_" + std::to_string(k) + ".mlog" : longest + ".mlog"] = "";
    EXPECT_EQ(open(1, longest), -3105) << "the tenth name does not fit";
    fake::failCall(Call::open, 1, Persistence::once);
    EXPECT_EQ(open(1), -7);
    fake::failCall(Call::seek, 1, Persistence::once);
    EXPECT_EQ(open(1), -3105) << "nothing is overwritten";
    EXPECT_EQ(MonitorExWrite(1, 0), -3106);
    EXPECT_EQ(traceMonitorWrite(1, 1, "M", nullptr), -3106);
    MonitorExFlush();
}

TEST_F(Monitoring, LimitIsReportedAndWritingGoesOn) {
    const std::string big(30000, 'x');
    ASSERT_EQ(open(MONITOR_MODE_DIRECT, "m", 1000), 0);
    EXPECT_EQ(MonitorExWrite(1, String, big.c_str(), 0), 0) << "the limit is 65536 at the least";
    const std::size_t size = terminal.files["m.mlog"].size();
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(MonitorExWrite(1, String, big.c_str(), 0), -3108);
    EXPECT_EQ(MonitorExWrite(1, 0), -3108);
    EXPECT_EQ(terminal.files["m.mlog"].size(), size * 3 + 30);

    for (const auto &[length, expected] : {std::pair(32735, 0), {32736, -3108}}) {
        MonitorExClose();
        fake::reset();
        ASSERT_EQ(open(MONITOR_MODE_DIRECT), 0);
        const std::string text(static_cast<std::size_t>(length), 'x');
        EXPECT_EQ(MonitorExWrite(1, String, text.c_str(), 0), expected) << "4 + 2 * N bytes";
    }
}

} // namespace
