// log_tool_test.cpp: `uti log` on logs that the library writes here, whole and damaged.
#include "common/code_page.h"
#include "tests/command.h"
#include "tests/support.h"
#include "tools/resource_model.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

#include <unistd.h>

using namespace uti;
using namespace uti::tool;
using namespace support;
namespace fs = std::filesystem;

namespace {

uint16_t second; // of the library's clock since 11:49, which goes on by `pace` with each record
uint8_t pace;

std::string readAll(const fs::path &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void write(const fs::path &path, std::string_view bytes, std::ios::openmode mode = {}) {
    std::ofstream(path, std::ios::binary | mode) << bytes;
}

} // namespace

void GetDateTime(TerminalDate *date, TerminalTime *time) {
    *date = {2026, 11, 16, {}};
    *time = {11, static_cast<uint8_t>(49 + second / 60), static_cast<uint8_t>(second % 60)};
    second = static_cast<uint16_t>(second + pace);
}

namespace {

// In a folder of its own, with the wording of the module m.
class LogToolTest : public testing::Test {
protected:
    LogToolTest() {
        second = 35;
        pace = 0;
        setenv("default_lang", "ru", 1);
        fs::create_directories(folder);
        fs::current_path(folder);
        const char *every =
            "\xC2\xF1\xB8: {0} {1} {2} {3} {4} {5} {6} {7} {8} {9} {10} {11} {12}{13} {14}";
        ResourceFile file;
        const auto add = [&](uint8_t section, const char *language, Strings strings) {
            LanguageTable &table = file.sections[section].emplace_back();
            table.language.code = language;
            table.strings = std::move(strings);
        };
        add(0, "en", {{2, "only {1}"}, {3, "rest"}});
        add(0, "ru", {{1, every}, {2, "\xCD\xE5\xF2{5}{0} a{b"}});
        add(3, "en", {{7, "third"}});
        write("m.res", writeResourceFile(file));
    }
    ~LogToolTest() override {
        TraceExClose();
        forgetResources();
        fs::current_path("/");
        fs::remove_all(folder);
    }

    static void open(const char *baseName, uint8_t text, int32_t maxSize = 65536) {
        TraceExSettings wanted{};
        wanted.mode = 3;
        wanted.text = text;
        wanted.maxSize = maxSize;
        std::strcpy(wanted.device.baseName, baseName);
        ASSERT_EQ(TraceExOpen(&wanted), 0);
    }

    int run(const std::string &arguments) {
        Command command(UTI_TOOL " log " + arguments);
        const int status = command.wait();
        out = command.out();
        err = command.err();
        return status;
    }

    // The message ids of the lines without wording.
    std::string ids() const {
        std::string found;
        for (std::size_t at = 0; (at = out.find("] message ", at)) != out.npos; ++at)
            found += concat(std::stoi(out.substr(at + 10)), ' ');
        return found;
    }

