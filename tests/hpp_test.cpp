// The typed face against the C one: the same bytes in the log, the same results, and what C leaves
// to the caller: texts released, state in callbacks, nothing that dangles.
#include "hpp_strings.hpp"
#include "tests/dialog_support.h"
#include "uti.hpp"

#include <array>

using namespace support;
using namespace support::describe;
using uti::Outcome;

namespace {

enum class Plain { value = -7 };
enum class Narrow : char { value = 'A' };
const void *const nowhere = nullptr;

// The bytes that a call sends to the log's serial port.
template <class Call>
std::string sent(Call call) {
    fake::terminal().serial.clear();
    EXPECT_EQ(call(), 0);
    return std::exchange(fake::terminal().serial, {});
}

class Typed : public support::Dialogs {
protected:
    Typed() { serveStrings(); }

    void openBinary(uint32_t mode) {
        TraceExClose();
        const TraceExDevice port{};
        log_.emplace(uti::trace::Settings{TRACE_OUTPUT_SERIAL, mode, {}, false, {}, 0, &port});
        EXPECT_EQ(log_->result(), 0);
    }

    void serveStrings() {
        forgetResources();
        terminal.environment["default_lang"] = "en";
        std::vector<std::string> english = {"plain", "{0} and {1}", "%-3d|%s|%.1f|%c|100%%", "%d"};
        for (int i = 4; i < 40; ++i)
            english.push_back("string " + std::to_string(i));
        std::vector<std::string> russian = {"\xEF\xF0\xEE\xF1\xF2\xEE"};
        terminal.files["hpp.res"] =
            resourceFile(1, {{0, {{"en", 0, english}, {"ru", 0, russian}}}});
    }

private:
    std::optional<uti::trace::Log> log_;
};

TEST_F(Typed, RecordsAreThoseOfCByteForByte) {
    openBinary(3);
    const TerminalDate date{2026, 11, 23, {}};
    const TerminalTime time{6, 7, 8};
    const double real = -0.1;
    uint64_t bits;
    std::memcpy(&bits, &real, sizeof bits);
    const std::array<uint8_t, 3> bytes = {1, 0, 255};
    const std::vector<std::byte> noBytes;
    const char view[] = {'a', 'b', 'c'}; // no zero behind it
    const std::string longText(300, 'x');
    const char *noText = nullptr;
    const TerminalDate *noDate = nullptr;
    char own[8] = "own";

#define SAME(typed, ...)                                                                           \
    EXPECT_EQ(toHex(sent([&] { return uti::trace::debug("hpp", 9, typed, 'Z'); })),                \
              toHex(sent([&] { return TraceExDebug("hpp", 9, __VA_ARGS__, Char, 'Z', 0); })))
    SAME('c', Char, 'c');
    SAME(uint8_t{200}, Byte, 200);
    SAME(true, Bool, 1);
    SAME(int16_t{-2}, Short, -2);
    SAME(int8_t{-128}, Short, -128);
    SAME(uint16_t{65535}, Word, 65535);
    SAME(-100000, Long, -100000);
    SAME(4000000000u, DWord, 4000000000u);
    SAME(int64_t{-5} << 33, Int64, UTI_TRACE_HALVES(int64_t{-5} << 33));
    SAME(UINT64_MAX - 1, UInt64, UTI_TRACE_HALVES(UINT64_MAX - 1));
    if (sizeof(long) == 8)
        SAME(5L, Int64, 0, 5);
    else
        SAME(5L, Long, 5);
    SAME(real, Double, UTI_TRACE_HALVES(bits));
    SAME(0.5f, Double, 0x3FE00000u, 0u);
    SAME(date, Date, &date);
    SAME(&date, Date, &date);
    SAME(noDate, Date, nowhere);
    SAME(time, Time, &time);
    SAME("literal", String, "literal");
    SAME(own, String, "own");
    SAME(noText, String, nowhere);
    SAME(std::string("temporary"), String, "temporary");
    SAME(std::string_view(view, 3), String, "abc");
    SAME(std::string_view(longText), String, longText.c_str());
    SAME(uti::Text("kept"), String, "kept");
    SAME(bytes, ByteArray, bytes.data(), 3);
    SAME(uti::Bytes(bytes).first(1), ByteArray, bytes.data(), 1);
    SAME(noBytes, ByteArray, nowhere);
    SAME(Plain::value, Long, -7);
    SAME(Narrow::value, Short, 65);
    SAME(uti::Text(), String, nowhere);

    EXPECT_EQ(sent([] { return uti::trace::support(HPP_TWO, 1, "b"); }),
              sent([] { return TraceExSupport("hpp", 1, Long, 1, String, "b", 0); }));
}

using TypedLog = support::Terminal;

TEST_F(TypedLog, MonitoringRecordsAreThoseOfC) {
    const uti::monitor::Log refused({.baseName = std::string(29, 'n')});
    EXPECT_EQ(refused.result(), UTI_MONITOR_REFUSED);
    const auto written = [&](auto write) {
        terminal.files.clear();
        const uti::monitor::Log log({.baseName = "m", .isBuffered = true});
        EXPECT_TRUE(log);
        EXPECT_EQ(write(), 0);
        MonitorExFlush();
        return std::exchange(terminal.files, {});
    };
    EXPECT_EQ(written([] { return uti::monitor::write(HPP_TWO, 1, 2.0); }),
              written([] { return MonitorExWrite(1, Long, 1, Double, 0x40000000u, 0u, 0); }));
    EXPECT_EQ(MonitorExWrite(1, 0), UTI_MONITOR_CLOSED);
}

TEST_F(Typed, LevelsDropWhatTheCCallsDrop) {
    for (const uint32_t mode : {0u, 1u, 2u, 3u, 4u}) {
        openBinary(mode);
        EXPECT_EQ(uti::trace::error("hpp", 1), TraceExError("hpp", 1, 0)) << mode;
        EXPECT_EQ(uti::trace::support("hpp", 1), TraceExSupport("hpp", 1, 0)) << mode;
        EXPECT_EQ(uti::trace::debug("hpp", 1), TraceExDebug("hpp", 1, 0)) << mode;
    }
    TraceExClose();
    EXPECT_EQ(uti::trace::error("hpp", 1, "x"), UTI_TRACE_NOT_WRITTEN);
}

TEST_F(Typed, FormatTakesWhatFitsAndLeavesTheRest) {
    using uti::format;
    const std::string wide(70, 'w');
    const std::pair<std::string, std::string> rows[] = {
        {format("%d %5.1f%%|%-4s|", -3, 2.25, "ab"), "-3   2.2%|ab  |"},
        {format("%d %u %lld %hhi", uint64_t{1} << 63, -1, char{'A'}, true),
         "9223372036854775808 -1 65 1"},
        {format("%x %04X %o", -1, uint8_t{255}, 8), "ffffffff 00FF 10"},
        {format("%s %d", 5, "five"), "%s %d"},
        {format("%d %d", 1), "1 %d"},
        {format("%n %*d %9999d %", 1, 2), "%n %*d %9999d %"},
        {format("%s%c", wide, 'c'), wide + 'c'},
        {format("{1} {0} {7}{", 1, std::string_view("two", 2)), "tw 1 "},
        {format("{0} {1} {2} {3}", true, 'c', 0.5, Plain::value), "true c 0.5 -7"},
        {format("100% {0}", 3u), "100% 3"},
        {format(nullptr, 1), ""},
        {format("%s", static_cast<const char *>(nullptr)), ""},
    };
    for (const auto &[made, wanted] : rows)
        EXPECT_EQ(made, wanted);
}

TEST_F(Typed, ModuleReleasesAndCloses) {
    {
        uti::Module module("hpp", 1);
        ASSERT_TRUE(module);
        for (int round = 0; round < 2; ++round)
            for (uint16_t id = 4; id < 40; ++id) // of which C has room for 20
                EXPECT_EQ(module.text(id), "string " + std::to_string(id));
        EXPECT_EQ(module.format(HPP_TWO, std::string("tea"), 2), "tea and 2");
        EXPECT_EQ(module.format(HPP_PRINTED, 7, "x", 0.25, 'c'), "7  |x|0.2|c|100%");
        EXPECT_EQ(module.format(HPP_TWO.operator uint16_t(), 1), "1 and ");
        EXPECT_EQ(module.text(HPP_PLAIN, "ru"), "\xEF\xF0\xEE\xF1\xF2\xEE");
        EXPECT_FALSE(uti::setLanguage("r"));
        EXPECT_TRUE(uti::setLanguage("ru"));
        EXPECT_EQ(uti::language(), "ru");
        EXPECT_EQ(module.text(HPP_TWO), "");
        uti::Module moved = std::move(module);
        EXPECT_EQ(terminal.openFiles, 1);
    }
    EXPECT_EQ(terminal.openFiles, 0);
    EXPECT_EQ(uti::Module("hpp", 2).result(), UTI_RESOURCE_OTHER_VERSION);
    EXPECT_EQ(uti::Module("other").result(), UTI_RESOURCE_NOT_LOADED);
}

TEST_F(Typed, DialogsEndAsInC) {
    serve(dialog(3, ""));
    const uti::Dialog plain{.id = {"m", 1}, .caption = std::string("a caption")};
    const auto ended = [&](std::deque<fake::Event> script, const uti::Dialog &dialog) {
        toolkit.script = std::move(script);
        return uti::confirm(dialog, {.first = "Yes", .second = std::string("No")});
    };
    EXPECT_EQ(ended({{13}}, plain), Outcome::confirmed);
    EXPECT_EQ(ended({{27}}, plain), Outcome::cancelled);
    EXPECT_EQ(ended({}, {.id = {"m", 1}, .timeout = 500}), Outcome::timed_out);
    EXPECT_EQ(ended({}, {.id = {"m", 9}}).code, UTI_DIALOG_NOT_FOUND);

    int questions = 0;
    std::string keys;
    const uti::Result result =
        ended({{'a'}, {'b'}, {'c'}}, {.id = {"m", 1},
                                      .breaks = [&] { return ++questions == 3; },
                                      .key = [&](uint8_t key) { keys += static_cast<char>(key); }});
    EXPECT_EQ(result, Outcome::broken_off);
    EXPECT_EQ(keys, "ab");
    EXPECT_EQ(ended({{'a'}}, {.id = {"m", 1}, .key = [](uint8_t) { return -7; }}).code, -7);
    EXPECT_FALSE(NeedToBreakFunction || RefreshDialogFunction || KeyPostProcessingFunction);
}

// Each dialog asks its own callables, whose state goes with the request.
TEST_F(Typed, CallbacksOfNestedDialogsKeepApart) {
    serve(dialog(3, ""));
    std::string asked;
    const auto token = std::make_shared<int>(0);
    {
        uti::Dialog outer{.id = {"m", 1}};
        outer.breaks = [&asked, token] { return (asked += 'o').empty(); };
        const uti::Dialog copy = outer;
        EXPECT_EQ(token.use_count(), 3);
        toolkit.script = {{'a'}, {'b'}, {13}};
        outer.key = [&](uint8_t) {
            asked += 'k';
            uti::confirm({.id = {"m", 1}, .key = [&](uint8_t) { asked += 'i'; }});
        };
        EXPECT_EQ(uti::confirm(outer), Outcome::cancelled);
        EXPECT_TRUE(copy.breaks);
        asked.erase(0, asked.find('k'));
    }
    EXPECT_EQ(asked, "kii") << "the inner dialog took the place of the outer one";
    EXPECT_EQ(token.use_count(), 1);
    EXPECT_FALSE(NeedToBreakFunction);
}

TEST_F(Typed, EditsListsAndLabelsOwnTheirTexts) {
    serve(dialog(1, group(150) + group(150) + group(157, text(11, "l"))));
    const auto temporary = [](const char *text) { return std::string(40, '.') + text; };
    toolkit.script = {{}, {'7'}, {13}};
    int events = 0;
    const auto edited = uti::edit(
        {.id = {"m", 1},
         .text = temporary("prompt"),
         .labels = {{"l", temporary("label")}},
         .timeout = 5000,
         .refresh =
             [&](uti::Labels &labels) {
                 labels = {{"l", temporary("again")}, {"none", {}}};
                 return ++events == 1;
             }},
        {.value = std::string_view("12x", 2),
         .limits = InputLimits{300, 1, 1},
         .keyPressed = [&](int32_t, std::string &typed) { return !(typed += '8').empty(); }});
    ASSERT_TRUE(edited);
    EXPECT_EQ(*edited, "1278");
    EXPECT_EQ(events, 3);
    EXPECT_EQ(countOf(toolkit.take(), temporary("again")), 1);
    toolkit.script = {{27}};
    EXPECT_EQ(uti::edit({.id = {"m", 1}}).status, Outcome::cancelled);

    serve(dialog(2, group(153)));
    toolkit.script = {{13}};
    toolkit.answers["igMenuBox_GetSelected"] = 2;
    const auto chosen =
        uti::choose({.id = {"m", 1}}, {{temporary("tea"), "2.10", "i.png", true}, "b"});
    EXPECT_EQ(*chosen, 1u);
    toolkit.script = {{13}};
    EXPECT_EQ(*uti::choose({.id = {"m", 1}}, std::vector<std::string>{temporary("a"), "b"}), 1u);
    EXPECT_EQ(uti::choose({.id = {"m", 1}}, std::vector<std::string>(65536)).status.code,
              UTI_DIALOG_TOO_MANY);

    serve(dialog(4, group(152)));
    toolkit.script = {{13}};
    EXPECT_EQ(uti::sign({.id = {"m", 1}}, std::string_view("file")).code, UTI_DIALOG_NOTHING_SAVED);
    serve(dialog(0, group(150)));
    EXPECT_EQ(uti::show({.id = {"m", 1}, .text = temporary("text")}, SHOW_AND_RETURN),
              Outcome::confirmed);
}

TEST_F(Typed, SettingsHaveTypes) {
    uti::Ini ini(std::string_view("shop.ini!", 8));
    EXPECT_EQ(ini.get<int>("NET", "PORT", 8080), 8080);
    EXPECT_EQ(ini.set("NET", "PORT", 70000), 0);
    EXPECT_EQ(ini.set("NET", "HOST", std::string_view("bank.example", 4)), 0);
    EXPECT_EQ(ini.get<int>("net", std::string("port")), 70000);
    EXPECT_EQ(ini.get<uint16_t>("NET", "PORT"), std::nullopt);
    EXPECT_EQ(ini.get<bool>("NET", "PORT"), true);
    EXPECT_EQ(ini.get<std::string>("NET", "HOST"), "bank");
    EXPECT_EQ(ini.get<std::string>("NET", "USER"), std::nullopt);
    EXPECT_EQ(ini.get<std::string>("NET", "USER", "me"), "me");
    EXPECT_EQ(ini.sections(), std::vector<std::string>{"NET"});
    ini.removeSection("NET");
    EXPECT_EQ(ini.get<int>("NET", "PORT", 1), 1);
    Ini_RemoveFileInfoFromCache("shop.ini");
}

TEST_F(Typed, StorageKeepsTypesApart) {
    uti::Storage values, other;
    EXPECT_TRUE(values.put(1, 42) && values.put(2, std::string("text")) && values.put(3, 0.5f) &&
                values.put(4, "") && values.put(5, TerminalTime{1, 2, 3}) &&
                values.put(6, Plain::value) && values.put(7, std::array<uint8_t, 2>{7, 8}));
    EXPECT_FALSE(values.put(8, std::vector<uint8_t>{}));
    EXPECT_EQ(values.get<int64_t>(1), std::nullopt);
    EXPECT_TRUE(other.importBlock(values.exportBlock()));
    values = std::move(other);
    EXPECT_EQ(values.get<int>(1), 42);
    EXPECT_EQ(values.get<std::string>(2), "text");
    EXPECT_EQ(values.get<double>(3), 0.5);
    EXPECT_EQ(values.get<std::string>(4), "");
    EXPECT_EQ(values.get<TerminalTime>(5)->second, 3);
    EXPECT_EQ(values.get<int>(6), -7);
    EXPECT_EQ(values.get<uti::Bytes>(7)->size(), 2u);
    EXPECT_EQ(values.keys().size(), 7u);
    EXPECT_TRUE(values.remove(7) && !values.contains(7));
    EXPECT_EQ(Storage_GetType(values.handle(), 3), STORAGE_DOUBLE);
}

TEST_F(Typed, ListsAreRanges) {
    uti::List<int> list;
    int items[] = {1, 2, 3};
    for (int &item : items)
        EXPECT_TRUE(list.add(item));
    EXPECT_EQ(*static_cast<int *>(First(list.handle())), 1);
    int sum = 0;
    for (int &item : uti::each<int>(list.handle()))
        sum += item++;
    EXPECT_EQ(sum, 6);
    EXPECT_EQ(Current(list.handle()), &items[0]) << "the cursor stays";
    EXPECT_EQ(list.size(), 3u);
    EXPECT_EQ(uti::each<int>(nullptr).begin(), uti::each<int>(nullptr).end());
}

// The search inside the data is that of the library; what it finds is left where it is.
TEST_F(Typed, BerTlvIsReadInPlace) {
    const uint8_t data[] = {0x30, 7, 0x02, 1, 5, 0x9F, 0x02, 1, 6};
    for (const auto &[tag, at] : {std::pair(0x9F02u, 8), {0x02u, 4}, {0x30u, 2}}) {
        const auto found = uti::bertlv::find(data, tag);
        ASSERT_TRUE(found) << tag;
        EXPECT_EQ(found->data(), data + at);
    }
    EXPECT_EQ(uti::bertlv::find(data, 0x9F02)->size(), 1u);
    EXPECT_EQ(uti::bertlv::find(data, 0x03).status, UTI_BERTLV_NOT_FOUND);
    EXPECT_EQ(uti::bertlv::find(uti::Bytes(data).first(8), 0x30).status, UTI_BERTLV_BAD_DATA);
    uint8_t room[8];
    const uint8_t three[] = {1, 2, 3};
    const auto size = uti::bertlv::append(room, 0x9F02, three);
    ASSERT_TRUE(size);
    uti::bertlv::Objects objects(uti::Bytes(room, *size));
    for (const uti::bertlv::Object &object : objects)
        EXPECT_EQ(object.tag, 0x9F02u);
    EXPECT_EQ(objects.result(), UTI_OK);
    EXPECT_EQ(uti::bertlv::append(room, 0x9F02, {}).status, UTI_BERTLV_BAD_OBJECT);
}

TEST_F(Typed, ModemTextsAreOwned) {
    EXPECT_EQ(*uti::gsm::ussd("+CUSD: 0,\"00480069\",72\r"), "Hi");
    EXPECT_EQ(uti::gsm::ussd("+CUSD: 4,\"x\",15\r").status, UTI_GSM_FAILED);
    EXPECT_EQ(*uti::gsm::sms(std::string_view()), "");
    EXPECT_EQ(uti::gsm::sms(std::string(650, 'x')).status, UTI_GSM_FAILED);
}

} // namespace
