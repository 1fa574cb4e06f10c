// Power that goes at any moment: every state that a disk goes through, a file growing byte by byte,
// is what the next start may find. What was there before must be found in each of them.
#include "tests/support.h"

#include <set>

using namespace support;

namespace {

using Disk = std::map<std::string, std::string>;

class Power : public Terminal {
protected:
    ~Power() override {
        Ini_SetSafeWrite(0);
        Ini_RemoveFileInfoFromCache("f");
    }

    // Every state of the disk before, during and after `action`, each once.
    template <class Action>
    std::set<Disk> statesOf(Action action) {
        std::set<Disk> states{terminal.files};
        terminal.onDisk = [&] { states.insert(terminal.files); };
        action();
        terminal.onDisk = nullptr;
        return states;
    }

    // What a start from a state reads: the values of the keys of the section s.
    std::string settings(const Disk &disk) {
        terminal.files = disk;
        Ini_RemoveFileInfoFromCache("f");
        std::string found;
        for (const char *key : {"a", "b", "c"}) {
            char value[256];
            const int32_t result = Ini_GetStr("f", "s", key, value, sizeof value);
            found += (result == 0 ? value : std::to_string(result)) + ' ';
        }
        return found;
    }

    // The lengths of the records in a log of whole records, ahead of a last one that may be cut.
    static int wholeRecords(const std::string &log, bool isBigEndian) {
        int count = 0;
        for (std::size_t at = 0; at + 4 <= log.size(); ++count) {
            std::size_t length = 0;
            for (std::size_t i = 0; i < 4; ++i)
                length = length << 8 | static_cast<uint8_t>(log[at + (isBigEndian ? i : 3 - i)]);
            if (length > log.size() - at - 4)
                break;
            at += 4 + length;
        }
        return count;
    }
};

constexpr const char *before = "[S]\r\nA=one\r\nB=two\r\nC=three\r\n\r\n";

// The sequence of calls that rewrites a file is fixed; this is what it costs.
TEST_F(Power, IniRewritingInPlaceLosesSettings) {
    terminal.files["f"] = before;
    const auto states = statesOf([] { EXPECT_EQ(Ini_SetStr("f", "s", "b", "2"), 0); });
    int lost = 0;
    for (const Disk &disk : states) {
        const std::string found = settings(disk);
        lost += found != "one two three " && found != "one 2 three ";
    }
    EXPECT_EQ(lost, 25);
    EXPECT_EQ(states.size(), 31u);
}

TEST_F(Power, SafelyWrittenIniLosesNothing) {
    const struct {
        const char *name;
        int32_t (*change)();
        const char *after;
    } rows[] = {
        {"a shorter value", [] { return Ini_SetStr("f", "s", "b", "2"); }, "one 2 three "},
        {"a longer one", [] { return Ini_SetStr("f", "s", "b", "twenty\r\ntwo"); },
         "one twenty\r\ntwo three "},
        {"one more key", [] { return Ini_SetStr("f", "t", "d", "x"); }, "one two three "},
        {"nothing left", [] { return Ini_RemoveSection("f", "S"); }, "-3500 -3500 -3500 "},
    };
    Ini_SetSafeWrite(1);
    std::size_t looked = 0;
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        terminal.files = {{"f", before}};
        Ini_RemoveFileInfoFromCache("f");
        EXPECT_EQ(Ini_GetSectionCount("f"), 1);
        const auto states = statesOf([&] { EXPECT_EQ(row.change(), 0); });
        EXPECT_EQ(terminal.files.count("f~"), 0u);
        for (const Disk &disk : states) {
            // Power that goes once more while the copy is brought home finds the same.
            std::string found;
            terminal.files = disk;
            const auto again = statesOf([&] { found = settings(disk); });
            EXPECT_TRUE(found == "one two three " || found == row.after) << found;
            EXPECT_EQ(terminal.files.count("f~"), 0u);
            for (const Disk &second : again)
                EXPECT_EQ(settings(second), found);
            looked += again.size();
        }
    }
    EXPECT_GE(looked, 5629u);
}