    const fs::path folder = fs::temp_directory_path() / concat("log_tool_test.", getpid());
    std::string out, err;
};

// Arguments of every type, with a wording and without, and a wording for fewer arguments.
template <class Write>
void writeEveryType(Write record) {
    static const TerminalDate date{2026, 1, 2, {}};
    static const TerminalTime time{3, 4, 5};
    const void *nowhere = nullptr;
    for (const uint32_t id : {1u, 0x1009u})
        record(id, Char, 'A', Byte, 0x1FF, Bool, 2, Short, -2, Word, 65535, Long, -3, DWord, -2,
               Int64, UTI_TRACE_HALVES(-4), UInt64, UTI_TRACE_HALVES(0xFEDCBA9876543210u), Double,
               0x3FF80000u, 1u, Date, &date, Time, &time, String, "\xC4\xE0\x98\n\"", String,
               nowhere, ByteArray, "\1\xAB", 2, 0);
    record(2u, String, "x", Long, 1, 0);
}

constexpr const char *everyType =
    "] message 4105 (0x1009): Char 'A', Byte 255, Bool true, Short -2, Word -1, Long -3, DWord -2, "
    "Int64 -4, UInt64 18364758544493064720, Double 1.500000, Date 26-01-02, Time 03:04:05, String "
    "\"Да\\x98\\n\"\", String \"\", ByteArray 01 AB\n";

TEST_F(LogToolTest, PrintsTheLinesOfTextRecords) {
    for (const uint8_t text : {uint8_t{1}, uint8_t{0}}) {
        open(text ? "text" : "t", text);
        writeEveryType([](auto... words) { EXPECT_EQ(TraceExDebug("m", words...), 0); });
        TraceExSupport("m", 2, Long, 5, 0);
        TraceExAssert("P", 52);
        TraceExError("m", 0x3007, 0);
        TraceExClose();
    }
    std::string text = readAll("text.log");
    for (std::size_t at = 0; (at = text.find("\x98\n")) != text.npos;)
        text.replace(at, 2, "\\x98\\n");
    const auto line = [&](int number, const char *level) {
        std::size_t at = 0;
        for (int n = 0; n < number; ++n)
            at = text.find("\r\n", at) + 2;
        static const auto codePage = CodePage::open(defaultCodePage);
        const std::string bytes = text.substr(at, text.find("\r\n", at) - at);
        std::string shown = level + std::get<0>(codePage).decode(bytes).value();
        // What a text record drops of a wording stays: {5}, and {b behind the text.
        if (const std::size_t word = shown.find("Нет"); word != shown.npos)
            shown.insert(word + std::strlen("Нет"), "{5}").append("{b");
        return shown;
    };
    ASSERT_EQ(run("t --module m --module ASSERT --lang ru"), 0) << err;
    // The text log has a report of the missing wording in line 2 and nothing else in line 3.
    EXPECT_EQ(out, concat(line(1, "DEBUG   20"), '\n', line(3, "DEBUG   20").substr(0, 30),
                          everyType, line(4, "DEBUG   20"), " {1: Long 1}\n", line(5, "SUPPORT 20"),
                          '\n', line(6, "ERROR   20"), '\n', line(7, "ERROR   20"), '\n'));
    EXPECT_TRUE(out.ends_with("[m] third\n")) << "the first language of section 3";
    EXPECT_NE(out.find("11:49:35 [m] Всё: 'A' 255 true -2 -1 -3 -2 -4 1836"), out.npos) << out;
}

TEST_F(LogToolTest, ReadsMonitoringLogs) {
    const MonitorExSettings wanted{.mode = 0, .baseName = "events", .maxSize = 0};
    const TraceWord list[] = {Long, 70000, 0};
    ASSERT_EQ(MonitorExOpen(&wanted), 0);
    writeEveryType([](auto... words) { EXPECT_EQ(MonitorExWrite(words...), 0); });
    ASSERT_EQ(traceMonitorWrite(2, 9, "m", list), 0);
    MonitorExClose();
    fs::copy_file("events.mlog", "copy.log");
    for (const char *arguments :
         {"events.mlog", "events", "--monitor copy.log", "--monitor <copy.log"}) {
        SCOPED_TRACE(arguments);
        EXPECT_EQ(run(arguments), 0) << err;
        EXPECT_NE(out.find(std::string("SUPPORT 2026-11-16 11:49:35 [Monitor") + everyType),
                  out.npos)
            << out;
        EXPECT_TRUE(out.ends_with("LEVEL 9 2026-11-16 11:49:35 [m] Нет{5}70000 a{b\n")) << out;
    }
    EXPECT_EQ(run("copy.log"), 1) << "a trace log by its extension";
    EXPECT_NE(err.find("they look like a monitoring log, which --monitor reads\n"), err.npos)
        << err;
}

TEST_F(LogToolTest, WritesJson) {
    open("t", 0);
    writeEveryType([](auto... words) { TraceExError("m", words...); });
    ASSERT_EQ(run("--json --lang ru t.log"), 0) << err;
    const std::string expected =
        R"({"time":"2026-11-16T11:49:35","level":"error","module":"m","id":4105,"arguments":[)"
        R"({"type":"Char","value":"A"},{"type":"Byte","value":255},{"type":"Bool","value":true},)"
        R"({"type":"Short","value":-2},{"type":"Word","value":65535},{"type":"Long","value":-3},)"
        R"({"type":"DWord","value":4294967294},{"type":"Int64","value":"-4"},{"type":"UInt64",)"
        R"("value":"18364758544493064720"},{"type":"Double","value":1.5000000000000002},)"
        R"({"type":"Date","value":"2026-01-02"},{"type":"Time","value":"03:04:05"},{"type":)"
        R"("String","value":"Да�\n\"","bytes":"C4E0980A22"},{"type":"String","value":""},)"
        R"({"type":"ByteArray","value":"01AB"}],"text":null,"file":"t.log","offset":104})";
    EXPECT_NE(out.find('\n' + expected + '\n'), out.npos) << out;
    EXPECT_TRUE(out.ends_with("\"text\":\"Нет{5}x a{b\",\"file\":\"t.log\",\"offset\":208}\n"))
        << out;
}

