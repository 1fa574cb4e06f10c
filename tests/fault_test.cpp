// Every call of the platform, of the toolkit and for memory fails, once and from then on, in each
// of the scenarios below, which together make every such call that the library has. Whatever
// failed: nothing crashes, leaks, stays open, runs on or is read after it was freed, somebody is
// told when anything differs, and the next run is as if nothing had happened.
#include "tests/dialog_support.h"

using namespace support;
using namespace support::describe;
using fake::Call;

namespace {

fake::Terminal &terminal = fake::terminal();
fake::Toolkit &toolkit = fake::toolkit();

// What a scenario shows to the application.
struct Seen {
    fake::Fault fault{Call::count, 0}; // that is armed
    std::string text = {};             // results, and what was read or written
    bool isTold = false; // a result, or nothing in place of a text, tells of a failure

    int32_t result(int32_t code) {
        text += std::to_string(code) + ' ';
        isTold |= code < 0;
        return code;
    }
    void add(const std::string &more) {
        text += more + ' ';
        isTold |= more.empty();
    }
    // What was written out may be there in part.
    bool isCut() const {
        return fault.kind == Call::write || fault.kind == Call::comWrite ||
               fault.kind == Call::print;
    }
};

// --- dialogs

using Codes = std::map<std::string, int32_t>;
constexpr int32_t down = fake::failure - 5000;
const std::string parts = text(11, "l") + text(2, "a.fnt") + text(75, "ab\\ncd") + text(117, "i");
int refreshes;

DialogRequest makeRequest() {
    static const LabelValue labels[] = {{"l", "a label"}, {nullptr, nullptr}};
    DialogRequest made{};
    made.resourceId = 1;
    made.module = "m";
    made.text = "first";
    made.timeout = 9000;
    made.labelValues = labels;
    made.needToBreak = [] { return int32_t{0}; };
    return made;
}
const DialogRequest request = makeRequest();

// Shows a dialog, and behind it another one that nothing disturbs. Of the toolkit's functions those
// with a code end the dialog with it when they fail once.
auto shows(const std::string &description, int32_t (*run)(), const Codes &codes = {}) {
    return [=](Seen &seen) {
        terminal.environment["default_lang"] = "en";
        terminal.files["m.res"] =
            resourceFile(1, {{0, {{"en", 0, {"", description}}, {"ru", 0, {"", description}}}}});
        toolkit.answers["igSignBox_SaveData"] = 1;
        const auto shown = [&] {
            refreshes = 1;
            toolkit.script = {{}, {}, {13}};
            return run();
        };
        const int32_t result = seen.result(shown());
        if (!toolkit.failed.empty() && seen.fault.persistence == fake::Persistence::once) {
            Codes all = {
                {"igForm_Create", down}, {"igUI_Add", fake::failure}, {"igUI_ShowExt", down}};
            all.insert(codes.begin(), codes.end());
            EXPECT_EQ(result, all[toolkit.failed]) << toolkit.failed;
        }
        fake::disarm();
        EXPECT_EQ(shown(), 0) << "the next dialog";
        expectNothingInstalled();
    };
}

int32_t confirm() {
    ConfirmationRequest wanted{request, "yes", nullptr};
    wanted.dialog.refresh = [](const LabelValue **values) {
        static const LabelValue newer[] = {{"l", "two\\nlines"}, {nullptr, nullptr}};
        *values = newer;
        return int32_t{refreshes-- > 0};
    };
    return DialogConfirmation_DoModal(&wanted);
}
int32_t select() {
    const ConfirmationRequest wanted{request, "yes", nullptr};
    return DialogSelect_DoModal_IG(&wanted, "1", "2");
}
int32_t list() {
    const ListItem items[2] = {};
    const ListRequest wanted{request, items, 2};
    return DialogList_DoModal(&wanted);
}
template <bool isAddress>
int32_t edit() {
    EditRequest wanted{};
    wanted.dialog = request;
    wanted.keyPressed = [](int32_t, char *, int32_t) { return int32_t{0}; };
    char buffer[9] = {isAddress ? '1' : 'x'}, before = *buffer;
    const int32_t result = DialogEdit_DoModal(&wanted, buffer, sizeof buffer);
    EXPECT_TRUE(*buffer == 0 || *buffer == before) << buffer;
    return result;
}

void showPictures(Seen &seen) {
    terminal.environment = {{"default_lang", "en"}, {"cp_en", "1252"}};
    terminal.files["m.res"] =
        resourceFile(1, {{0, {{"en", 0, {"", dialog(0, group(159, area(7, 8, 9, 10)))}}}}});
    terminal.files["p.png"] = "";
    CodePageManager_GetFontName("xx", "forgets the last name");
    CodePageManager_GetCodePage("xx");
    terminal.assertions = 0;
    seen.result(DrawImage_IG(0, 0, "p.png", "title"));
    seen.result(SetBackgroundImage_IG("p.png"));
    seen.add(std::to_string(CodePageManager_GetCodePage("en")));
    seen.result(Dialogs_SetDefaultFonts("en"));
    seen.result(GetSignalPosition(&request));
}

// --- settings

void useIni(Seen &seen, bool isSafe) {
    std::map<std::string, std::string> expected;
    std::string &file = terminal.files["f"] = "[S]\r\n";
    for (int i = 0; i < 16; ++i) {
        const std::string number = std::to_string(i);
        expected["k" + number] = number + '\r';
        file += "K" + number + '=' + number + "&#13;\r\n";
    }
    terminal.files["f~"] = "an incomplete copy";
    Ini_SetSafeWrite(isSafe);
    const bool isRead = seen.result(Ini_GetSectionCount("f")) >= 0;
    char out[1024] = "";
    Ini_GetSection("f", "s", out, sizeof out);
    seen.add(out);
    for (const auto &[key, value] : {std::pair("k7", "new"), {"one more", "value"}})
        if (seen.result(Ini_SetStr("f", "s", key, value)) == 0)
            expected[key] = value;
    if (seen.result(Ini_SetLong("f", "new section", "k", 5)) == 0 && isRead)
        Ini_RemoveSection("f", "NEW SECTION");
    fake::disarm();
    // What could not be read is, as prescribed, an empty file.
    if (!isRead && !isSafe)
        expected.clear();
    for (const auto &[key, value] : expected) {
        EXPECT_EQ(Ini_GetStr("f", "s", key.c_str(), out, sizeof out), 0) << key;
        EXPECT_EQ(out, value);
    }
    if (isSafe)
        seen.add(terminal.files["f"]);
}

// --- resources

void fetchStrings(Seen &seen) {
    std::vector<std::string> plain, external;
    for (std::size_t i = 0; i < 30; ++i) {
        plain.push_back(std::string(i * 3, 'a') + "!");
        external.push_back(i % 3 ? "" : std::string(i * 2, 'x') + "?");
    }
    terminal.environment = {{"default_lang", "en"}, {"EXTRES", "1"}};
    terminal.files["m.res"] = resourceFile(1, {{0, {{"en", 0, plain}, {"ru", 0, plain}}}});
    terminal.files["m_ext.res"] = resourceFile(1, {{0, {{"en", 0, external}}}});
    const char *held = Resource_GetString("m", 29);
    const std::string kept = held;
    for (uint32_t id = 0; id < 29; ++id) {
        const std::string found = Resource_GetString("m", id);
        EXPECT_TRUE(found.empty() || found == plain[id] || found == external[id]) << found;
        seen.add(found);
        Resource_Release("m", id);
    }
    const char *other = Resource_GetStringEx("m", "ru", 3);
    seen.add(other ? other : "");
    EXPECT_EQ(held, kept) << "held over all of that";
    seen.add(kept);
    ResourceLanguageInfo languages[4];
    seen.result(Resource_GetLanguages("m", 0, languages, 4) - 1);
    seen.result(Resource_IsValid("m", 1));
}

// --- containers

void fillContainers(Seen &seen) {
    const Storage full = Storage_Create(), copy = Storage_Create();
    for (uint32_t key = 0; key < 9; ++key)
        seen.result(Storage_PutLong(full, key * key, 5) - 1);
    seen.result(Storage_PutString(full, 1, "text", 5) - 1);
    seen.result(Storage_AppendString(full, 1, "more", 4) - 1);
    void *block = nullptr;
    uint32_t size = 0, count = 0, *keys = nullptr;
    seen.result(Storage_Export(full, &block, &size) - 1);
    const bool isWhole = seen.result(Storage_Import(copy, block, size) - 1) == 0;
    EXPECT_TRUE(!isWhole || (*copy)->totalSize == size);
    seen.result(Storage_GetKeys(full, &keys, &count) - 1);
    seen.result(Storage_Merge(full, copy, copy) - 1);
    seen.result(Storage_Compare(full, copy));
    Storage_MemFree(block);
    Storage_MemFree(keys);
    Storage_Free(full);
    Storage_Free(copy);

    List *const all = List_Create();
    char items[4] = {};
    for (char &item : items)
        seen.result(all && all->AddTail(all, &item) ? 0 : -1);
    List_Destroy(all);
}

// --- logs

constexpr std::size_t records = 40;
using Pieces = std::vector<std::string>;

// Takes whole records out of what came out: each that was promised, with a '0', once. Returns the
// rest, and writes down what is missing.
std::string takeRecords(std::string all, const Pieces &clean, const std::string &promised,
                        std::string &missing) {
    for (std::size_t i = 0; i < records; ++i) {
        int found = 0;
        for (std::size_t at; (at = all.find(clean[i])) != std::string::npos; ++found)
            all.replace(at, clean[i].size(), "");
        const int expected = promised[i] == '0';
        EXPECT_LE(found, expected) << "record " << i;
        missing += found < expected ? std::to_string(i) + ' ' : "";
    }
    std::erase(all, '\n');
    return all;
}

// A record is only torn where the very call that writes it out has failed, and only missing where
// that is so or the file for the buffer could not be opened; then whoever wrote it was told or, of
// a buffer, there is a report.
void expectRecords(Seen &seen, const std::string &all, const Pieces &clean,
                   const std::string &promised, bool isBuffered) {
    std::string missing;
    const std::string rest = takeRecords(all, clean, promised, missing);
    const bool mayLose = isBuffered && (seen.isCut() || seen.fault.kind == Call::open);
    EXPECT_TRUE(missing.empty() || mayLose) << missing;
    EXPECT_TRUE(rest.empty() || seen.isCut() || rest.find("Src/uti") != rest.npos) << toHex(rest);
    seen.text += missing + rest;
}

int32_t openTrace(uint32_t output, uint8_t text) {
    TraceExClose();
    TraceExSettings settings{output, 3, "", text, {}, 8 * 220};
    std::strcpy(settings.device.baseName, "t");
    return TraceExOpen(&settings);
}
int32_t writeTrace(std::size_t i) {
    terminal.now.time.second = static_cast<uint8_t>(i);
    return TraceExAssert(i % 3 ? "short" : "a record that is longer than others",
                         static_cast<int32_t>(10 + i));
}
Pieces cleanTrace(uint8_t text) {
    openTrace(TRACE_OUTPUT_SERIAL, text);
    Pieces pieces;
    for (std::size_t i = 0; i < records; ++i) {
        terminal.serial.clear();
        writeTrace(i);
        pieces.push_back(terminal.serial);
    }
    TraceExClose();
    return pieces;
}

// The log of 40 records, closed once, flushed at times, and read in between.
void trace(Seen &seen, uint32_t output, uint8_t text) {
    static const Pieces clean[] = {cleanTrace(0), cleanTrace(1)};
    terminal.serial.clear();
    const bool isFile = output == TRACE_OUTPUT_FILE;
    int32_t opened = seen.result(openTrace(output, text));
    std::string promised, unread, read(9999, 0);
    for (std::size_t i = 0; i < records; ++i) {
        promised += seen.result(writeTrace(i)) == 0 ? '0' : '-';
        if (i % 7 == 6)
            TraceExFlush();
        if (i == 12)
            opened |= seen.result(openTrace(output, text));
        if (i == 25)
            read.resize(static_cast<std::size_t>(TraceExGetLog(read.data(), 9999)));
    }
    TraceExClose();
    fake::disarm();
    std::string all = terminal.deleted + '\n' + terminal.serial + terminal.printedText();
    for (const auto &[name, bytes] : terminal.files)
        all += '\n' + bytes;
    seen.isTold |= opened != 0 || read.starts_with("LOG FILE");
    // It writes over a file that it does not see or cannot delete.
    if (seen.fault.kind == Call::isValid || seen.fault.kind == Call::remove)
        return void(seen.isTold = true);

    expectRecords(seen, all, clean[text], promised, output == TRACE_OUTPUT_BUFFERED);
    if (!isFile || seen.isCut() || read.starts_with("LOG FILE"))
        read.clear();
    EXPECT_EQ(takeRecords(read, clean[text], promised, unread), "") << "as read";
}

void monitor(Seen &seen, uint32_t mode) {
    static Pieces clean;
    const std::string big(900, 'x');
    const MonitorExSettings settings{mode, "t", 0};
    std::string promised;
    seen.result(MonitorExOpen(&settings));
    for (std::size_t i = 0; i < records; ++i) {
        if (i == 12) {
            MonitorExClose();
            seen.result(MonitorExOpen(&settings));
        }
        const int32_t result = MonitorExWrite(static_cast<uint32_t>(i), String, big.c_str(), 0);
        promised += result == 0 || result == UTI_MONITOR_OVER_LIMIT ? '0' : '-';
        seen.result(result);
        if (i % 7 == 6)
            MonitorExFlush();
    }
    MonitorExClose();
    fake::disarm();
    std::string all;
    for (const auto &[name, bytes] : terminal.files)
        all += bytes;
    for (std::size_t i = 0, size = all.size() / records; clean.size() < records; ++i)
        clean.push_back(all.substr(i * size, size));
    expectRecords(seen, all, clean, promised, mode == MONITOR_MODE_BUFFERED);
}

// --- all of them

const struct {
    const char *name;
    int floor; // faults that there are at the least: raise it with them
    std::function<void(Seen &)> run;
} scenarios[] = {
    {"message", 194,
     shows(dialog(0, group(151, parts) + group(149) + group(157, parts + byte(87, 1))),
           [] { return DialogMessage_Show(&request, SHOW_SHORTLY); })},
    {"confirmation, with a refresh", 222,
     shows(dialog(3, group(148, parts) + group(148) + group(157, parts)), confirm)},
    {"selection", 184, shows(dialog(3, group(148, parts) + group(148)), select)},
    {"signature", 138,
     shows(dialog(4, group(152)), [] { return DialogSignature_DoModal(&request, "file"); },
           {{"igSignBox_SaveData", down}})},
    {"edit", 220,
     shows(dialog(1, group(150, parts) + group(150, parts + text(81, "_"))), edit<false>)},
    {"edit of an address", 156, shows(dialog(1, group(156)), edit<true>)},
    {"list", 188,
     shows(dialog(2, group(153, group(160, byte(123, 1) + text(117, "i")))), list,
           {{"igMenuBox_Create", down},
            {"igMenuBox_AddItemExt2", down},
            {"igForm_Add", down},
            {"igStatic_Create", down},
            {"igMenuBox_GetSelected", down}})},
    {"pictures and fonts", 162, &showPictures},
    {"settings", 412, [](Seen &seen) { useIni(seen, false); }},
    {"settings, written safely", 788, [](Seen &seen) { useIni(seen, true); }},
    {"strings, with external ones", 866, &fetchStrings},
    {"storage and list", 160, &fillContainers},
    {"trace to files", 1198, [](Seen &seen) { trace(seen, TRACE_OUTPUT_FILE, 0); }},
    {"trace to files as text", 748, [](Seen &seen) { trace(seen, TRACE_OUTPUT_FILE, 1); }},
    {"trace through a buffer", 224, [](Seen &seen) { trace(seen, TRACE_OUTPUT_BUFFERED, 0); }},
    {"trace to a port", 812, [](Seen &seen) { trace(seen, TRACE_OUTPUT_SERIAL, 0); }},
    {"trace to the printer", 412, [](Seen &seen) { trace(seen, TRACE_OUTPUT_PRINTER, 1); }},
    {"monitoring", 746, [](Seen &seen) { monitor(seen, MONITOR_MODE_DIRECT); }},
    {"monitoring through a buffer", 44, [](Seen &seen) { monitor(seen, MONITOR_MODE_BUFFERED); }},
};

std::string nameOf(fake::Fault fault) {
    const bool isOne = fault.persistence == fake::Persistence::once;
    return "kind " + std::to_string(static_cast<int>(fault.kind)) + (isOne ? ", call " : " from ") +
           std::to_string(fault.nth);
}

using Faults = support::Terminal;

TEST_F(Faults, EveryFaultOfEveryScenario) {
    openLog();
    TraceExAssert("", 0); // the log keeps a table from its first record on
    for (const auto &row : scenarios) {
        SCOPED_TRACE(row.name);
        Seen seen;
        const auto forget = [] {
            MonitorExClose();
            Ini_SetSafeWrite(0);
            Ini_RemoveFileInfoFromCache("f");
            forgetDialogs();
        };
        const auto prepare = [&] { forget(), openLog(); };
        const auto run = [&](fake::Fault fault) {
            SCOPED_TRACE(
                testing::Message()
                << "call " << fault.nth << " of kind " << static_cast<int>(fault.kind)
                << (fault.persistence == fake::Persistence::once ? "" : " and all behind it"));
            seen = {fault};
            row.run(seen);
        };
        const auto runClean = [&] {
            fake::reset();
            prepare();
            run({Call::count, 0});
            forget();
            return seen.text;
        };
        runClean(); // what is kept from then on is made
        const std::string clean = runClean();
        const int assertions = terminal.assertions, blocks = fake::liveBlocks();
        const int faults = fake::forEachFault(prepare, run, [&](fake::Fault fault) {
            SCOPED_TRACE(nameOf(fault));
            // A variable that cannot be read is like one that is not set.
            EXPECT_TRUE(seen.text == clean || seen.isTold || terminal.assertions > assertions ||
                        fault.kind == Call::environment)
                << "nobody is told: " << seen.text;
            forget();
            EXPECT_EQ(terminal.openFiles, 0);
            EXPECT_EQ(fake::liveBlocks(), blocks);
            EXPECT_EQ(toolkit.mistakes, "");
            EXPECT_EQ(runClean(), clean);
        });
        EXPECT_GE(faults, row.floor);
        forget();
    }
}

} // namespace
