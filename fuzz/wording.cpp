// Text records with any wording and arguments, against a plain reading of both; the same record in
// binary says the same, whichever output it goes to.
#include "fuzz/terminal.h"

#include "terminal.h"
#include "tests/streams.h"

#include <bit>

using namespace fuzz;

namespace {

std::string print(const char *format, int a, int b, int c) {
    char text[64];
    snprintf(text, sizeof text, format, a, b, c);
    return text;
}

// Arguments as list words with the text that each is to give; 0 ends the list.
struct Arguments {
    TraceWord words[16] = {};
    std::vector<std::string> texts = {};
    std::vector<support::ExactBlock> blocks = {};
    std::size_t count = 0;

    TraceWord keep(std::string_view bytes) {
        return reinterpret_cast<uintptr_t>(blocks.emplace_back(bytes).data());
    }
    void add(Input &in, bool isPrinted) {
        const uint32_t type = 1 + in.below(14), high = in.number();
        const bool isWide = type >= Int64 && type <= Double;
        const uint64_t both = uint64_t{high} << 32 | (isWide ? in.number() : 0);
        const auto a = static_cast<uint8_t>(high >> 16), b = static_cast<uint8_t>(high >> 8),
                   c = static_cast<uint8_t>(high);
        const TerminalDate date{static_cast<int16_t>(high >> 16), b, c, {}};
        const TerminalTime time{a, b, c};
        TraceWord word = high;
        uint32_t second = static_cast<uint32_t>(both); // the word behind, unless it is 0
        std::string text, bytes;
        switch (type) {
        case Char: // a zero ends what is printed
            text = c ? print("'%c'", c, 0, 0) : std::string("'\0'", isPrinted ? 1 : 3);
            break;
        case Byte:
            text = std::to_string(c);
            break;
        case Bool:
            text = c ? "true" : "false";
            break;
        case Short:
        case Word:
            text = std::to_string(static_cast<int16_t>(high));
            break;
        case Long:
        case DWord:
            text = std::to_string(static_cast<int32_t>(high));
            break;
        case Int64:
            text = std::to_string(static_cast<int64_t>(both));
            break;
        case UInt64:
            text = std::to_string(both);
            break;
        case Double:
            text = std::to_string(std::bit_cast<double>(both));
            break;
        case Date:
            word = keep({reinterpret_cast<const char *>(&date), sizeof date});
            text = print("%02d-%02d-%02d", date.year % 100, b, c);
            break;
        case Time:
            word = keep({reinterpret_cast<const char *>(&time), sizeof time});
            text = print("%02d:%02d:%02d", a, b, c);
            break;
        default:
            bytes = type == String ? in.text(200) : in.bytes(60);
            word = in.oneIn(9) ? 0 : keep(type == String ? bytes + '\0' : bytes);
            bytes.resize(word ? bytes.size() : 0);
            second = static_cast<uint32_t>(bytes.size());
            text = type == String ? bytes : "";
            for (const char each : type == String ? "" : bytes)
                text += print(isPrinted ? "0x%02X " : "%02X ", static_cast<uint8_t>(each), 0, 0);
        }
        words[count++] = type;
        words[count++] = word;
        if (isWide || (type == ByteArray && word))
            words[count++] = second;
        texts.push_back(text);
    }
};

std::string expand(std::string_view wording, const std::vector<std::string> &texts) {
    std::string out;
    for (;;) {
        const std::size_t open = wording.find('{'), close = wording.find('}', open);
        out += wording.substr(0, open);
        if (close == wording.npos || open == wording.npos)
            return out;
        const long number = std::strtol(wording.data() + open + 1, nullptr, 10);
        if (number >= 0 && static_cast<std::size_t>(number) < texts.size())
            out += texts[static_cast<std::size_t>(number)];
        wording.remove_prefix(close + 1);
    }
}

} // namespace

void fuzz::run(Input &in) {
    Library library;
    fake::Terminal &terminal = library.terminal;
    const uint32_t output = in.below(4);
    const bool isPrinted = output == TRACE_OUTPUT_PRINTER;
    const std::string wording = in.text(in.oneIn(8) ? 2500 : 60);
    terminal.environment["default_lang"] = "en";
    terminal.files["m.res"] = support::resourceFile(1, {{0, {{"en", 0, {"", wording}}}}});
    openLog(output, 1, "t", 1 << 20);
    armFault(in);

    std::string expected;
    for (int records = 0; records < 4 && !in.isOver(); ++records) {
        Arguments arguments;
        for (uint32_t count = in.below(5); count > 0 && arguments.count <= 12; --count)
            arguments.add(in, isPrinted);
        const TraceWord *w = arguments.words;
        const int32_t result =
            TraceExDebug("m", 1, w[0], w[1], w[2], w[3], w[4], w[5], w[6], w[7], w[8], w[9], w[10],
                         w[11], w[12], w[13], w[14], w[15], 0);
        REQUIRE_UNLESS_STRUCK(result == 0);
        expected += "\r\n26-11-16 11:49:35 [m] " + expand(wording, arguments.texts);
    }
    TraceExClose();
    REQUIRE_UNLESS_STRUCK((isPrinted                       ? terminal.printedText()
                           : output == TRACE_OUTPUT_SERIAL ? terminal.serial
                                                           : terminal.files["t.log"]) == expected);
}