// Records of 29 bytes with these ids.
std::string records(std::string_view ids) {
    std::string bytes;
    for (const char id : ids)
        bytes +=
            hex("00000019 0B07EA0B10 0C0B3123 0201 0500") + id + hex("0D00000001 4D 0600000005");
    return bytes;
}

TEST_F(LogToolTest, PassesOverDamage) {
    const std::string good = records("\1\2\3");
    const auto changed = [&](std::size_t at, char byte) {
        return good.substr(0, at) + byte + good.substr(at + 1);
    };
    const struct {
        const char *name;
        std::string bytes;
        const char *found, *error;
    } rows[] = {
        {"whole", good, "1 2 3 ", ""},
        {"empty", "", "", ""},
        {"year below 0", changed(5, '\x87'), "1 2 3 ", ""},
        {"no clock", std::string(good).replace(5, 4, 4, 0), "1 2 3 ", ""},
        {"length", changed(3, 0x1A), "2 3 ", "d.log: error: offset 0: damaged; 29"},
        {"huge length", changed(29, 0x7F), "1 3 ", "d.log: error: offset 29: damaged; 29"},
        {"length past the end", changed(30, 0x01), "1 3 ", "d.log: error: offset 29: damaged; 29"},
        {"header type", changed(29 + 15, 0x04), "1 3 ", "d.log: error: offset 29: damaged; 29"},
        {"month", changed(58 + 7, 13), "1 2 ", "d.log: error: offset 58: damaged; 29"},
        {"day", changed(58 + 8, 32), "1 2 ", "d.log: error: offset 58: damaged; 29"},
        {"hour", changed(29 + 10, 24), "1 3 ", "d.log: error: offset 29: damaged; 29"},
        {"second", changed(29 + 12, 60), "1 3 ", "d.log: error: offset 29: damaged; 29"},
        {"level", changed(29 + 14, 4), "1 3 ", "d.log: error: offset 29: damaged; 29"},
        {"argument type", changed(24, 0x0F), "2 3 ", "d.log: error: offset 0: damaged; 29"},
        {"minute", changed(29 + 11, 60), "1 3 ", "d.log: error: offset 29: damaged; 29"},
        {"long value", changed(58 + 24, 0x08), "1 2 ", "d.log: error: offset 58: damaged; 29"},
        {"long text", changed(58 + 24, 0x0D), "1 2 ", "d.log: error: offset 58: damaged; 29"},
        {"cut in the middle", good.substr(0, 50) + good, "1 1 2 3 ",
         "d.log: error: offset 29: damaged; 21"},
        {"cut at the end", good.substr(0, 80), "1 2 ",
         "d.log: error: offset 58: a record is cut off; 22"},
        {"cut in its length", good.substr(0, 59), "1 2 ",
         "d.log: error: offset 58: a record is cut off; 1"},
        {"garbage before", "\r\n26" + good, "1 2 3 ", "d.log: error: offset 0: damaged; 4"},
        {"garbage inside", good + std::string(9, '\x0B') + good, "1 2 3 1 2 3 ",
         "d.log: error: offset 87: damaged; 9"},
        {"garbage behind", good + "xyzxyzxyz", "1 2 3 ", "d.log: error: offset 87: damaged; 9"},
    };
    for (const auto &[name, bytes, found, error] : rows) {
        SCOPED_TRACE(name);
        write("d.log", bytes);
        EXPECT_EQ(run("d.log"), *error ? 1 : 0);
        EXPECT_EQ(ids(), found);
        const std::string told = err.substr(std::min(err.find("d.log"), err.size()));
        EXPECT_EQ(told.substr(0, told.find(" bytes")), error);
    }
}

// Headers whose arguments lead from one to the next and fail at the end of the log.
TEST_F(LogToolTest, ReadsHostileLogsInProportionToTheirLength) {
    const std::string header = records("\1").replace(1, 3, hex("700000")).substr(0, 24);
    std::string bytes;
    while (bytes.size() < 4'000'000)
        bytes += header + hex("0E 00000018");
    write("d.log", bytes + records("\7"));
    EXPECT_EQ(run("d.log"), 1);
    EXPECT_EQ(ids(), "7 ");
}

