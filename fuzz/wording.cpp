// Text records with any wording and arguments, against a plain reading of both; the same record in
// binary says the same, whichever output it goes to.
#include "fuzz/terminal.h"

#include "terminal.h"
#include "tests/streams.h"

#include <bit>
#include <vector>

using namespace fuzz;

namespace {

// Arguments as list words with the text that each is to give; 0 ends the list.
struct Arguments {
    TraceWord words[16] = {};
    std::vector<std::string> texts = {};
    std::vector<support::ExactBlock> blocks = {};
    TerminalDate dates[8] = {};
    TerminalTime times[8] = {};
    std::size_t count = 0;

    bool add(Input &in, bool isPrinted) {
        const uint32_t type = 1 + in.below(14);
        if (count > 12)
            return false;
        const uint32_t high = in.number(),
                       low = type >= Int64 && type <= Double ? in.number() : high;
        const uint64_t both = uint64_t{high} << 32 | low;
        char text[512] = "";
        words[count++] = type;
        words[count++] = high;
        if (type >= Int64 && type <= Double)
            words[count++] = low;
        const auto print = [&](const char *format, auto... values) {
            snprintf(text, sizeof text, format, values...);
        };
        TerminalDate &date = dates[texts.size()];
        TerminalTime &time = times[texts.size()];
        const long long number = type == Byte    ? static_cast<long long>(high & 0xFF)
                                 : type <= Word  ? static_cast<int16_t>(high)
                                 : type <= DWord ? static_cast<int32_t>(high)
                                                 : static_cast<long long>(both);
        if (type == Char)
            text[0] = text[2] = '\'', text[1] = static_cast<char>(high);
        else if (type == Bool)
            print("%s", high & 0xFF ? "true" : "false");
        else if (type == UInt64)
            print("%llu", static_cast<unsigned long long>(both));
        else if (type == Double)
            print("%f", std::bit_cast<double>(both));
        else if (type < Date)
            print("%lld", number);
        else if (type == Date) {
            date = {static_cast<int16_t>(high >> 16),
                    static_cast<uint8_t>(high >> 8),
                    static_cast<uint8_t>(high),
                    {}};
            words[count - 1] = reinterpret_cast<uintptr_t>(&date);
        } else if (type == Time) {
            time = {static_cast<uint8_t>(high >> 16), static_cast<uint8_t>(high >> 8),
                    static_cast<uint8_t>(high)};
            words[count - 1] = reinterpret_cast<uintptr_t>(&time);
        } else {
            const std::string bytes = type == String ? in.text(200) : in.bytes(60);
            blocks.emplace_back(type == String ? bytes + '\0' : bytes);
            words[count - 1] = in.oneIn(9) ? 0 : reinterpret_cast<uintptr_t>(blocks.back().data());
            const bool isNull = words[count - 1] == 0;
            if (type == ByteArray && !isNull)
                words[count++] = bytes.size();
            std::string shown = type == String && !isNull ? bytes : "";
            for (const char c : type == ByteArray && !isNull ? bytes : "") {
                print(isPrinted ? "0x%02X " : "%02X ",
                      static_cast<unsigned>(static_cast<uint8_t>(c)));
                shown += text;
            }
            texts.push_back(shown);
            return true;
        }
        if (type == Date)
            print("%02d-%02d-%02d", date.year % 100, date.month, date.day);
        if (type == Time)
            print("%02d:%02d:%02d", time.hour, time.minute, time.second);
        const bool isZero = type == Char && text[1] == 0; // which ends what is printed
        texts.push_back(isZero ? std::string(isPrinted ? "'" : std::string("'\0'", 3)) : text);
        return true;
    }
};

std::string expand(std::string_view wording, const std::vector<std::string> &texts) {
    std::string out;
    for (;;) {
        const std::size_t open = wording.find('{'), close = wording.find('}', open);
        out += wording.substr(0, open);
        if (close == wording.npos || open == wording.npos)
            return out;
        const std::string inside(wording.substr(open + 1));
        const long number = std::strtol(inside.c_str(), nullptr, 10);
        if (number >= 0 && static_cast<std::size_t>(number) < texts.size())
            out += texts[static_cast<std::size_t>(number)];
        wording.remove_prefix(close + 1);
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size) {
    Library library;
    Input in(data, size);
    const uint32_t output = in.below(4);
    const bool isPrinted = output == TRACE_OUTPUT_PRINTER;
    const std::string wording = in.text(in.oneIn(8) ? 2500 : 60);
    library.terminal.environment["default_lang"] = "en";
    library.terminal.files["m.res"] = support::resourceFile(1, {{0, {{"en", 0, {"", wording}}}}});
    openLog(output, 1, "t", 1 << 20);
    armFault(in);

    std::string expected;
    for (int records = 0; records < 4 && !in.isOver(); ++records) {
        Arguments arguments;
        for (uint32_t count = in.below(5); count > 0 && arguments.add(in, isPrinted); --count) {
        }
        const TraceWord *w = arguments.words;
        const int32_t result =
            TraceExDebug("m", 1, w[0], w[1], w[2], w[3], w[4], w[5], w[6], w[7], w[8], w[9], w[10],
                         w[11], w[12], w[13], w[14], w[15], 0);
        REQUIRE(result == 0 || fake::faultStruck());
        expected += "\r\n26-11-16 11:49:35 [m] " + expand(wording, arguments.texts);
    }
    const bool isExact = !fake::faultStruck();
    fake::disarm();
    TraceExClose();
    const std::string written = isPrinted                       ? library.terminal.printedText()
                                : output == TRACE_OUTPUT_SERIAL ? library.terminal.serial
                                                                : library.terminal.files["t.log"];
    REQUIRE(!isExact || written == expected);
    return 0;
}