// Every call for files and memory fails, once and from then on; then power goes, at any moment of
// one more change. No setting that was there before the fault is lost.
TEST_F(Power, SafelyWrittenIniSurvivesFaultsAndThenPower) {
    Ini_SetSafeWrite(1);
    terminal.files["f"] = before;
    std::string file = before, copy = "an incomplete copy", complete;
    for (const Disk &disk : statesOf([] { Ini_SetStr("f", "s", "b", "two"); }))
        if (const auto found = disk.find("f~"); found != disk.end())
            complete = std::max(complete, found->second);
    const auto prepare = [&] {
        terminal.files = {{"f", file}, {"f~", copy}};
        Ini_RemoveFileInfoFromCache("f");
    };
    const auto run = [](fake::Fault) { Ini_SetStr("f", "s", "b", "2"); };
    const auto check = [&](fake::Fault fault) {
        SCOPED_TRACE(testing::Message() << static_cast<int>(fault.kind) << ' ' << fault.nth);
        const auto states = statesOf([] { Ini_SetStr("f", "s", "b", "3"); });
        EXPECT_EQ(terminal.openFiles, 0);
        for (const Disk &disk : states) {
            const std::string found = settings(disk);
            EXPECT_TRUE(found == "one two three " || found == "one 2 three " ||
                        found == "one 3 three ")
                << found;
        }
        Ini_RemoveFileInfoFromCache("f");
    };
    EXPECT_GE(fake::forEachFault(prepare, run, check), 106);
    file = "[S]\r\nA=o", copy = complete; // which the change brings home first
    EXPECT_GE(fake::forEachFault(prepare, run, check), 112);
}

// A record is promised with its 0. Of the promised ones only those go that the rotation takes, and
// only the last bytes of a file can be a part of a record.
TEST_F(Power, LogsLoseNoRecordThatReachedTheFile) {
    TraceExSettings settings{};
    settings.mode = 3;
    settings.maxSize = 8 * 100;
    std::strcpy(settings.device.baseName, "t");
    MonitorExSettings monitor{};
    std::strcpy(monitor.baseName, "t");
    for (const uint32_t output : {TRACE_OUTPUT_FILE, TRACE_OUTPUT_BUFFERED}) {
        terminal.files.clear();
        settings.output = output;
        monitor.mode = output == TRACE_OUTPUT_BUFFERED;
        ASSERT_EQ(TraceExOpen(&settings), 0);
        ASSERT_EQ(MonitorExOpen(&monitor), 0);
        int promised = 0, looked = 0, kept = 0; // by a write or a flush
        for (int record = 0; record < 40; ++record) {
            kept = output == TRACE_OUTPUT_FILE ? record : record / 5 * 5;
            const auto states = statesOf([&] {
                promised += TraceExError("m", 1, Long, record, 0) == 0;
                EXPECT_EQ(MonitorExWrite(2, Long, record, 0), 0);
                if (record % 5 == 4) {
                    TraceExFlush();
                    MonitorExFlush();
                }
            });
            for (const Disk &disk : states) {
                int whole = 0;
                std::size_t files = 0;
                for (const auto &[name, bytes] : disk) {
                    const bool isTrace = name != "t.mlog";
                    const int here = wholeRecords(bytes, isTrace);
                    whole += isTrace ? here : 0;
                    files += isTrace;
                    EXPECT_TRUE(isTrace || here >= kept) << here;
                }
                // Eight files of three records; the rotation empties the oldest.
                EXPECT_GE(whole, std::min(kept, 21));
                EXPECT_LE(files, 8u);
                ++looked;
            }
        }
        EXPECT_EQ(promised, 40);
        EXPECT_GE(looked, 2619);
        TraceExClose();
        MonitorExClose();
        int flushed = 0;
        for (const auto &[name, bytes] : terminal.files)
            flushed += name == "t.mlog" ? wholeRecords(bytes, false) : 0;
        EXPECT_EQ(flushed, 40);
    }
}

} // namespace
