// tool_bench.cpp: whole runs of the uti command against whole runs of what one would use instead,
// each in the processor time of its process. The command is that of this build, or the one that the
// environment variable UTI_TOOL names. A case is named "what|who|aim"; bench/run makes ratios.
#include "bench/process.h"
#include "uti.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace {

namespace fs = std::filesystem;
using benchmark::State;
using uti::bench::run;

constexpr int64_t logSize = 10 << 20;
constexpr int dialogCount = 1000;
constexpr const char *languages[] = {"en", "ru", "de"};

std::string tool() {
    const char *named = std::getenv("UTI_TOOL");
    return named ? named : UTI_BENCH_TOOL;
}

// An empty folder, the present one as long as this lives.
class Folder {
public:
    Folder() : path_(fs::temp_directory_path() / ("uti-tools-" + std::to_string(getpid()))) {
        fs::create_directories(path_);
        fs::current_path(path_);
    }
    ~Folder() {
        fs::current_path(before_);
        fs::remove_all(path_);
    }
    Folder(const Folder &) = delete;
    Folder &operator=(const Folder &) = delete;

private:
    const fs::path before_ = fs::current_path();
    const fs::path path_;
};

void measure(State &state, const std::vector<std::vector<std::string>> &commands) {
    for (auto _ : state) {
        double sum = 0;
        for (const auto &command : commands) {
            const double time = run(command, "out");
            if (time < 0)
                return state.SkipWithError("a command failed");
            sum += time;
        }
        state.SetIterationTime(sum);
    }
}

// A log of records with three arguments, and the resource file with their wording.
bool writeLog() {
    fs::copy_file(UTI_BENCH_RESOURCES, "bench.res");
    TraceExSettings settings{};
    settings.output = TRACE_OUTPUT_BUFFERED;
    settings.mode = 1;
    settings.maxSize = INT32_MAX;
    std::strcpy(settings.device.baseName, "log");
    if (TraceExOpen(&settings) != 0)
        return false;
    for (int64_t written = 0; written < logSize; written += 61)
        TraceExError("bench", 1, Long, 12345, String, "a text", Word, 7, 0);
    TraceExClose();
    return true;
}

void logAsLines(State &state) {
    const Folder folder;
    if (!writeLog())
        return state.SkipWithError("no log");
    measure(state, {{tool(), "log", "log.log"}});
}

void logDecoder(State &state) {
    const Folder folder;
    if (!writeLog())
        return state.SkipWithError("no log");
    measure(state, {{"python3", UTI_BENCH_DECODER, "log.log"}});
}

void catOfLines(State &state) {
    const Folder folder;
    if (!writeLog() || run({tool(), "log", "log.log"}, "lines") < 0)
        return state.SkipWithError("no lines");
    measure(state, {{"cat", "lines"}});
}

std::string textOf(const char *what, int number) {
    return std::string(what) + " of dialog " + std::to_string(number);
}

void compileDialogs(State &state) {
    const Folder folder;
    std::ofstream source("many.toml");
    source << "module = \"many\"\n[languages]\n";
    for (const char *language : languages)
        source << language << " = 0\n";
    source << "[strings]\n";
    for (int i = 0; i < 2 * dialogCount; ++i) {
        source << "TEXT_" << i << " = { id = " << 0x1000 + i;
        for (const char *language : languages)
            source << ", " << language << " = \"" << textOf(i % 2 ? "Text" : "Caption", i / 2)
                   << '"';
        source << " }\n";
    }
    for (int i = 0; i < dialogCount; ++i) {
        // A table of the file holds some 300 of them.
        source << "[dialogs.DIALOG_" << i << "]\nid = " << 0x2000 + i / 250 * 0x1000 + i % 250
               << "\ntype = \"confirmation\"\ncaption = { area = [0, 0, 240, 34] }\n"
                  "edit = { area = [8, 40, 222, 40] }\n[dialogs.DIALOG_"
               << i << ".texts]\ncaption = \"TEXT_" << 2 * i << "\"\ntext = \"TEXT_" << 2 * i + 1
               << "\"\n";
    }
    source.close();
    fs::create_directory("made");
    measure(state, {{tool(), "compile", "many.toml", "-o", "made"}});
}

void formatMessages(State &state) {
    const Folder folder;
    std::vector<std::vector<std::string>> commands;
    for (const std::string language : languages) {
        std::ofstream source(language + ".po");
        source << "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n";
        for (int i = 0; i < 2 * dialogCount; ++i)
            source << "msgid \"TEXT_" << i << "\"\nmsgstr \""
                   << textOf(i % 2 ? "Text" : "Caption", i / 2) << "\"\n";
        commands.push_back({"msgfmt", "-o", language + ".mo", language + ".po"});
    }
    measure(state, commands);
}

// clang-format off
BENCHMARK(logAsLines)->Name("tools: log of 10 MB as lines|uti|")->UseManualTime();
BENCHMARK(catOfLines)->Name("tools: log of 10 MB as lines|cat of the lines")->UseManualTime();
BENCHMARK(logDecoder)->Name("tools: log of 10 MB as lines|decoder in Python")->UseManualTime();
BENCHMARK(compileDialogs)->Name("tools: 1,000 dialogs in 3 languages|uti|")->UseManualTime();
BENCHMARK(formatMessages)->Name("tools: 1,000 dialogs in 3 languages|msgfmt of as many texts")->UseManualTime();
// clang-format on

} // namespace

BENCHMARK_MAIN();