TEST_F(LogToolTest, ReadsSetsOldestFirst) {
    pace = 1;
    open("t", 0, 8 * 60); // two records a file
    for (uint32_t id = 1; id <= 20; ++id)
        ASSERT_EQ(TraceExError("x", id, 0), 0);
    write("t", "\x7F"
               "ELF");
    EXPECT_EQ(run("t"), 0) << err;
    EXPECT_EQ(ids(), "5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 ");
    EXPECT_EQ(run("t1.log t.log"), 0);
    EXPECT_EQ(ids(), "19 20 17 18 ") << "files as they are named";

    // When all stamps are the same, the newest file is the one that was changed last.
    for (const char id : std::string_view("\0\1\2\3\4\6\7", 7)) {
        const std::string name = id ? concat("s", +id, ".log") : "s.log";
        write(name, records({&id, 1}));
        fs::last_write_time(name, fs::file_time_type() + std::chrono::hours(id == 2 ? 9 : id));
    }
    for (const char *name : {"e_10.mlog", "e_2.mlog", "e.mlog", "e_02.mlog", "e_x.mlog", "ee.mlog"})
        write(name, hex("13000000 0B07EA0B10 0C0B3123 0202 05") + name[2] + hex("00 0D00000000"));
    EXPECT_EQ(run("s e"), 0) << err;
    EXPECT_EQ(ids(), concat("3 4 6 7 0 1 2 ", +'m', ' ', +'2', ' ', +'1', ' '));
}

TEST_F(LogToolTest, ChoosesRecordsAndForms) {
    open("t", 0);
    pace = 5;
    TraceExError("a", 1, 0);
    TraceExSupport("b", 2, Long, 5, 0);
    TraceExDebug("b", 3, 0);
    TraceExError("m", 3, Long, 5, 0);
    write("text.log", "\r\n26-11-16 11:49:35 [m] a line");
    write("\xC1\xBF\xED\xA0\x80.log", "?");
    write("odd.log", records("\1").replace(23, 1, "/"));
    write("b.res", "no resources");
    const struct {
        const char *arguments;
        int exit;
        const char *found, *shown;
    } rows[] = {
        {"--level error --res / t", 0, "1 3 ",
         "ERROR   2026-11-16 11:49:50 [m] message 3 (0x0003): Long 5\n"},
        {"--level support --res / t", 0, "1 2 3 ", "SUPPORT 2026-11-16 11:49:40 [b] "},
        {"--module a t", 0, "1 ", "no a.res in this folder; --res names another folder\n"},
        {"--level debug --module b t", 1, "2 3 ", "b.res: error: this is no resource file\n"},
        {"--module m --module a t.log", 0, "1 ", "[m] rest {0: Long 5}\n"},
        {"--lang ru --module m t", 0, "3 ", "m.res has no text for message 3 (0x0003) in ru\n"},
        {"--lang de --module m t", 0, "3 ", "m: m.res has no texts in de; it has en, ru\n"},
        {"--since 2026-11-16T11:49:40 --res / t", 0, "2 3 3 ", ""},
        {"--since 11:49:41 --until 11:49:45 --res / t", 0, "3 ", "[b]"},
        {"--until '2026-11-16 11:48' t", 0, "", ""},
        {"--until 2026-11-16 --since 11:49 --res / t", 0, "1 2 3 3 ", ""},
        {"--since 2026-11-17 t", 0, "", ""},
        {"--color always --module a t", 0, "1 ", "\x1B[1;31mERROR  \x1B[0m 2026"},
        {"--stats --res / t", 0, "",
         "           1             29  error    m\n           4            106  total\n"},
        {"--stats --json --module m t", 0, "",
         "{\"module\":\"m\",\"level\":\"error\",\"records\":1,\"bytes\":29}\n"},
        {"- --res / <t.log", 0, "1 2 3 3 ", ""},
        {"text.log", 1, "", "30 bytes passed over; they look like lines of text"},
        {"--monitor t.log", 1, "", "they look like a trace log, which is read without --monitor\n"},
        {"\xC1\xBF\xED\xA0\x80.log", 1, "", "\xEF\xBF\xBD.log: error: "},
        {"odd.log", 0, "1 ", "uti: no wording for /: no resource file can have this name\n"},
        {"--follow text.log", 1, "", "error: its bytes are no binary log; they look like lines of"},
        {"--follow /dev/null", 2, "", "uti: --follow needs a file; /dev/null is none\n"},
        {"--level none t", 2, "", "--level"},
        {"--since 24:00 t", 2, "", "\"24:00\" is not"},
        {"--until 2026-02-30 t", 2, "", "\"2026-02-30\" is not"},
        {"--lang english t", 2, "", "two lower-case letters"},
        {"--module 中 t", 2, "", "is not in windows-1251"},
        {"--follow --stats t", 2, "", "excludes"},
        {"--follow t s", 2, "", "takes one log"},
        {"t none", 2, "", "no such file or log: none\n"},
        {"--code-page utf-16 t", 2, "", "single-byte"},
    };
    for (const auto &[arguments, exit, found, shown] : rows) {
        SCOPED_TRACE(arguments);
        EXPECT_EQ(run(arguments), exit) << err;
        EXPECT_EQ(ids(), found);
        EXPECT_NE((out + err).find(shown), out.npos) << out << err;
    }
    EXPECT_EQ(run("--module b --res / t"), 0);
    EXPECT_EQ(err, "uti: no wording for b: there is no b.res in /\n") << "told once";
    for (const char *moment : {"11", "11:49:6", "11:49x", "11-16", "2026-13-01", "2026-11-32",
                               "2026-11", "2026-11-16x11:49"})
        EXPECT_EQ(run(concat("--since ", moment, " t")), 2) << moment;

    // What overrides a module gives the wording, whatever the module's own file is.
    fs::copy_file("m.res", "b_ext.res");
    setenv("EXTRES", "1", 1);
    EXPECT_EQ(run("--lang en --module b t"), 1);
    unsetenv("EXTRES");
    EXPECT_NE(out.find("[b] rest\n"), out.npos) << out;
}

