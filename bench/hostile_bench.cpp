// hostile_bench.cpp: input made to cost much, each case against half as much of it: what is linear
// takes twice as long. A case is named "what|who|aim"; bench/run makes ratios of them.
#include "tests/streams.h"
#include "uti.h"

#ifdef UTI_LOG
#include "tools/log_scanner.h"
#endif

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <vector>

namespace {

using namespace support;
using benchmark::DoNotOptimize;
using Work = std::function<bool()>; // false when it did not come to what it should

std::string repeated(std::string_view piece, int count) {
    std::string all;
    for (int i = 0; i < count; ++i)
        all += piece;
    return all;
}

void write(const char *name, std::string_view bytes) {
    std::ofstream(name, std::ios::binary) << bytes;
}

// Writes a module with string 1 and gives the work that loads it, does something and closes it.
Work withModule(const std::string &file, std::function<bool()> work) {
    write("hostile.res", file);
    return [=] {
        const bool done = work();
        Resource_Close("hostile");
        return done;
    };
}

std::string moduleOf(const std::string &text) {
    return resourceFile(1, {{0, {{"en", 0, {"", text}}}}});
}

Work childrenOfANode(int count) {
    const std::string block = node(0x8001, repeated(node(2, "", 2, 4), count), 2, 4);
    return [=] {
        ParserNode root, child;
        Parser_Initialize(2, 4);
        Parser_GetRootNodeInBlock(block.data(), static_cast<uint32_t>(block.size()), &root);
        int found = 0;
        while (Parser_GetNextSubNode(&root, &child) == UTI_OK) {
            Parser_GetParameterInsignificant(&child, nullptr);
            ++found;
        }
        return found == count - 1; // an empty one in the last place is not read
    };
}

Work languagesOfASection(int count) {
    std::vector<Language> languages(static_cast<std::size_t>(count), {"de", 0, {}});
    return withModule(resourceFile(1, {{0, languages}}),
                      [] { return Resource_IsValid("hostile", 1) == UTI_OK; });
}

Work nodesOfADialog(int count) {
    using namespace support::describe;
    return withModule(moduleOf(dialog(0, repeated(byte(0, 0), count))),
                      [] { return GetDialogParameters("hostile", 1, DIALOG_MESSAGE) == UTI_OK; });
}

Work wordingWithPlaceholders(int count) {
    return withModule(moduleOf(repeated("{0}{", count)), [] {
        TraceExSettings settings{TRACE_OUTPUT_FILE, 3, "", 1, {"hostile"}, 1 << 30};
        const bool written =
            TraceExOpen(&settings) == UTI_OK && TraceExError("hostile", 1, Long, 5, 0) == UTI_OK;
        TraceExClose();
        std::filesystem::remove("hostile.log");
        return written;
    });
}

// A file of settings, read by the first call for it.
Work settings(const std::string &text, int32_t sections) {
    write("hostile.ini", text);
    return [=] {
        const int32_t found = Ini_GetSectionCount("hostile.ini");
        Ini_RemoveFileInfoFromCache("hostile.ini");
        return found == sections;
    };
}
Work keysOfASection(int count) {
    std::string text = "[s]\n";
    for (int i = 0; i < count; ++i)
        text += "k" + std::to_string(i) + "=\n";
    return settings(text, 1);
}
Work sections(int count) {
    std::string text;
    for (int i = 0; i < count; ++i)
        text += "[s" + std::to_string(i) + "]\n";
    return settings(text, count);
}
Work oneKeyAgain(int count) {
    return settings("[s]\n" + repeated("k=&#65;\n", count), 1);
}
Work lineWithoutEnd(int count) {
    return settings("[s]\n[" + repeated("[=&#", count), 1);
}

Work searchFor(const std::string &bytes) {
    return [=] {
        uint8_t value[8];
        uint32_t size = sizeof value;
        return BerTlv_ExtractSingleTag(reinterpret_cast<const uint8_t *>(bytes.data()),
                                       static_cast<uint32_t>(bytes.size()), 0x5A, &size,
                                       value) == UTI_OK;
    };
}
Work objectsBefore(int count) {
    return searchFor(repeated("\x57\x01x", count) + "\x5A\x01x");
}
Work objectsInsideOthers(int count) {
    return searchFor(
        repeated(std::string("\x70\x0A\x70\x08\x70\x06\x70\x04\x70\x02\x57\0", 12), count) +
        "\x5A\x01x");
}

Work quotesOfUssd(int count) {
    std::string line = "+CUSD: 0," + repeated("\",", count) + "15\r";
    return [=]() mutable {
        char out[8];
        return UTILS_ParseUSSDResponse(line.data(), static_cast<uint32_t>(line.size()), out,
                                       sizeof out) == UTI_GSM_FAILED;
    };
}

#ifdef UTI_LOG
// Headers whose arguments lead from one to the next and fail at the end of the log.
Work headersInALog(int count) {
    const std::string header(
        "\0\x70\0\0\x0B\x07\xEA\x0B\x10\x0C\x0B\x31\x23\x02\x01\x05\0\x01\x0D\0\0\0"
        "\x01x\x0E\0\0\0\x18",
        29);
    const std::string bytes = repeated(header, count);
    return [=] {
        uti::tool::LogScanner scanner(uti::LogKind::trace);
        scanner.append({reinterpret_cast<const uint8_t *>(bytes.data()), bytes.size()});
        uint64_t end = 0;
        for (;;) {
            const auto found = scanner.next(uti::tool::LogScanner::Ahead::nothing);
            if (found.kind == uti::tool::LogScanner::Kind::none)
                return end == bytes.size();
            end = found.offset + found.size;
        }
    };
}
#endif

const struct {
    const char *what;
    int half;
    Work (*prepare)(int count);
} cases[] = {
    {"TLV: empty children of a node", 50000, childrenOfANode},
    {"resources: languages of a section", 1000, languagesOfASection},
    {"dialog: nodes that are none of its own", 6000, nodesOfADialog},
    {"trace text: placeholders of a wording", 8000, wordingWithPlaceholders},
    {"INI: keys of a section", 16000, keysOfASection},
    {"INI: sections", 16000, sections},
    {"INI: the same key again", 50000, oneKeyAgain},
    {"INI: a line without end", 200000, lineWithoutEnd},
    {"BER-TLV: objects before the wanted one", 50000, objectsBefore},
    {"BER-TLV: objects inside one another", 10000, objectsInsideOthers},
    {"USSD: quotes and commas", 100000, quotesOfUssd},
#ifdef UTI_LOG
    {"uti log: headers that lead to headers", 20000, headersInALog},
#endif
};

} // namespace

int main(int argc, char **argv) {
    setenv("default_lang", "en", 1);
    for (const auto &each : cases) {
        for (const int times : {2, 1}) {
            const std::string who = times == 2 ? "|uti|2.2" : "|half of it";
            benchmark::RegisterBenchmark((each.what + who).c_str(), [=](benchmark::State &state) {
                const Work work = each.prepare(times * each.half);
                for (auto _ : state)
                    if (!work())
                        return state.SkipWithError("not done");
            });
        }
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    for (const char *name : {"hostile.res", "hostile.ini"})
        std::filesystem::remove(name);
}
