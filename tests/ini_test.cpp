// INI files: the grammar as read and as written, every operation's results, and what faults leave.
#include "tests/support.h"

#include <functional>

using namespace support;
using fake::Call;

namespace {

const std::string long254(254, 'N'), long255(255, 'N'), long256(256, 'N');
const char *const none = nullptr;

class Ini : public support::Terminal {
protected:
    ~Ini() override { Ini_RemoveFileInfoFromCache("f"); }

    void file(const std::string &text) { // not read yet
        Ini_RemoveFileInfoFromCache("f");
        terminal.files["f"] = text;
    }

    // A result with a '!' for each report of this room in the log on the serial port.
    std::string outcome(int32_t result) {
        std::string text = std::to_string(result);
        for (std::size_t at = 0; (at = terminal.serial.find("Src/utiIni ", at) + 1) > 0;)
            text += '!';
        terminal.serial.clear();
        return text;
    }

    // A value, or the code of the failure.
    static std::string get(const std::string &section, const char *key) {
        char out[256];
        const int32_t result = Ini_GetStr("f", section.c_str(), key, out, sizeof out);
        return result == UTI_OK ? out : std::to_string(result);
    }
};

TEST_F(Ini, ResultsAndReports) {
    const char *n254 = long254.c_str(), *n255 = long255.c_str(), *n256 = long256.c_str();
    TraceExSettings settings{};
    settings.output = TRACE_OUTPUT_SERIAL;
    settings.mode = settings.text = 1;
    ASSERT_EQ(TraceExOpen(&settings), 0);
    file("[s]\na=12abc\neleven=99999999999\ntwelve=123456789012\n[t]");
    char out[300];
    int32_t a, b;
    SectionKeyInfo names, info, half;
    const std::pair<std::string, const char *> rows[] = {
        {outcome(IntiSectionKeyInfo(" s ", "\"k\"", &names)), "1"},
        {outcome(IntiSectionKeyInfo(n255, n255, &info)), "1"},
        {outcome(IntiSectionKeyInfo(none, "k", &info)), "0!"},
        {outcome(IntiSectionKeyInfo(n256, "k", &half)), "0!"},
        {outcome(IntiSectionKeyInfo("s", " ", &half)), "0!"},
        {outcome(IntiSectionKeyInfo("s", "k", nullptr)), "0!"},
        {outcome(Ini_GetSectionCount("")), "-3500!"},
        {outcome(Ini_GetSectionName("f", 0, nullptr, 9)), "-3500!"},
        {outcome(Ini_GetSectionName("f", 2, out, 9)), "-3500!"},
        {outcome(Ini_GetSectionName("f", -1, out, 9)), "-3500!"},
        {outcome(Ini_GetStr(none, "s", "a", out, 9)), "-3500!"},
        {outcome(Ini_GetStr("f", "s", " ", out, 9)), "-3500!"},
        {outcome(Ini_GetStr("missing", "s", "a", out, 9)), "-3500"},
        {outcome(Ini_GetStr("f", "x", "a", out, 9)), "-3502"},
        {outcome(Ini_GetStr("f", "t", "a", out, 9)), "-3503"},
        {outcome(Ini_GetLong("f", " S ", "\"A\"", &a)), "0"},
        {outcome(Ini_GetLong("f", "s", "eleven", &b)), "0"},
        {outcome(Ini_GetLong("f", "s", "twelve", &b)), "-3505"},
        {outcome(Ini_GetLong("f", "s", "a", nullptr)), "-3500!"},
        {outcome(Ini_SetStr("f", "s", "k", n254)), "0"},
        {outcome(Ini_SetStr("f", "s", "k", n255)), "-3500!"},
        {outcome(Ini_SetStr("f", "s", none, "")), "-3500!"},
        {outcome(Ini_SetStr("f", n255, "k", "")), "-3500!"},
        {outcome(Ini_SetStr("new", "]x", "k", "")), "-3500!"},
        {outcome(Ini_GetSectionCount("new")), "-3500"},
        {outcome(Ini_SetStr("f", "t]x", "k", "cut")), "0"},
        {outcome(Ini_SetLong("f", "s", "k", INT32_MIN)), "0"},
        {outcome(Ini_SetStr("f", " ", "k", "")), "-3500!"},
        {outcome(Ini_RemoveSection("f", none)), "0!"},
        {outcome(Ini_RemoveFileInfoFromCache(none)), "0!"},
        {outcome(Ini_GetSection(none, "s", out, 9)), "0!"},
        {outcome(Ini_GetSection("f", " ", out, 9)), "0!"},
    };
    for (const auto &[result, expected] : rows)
        EXPECT_EQ(result, expected) << "row " << &expected - &rows[0].second;
    EXPECT_EQ(std::string(names.section) + names.key + info.section + info.key + half.key, "SK");
    EXPECT_EQ(std::pair(a, b), std::pair(12, INT32_MAX));
    EXPECT_EQ(get("T", "k") + get("S", "k"), "cut-2147483648");
}

TEST_F(Ini, OutBuffersOfEverySize) {
    file("[x]\n[Name]\na=value\n[y]\n[name" + std::string(300, ' ') + "]\n ;raw \n#gone\n[bad\n[" +
         long255 + "]\nb=&#65;\n[z]\nc=d");
    const std::string lines = "a=value\0 ;raw \0b=&#65;\0"s;
    for (std::size_t room = 0; room < 30; ++room) {
        SCOPED_TRACE(room);
        const auto size = static_cast<int32_t>(room);
        const std::string old(room, '?');
        const ExactBlock value(old), name(old), section(old);
        const auto start = [&](const ExactBlock &block, std::size_t count) {
            return std::string(block.data(), std::min(count, room));
        };
        EXPECT_EQ(Ini_GetStr("f", "name", "a", value.data(), size), room < 1   ? -3500
                                                                    : room < 6 ? -3505
                                                                               : 0);
        EXPECT_EQ(start(value, 1), room < 1 ? "" : room < 6 ? "\0"s : "v");
        EXPECT_EQ(Ini_GetSectionName("f", 1, name.data(), name.size()), room < 5 ? -3500 : 0);
        EXPECT_EQ(start(name, 5), room < 5 ? old : "NAME\0"s);
        const std::size_t stored = room < 9 ? 0 : room < 16 ? 8 : room < 24 ? 15 : 23;
        EXPECT_EQ(Ini_GetSection("f", "NAME", section.data(), size), static_cast<int32_t>(stored));
        EXPECT_EQ(start(section, stored), lines.substr(0, stored));
        EXPECT_TRUE(stored > 0 || start(section, 1) == "\0"s.substr(0, room));
    }
}

TEST_F(Ini, ChangesRewriteTheWholeFile) {
    file("x=1\n[Net]\nip=2\n; gone\n[last]\n");
    EXPECT_EQ(Ini_SetStr("f", "net", " Ip ", " \" a\n\" "), 0);
    EXPECT_EQ(terminal.calls,
              "open f 1; close; delete f; open f 0; write 18; write 2; write 3; write 2; "
              "write 7; write 3; write 9; write 2; write 8; write 2; close");
    terminal.files["f"] = "[DISK]\nk=v";
    EXPECT_EQ(Ini_RemoveFileInfoFromCache("./f"), 0) << "another name is another file";
    EXPECT_EQ(get("disk", "k"), "-3502") << "the cache answers";
    Ini_RemoveFileInfoFromCache("f");
    EXPECT_EQ(Ini_RemoveSection("f", "DISK"), 0) << "nothing happens to an uncached file";
    EXPECT_EQ(get("disk", "k"), "v");
    Ini_RemoveFileInfoFromCache("f");
    terminal.files.clear();
    terminal.calls.clear();
    EXPECT_EQ(Ini_SetLong("f", "s", "k", -5), 0);
    EXPECT_EQ(terminal.files["f"], "[S]\r\nK=-5\r\n\r\n");
    EXPECT_EQ(terminal.calls, "open f 1; open f 0; write 5; write 2; write 4; write 2; close");
}

TEST_F(Ini, CountsEndAt32767AndLongFilesAreReadInTime) {
    std::string keys = "[s]\n", sections;
    for (int i = 0; i < 120000; ++i) {
        keys += "k"s + std::to_string(i % 40000) + "=" + std::to_string(i) + "\r";
        sections += "[s"s + std::to_string(i % 40000) + "]\n";
    }
    keys += std::string(2000000, 'x');
    file(keys);
    EXPECT_EQ(get("s", "k32766"), "112766");
    EXPECT_EQ(get("s", "k32767"), "-3503");
    EXPECT_EQ(Ini_SetStr("f", "s", "one more", ""), -3500);
    EXPECT_EQ(terminal.files["f"], keys);

    file("x=1\n" + sections + "[one more]\nx=2\n[s0]\nx=3");
    EXPECT_EQ(Ini_GetSectionCount("f"), 32767);
    EXPECT_EQ(get("noname_section", "x"), "1") << "a section too many takes its keys with it";
    EXPECT_EQ(get("s0", "x"), "3");
    EXPECT_EQ(Ini_SetStr("f", "one more", "k", ""), -3500);
}

TEST_F(Ini, RemovedSectionsLeaveTheOthersInTheirOrder) {
    const auto name = [](int i) { return "S" + std::to_string(i * 7919); };
    std::string text, kept, added;
    for (int i = 0; i < 300; ++i) {
        const std::string section = "[" + name(i) + "]\r\nK=" + std::to_string(i) + "\r\n\r\n";
        text += section;
        (i % 3 == 0 ? added : kept) += section;
    }
    file(text);
    EXPECT_EQ(Ini_GetSectionCount("f"), 300);
    for (int i = 0; i < 300; i += 3)
        Ini_RemoveSection("f", name(i).c_str());
    EXPECT_EQ(terminal.files["f"], kept);
    for (int i = 0; i < 300; i += 3)
        Ini_SetLong("f", name(i).c_str(), "k", i);
    EXPECT_EQ(terminal.files["f"], kept + added);
    for (int i = 0; i < 300; ++i)
        EXPECT_EQ(get(name(i), "k"), std::to_string(i));
}

} // namespace