TEST_F(LogToolTest, FollowsOverRotations) {
    pace = 1;
    open("t", 0, 8 * 60);
    Command reader(UTI_TOOL " log --follow t.log");
    std::string expected;
    const auto awaitAll = [&] {
        for (int i = 0; i < 1000 && (out = reader.out(), ids() != expected); ++i)
            usleep(10'000);
        EXPECT_EQ(ids(), expected);
    };
    uint32_t id = 0;
    const auto add = [&] {
        TraceExError("M", ++id, 0);
        expected += concat(id, ' ');
    };
    while (id < 19) { // in every file, and beyond
        add();
        if (id % 5 == 1)
            awaitAll();
    }
    awaitAll();
    const std::string noFile = "uti: no wording for M: there is no M.res in this folder; --res "
                               "names another folder\n";

    // A reader that rests misses nothing until it is overtaken, and then the oldest records.
    for (const uint32_t last : {35u, 55u}) {
        reader.signal(SIGSTOP);
        while (id < last)
            add();
        if (last == 55)
            expected.erase(expected.find("37 "), std::strlen("37 38 39 40 "));
        EXPECT_EQ(reader.err(), noFile);
        reader.signal(SIGCONT);
        awaitAll();
    }
    const std::string told = noFile + "uti: records lost: the log was overwritten faster than it "
                                      "could be read\n";
    EXPECT_EQ(reader.err(), told);

    // The rest of a record may come later, or never.
    const std::string record = records("\7"), half = record.substr(0, 20);
    write("t3.log", half, std::ios::app);
    usleep(500'000);
    write("t3.log", record.substr(20) + half, std::ios::app);
    expected += "7 ";
    awaitAll();
    EXPECT_EQ(reader.err(), told);
    write("t3.log", record, std::ios::app);
    expected += "7 ";
    awaitAll();
    EXPECT_EQ(reader.err(), told + "t3.log: error: offset 53: damaged; 20 bytes passed over\n");
    write("t6.log", record, std::ios::app); // a file that was read to its end before
    expected += "7 ";
    awaitAll();
    write("t6.log", "\r\n26-11-16", std::ios::app);
    for (int i = 0; i < 1000 && !reader.err().ends_with("not binary records\n"); ++i)
        usleep(10'000);
    EXPECT_NE(reader.err().find("damaged; waiting for a record; they look like"), err.npos);

    // What cannot be read ends it.
    fs::remove("t7.log");
    fs::create_directory("t7.log");
    EXPECT_EQ(reader.wait(), 2);
    EXPECT_NE(reader.err().find("uti: cannot read t7.log: Is a directory\n"), err.npos);
}

} // namespace
