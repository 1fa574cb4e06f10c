// library_bench.cpp: the trace log, strings and lists, each against what one would use instead. A
// case is named "what|who|aim"; bench/run makes ratios of them.
#include "bench_strings.h"
#include "terminal.h"
#include "uti.h"

#include <benchmark/benchmark.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>

#include <fcntl.h>
#include <libintl.h>
#include <nl_types.h>
#include <unistd.h>

#include <clocale>
#include <concepts>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <list>
#include <string>
#include <string_view>
#include <vector>

namespace {

using benchmark::DoNotOptimize;
using benchmark::State;

constexpr int32_t setSize = 64 << 20; // rotations are rare

// --- trace log

TraceExSettings settings(uint32_t output, uint8_t text) {
    TraceExSettings result{};
    result.output = output;
    result.mode = 2;
    result.text = text;
    result.maxSize = setSize;
    std::strcpy(result.device.baseName, "bench");
    return result;
}

void removeLogs() {
    for (const char *name : {"bench.log", "bench1.log", "bench2.log", "bench3.log", "bench4.log",
                             "bench5.log", "bench6.log", "bench7.log", "raw.log", "spd.log"})
        unlink(name);
}

void writeTrace(State &state, uint32_t output, uint8_t text) {
    const TraceExSettings wanted = settings(output, text);
    if (TraceExOpen(&wanted) != 0)
        return state.SkipWithError("no trace log");
    for (auto _ : state)
        DoNotOptimize(
            TraceExError(BENCH_MODULE, BENCH_RECORD, Long, 12345, String, "a text", Word, 7, 0));
    TraceExClose();
    removeLogs();
}

void traceBuffered(State &state) {
    writeTrace(state, TRACE_OUTPUT_BUFFERED, 0);
}
void traceUnbuffered(State &state) {
    writeTrace(state, TRACE_OUTPUT_FILE, 0);
}
void traceText(State &state) {
    writeTrace(state, TRACE_OUTPUT_BUFFERED, 1);
}

// The bytes of the same record, in the pieces that the log writes.
std::vector<std::string> recordPieces() {
    using namespace std::string_literals;
    return {"\0\0\0\x31"s, "\x0B\x07\xEA\x0B\x10"s, "\x0C\x0B\x31\x23"s,
            "\x02\x01"s,   "\x05\x00\x01"s,         "\x0D\0\0\0\x05"s,
            "bench"s,      "\x06\0\0\x30\x39"s,     "\x0D\0\0\0\x06"s,
            "a text"s,     "\x05\x00\x07"s};
}

int openRaw() {
    return open("raw.log", O_CREAT | O_TRUNC | O_WRONLY | O_CLOEXEC, 0644);
}

void copyWhenFull(State &state) {
    const int file = openRaw();
    const std::vector<std::string> pieces = recordPieces();
    std::vector<char> buffer(8192);
    std::size_t filled = 0;
    for (auto _ : state) {
        for (const std::string &piece : pieces) {
            if (buffer.size() - filled <= piece.size()) {
                DoNotOptimize(write(file, buffer.data(), filled));
                filled = 0;
            }
            std::memcpy(buffer.data() + filled, piece.data(), piece.size());
            filled += piece.size();
        }
    }
    close(file);
    removeLogs();
}

// A logger that forms nothing: a record is its size, the number of a source, whose module and
// wording the file was told once, the time, and the arguments as they lie in memory.
class RawLogger {
public:
    uint64_t addSource(std::string_view module, std::string_view wording) {
        put(uint64_t{0}, ++sources_, module, wording);
        return sources_;
    }

    void put(auto... values) {
        const std::size_t size = (sizeOf(values) + ...);
        if (sizeof buffer_ - filled_ <= sizeof(uint32_t) + size) {
            DoNotOptimize(write(file_, buffer_, filled_));
            filled_ = 0;
        }
        append(static_cast<uint32_t>(size));
        (append(values), ...);
    }

private:
    static std::size_t sizeOf(std::string_view text) { return sizeof(uint32_t) + text.size(); }
    template <std::integral Number>
    static std::size_t sizeOf(Number) {
        return sizeof(Number);
    }

    void append(std::string_view text) {
        append(static_cast<uint32_t>(text.size()));
        std::memcpy(buffer_ + filled_, text.data(), text.size());
        filled_ += text.size();
    }
    template <std::integral Number>
    void append(Number number) {
        std::memcpy(buffer_ + filled_, &number, sizeof number);
        filled_ += sizeof number;
    }

    int file_ = openRaw();
    uint64_t sources_ = 0;
    std::size_t filled_ = 0;
    char buffer_[8192];
};

void rawArguments(State &state) {
    RawLogger logger;
    const uint64_t source = logger.addSource("bench", "record {} of {} with {}");
    const char *text = "a text";
    for (auto _ : state) {
        DoNotOptimize(text);
        logger.put(source, static_cast<int64_t>(time(nullptr)), int32_t{12345},
                   std::string_view(text), int16_t{7});
    }
    removeLogs();
}

void rawWrites(State &state) {
    const int file = openRaw();
    const std::vector<std::string> pieces = recordPieces();
    for (auto _ : state) {
        for (const std::string &piece : pieces)
            DoNotOptimize(write(file, piece.data(), piece.size()));
    }
    close(file);
    removeLogs();
}

void spdlogText(State &state) {
    auto logger = spdlog::basic_logger_st("bench", "spd.log", true);
    logger->set_pattern("%y-%m-%d %H:%M:%S [%n] %v");
    for (auto _ : state)
        logger->error("record {} of {} with {}", 12345, "a text", 7);
    spdlog::drop("bench");
    removeLogs();
}

void traceBelowLevel(State &state) {
    const TraceExSettings wanted = settings(TRACE_OUTPUT_BUFFERED, 0);
    if (TraceExOpen(&wanted) != 0)
        return state.SkipWithError("no trace log");
    for (auto _ : state)
        DoNotOptimize(TraceExDebug(BENCH_MODULE, BENCH_RECORD, Long, 12345, String, "a text", 0));
    TraceExClose();
    removeLogs();
}

__attribute__((noinline)) int32_t doNothing(const char *module, uint32_t, ...) {
    DoNotOptimize(module);
    return -3102;
}

void callThroughPointer(State &state) {
    int32_t (*call)(const char *, uint32_t, ...) = doNothing;
    for (auto _ : state) {
        DoNotOptimize(call);
        DoNotOptimize(call(BENCH_MODULE, BENCH_RECORD, Long, 12345, String, "a text", 0));
    }
}

// --- strings

void storedString(State &state) {
    Resource_Initialize(BENCH_MODULE);
    Resource_SetLanguage("ru");
    if (*Resource_GetString(BENCH_MODULE, BENCH_GREETING) == 0)
        return state.SkipWithError("no string");
    Resource_Release(BENCH_MODULE, BENCH_GREETING);
    for (auto _ : state)
        DoNotOptimize(Resource_GetString(BENCH_MODULE, BENCH_GREETING));
}

void gettextString(State &state) {
    setenv("LANGUAGE", "ru", 1);
    setlocale(LC_ALL, "C.UTF-8");
    bindtextdomain("bench", UTI_BENCH_LOCALES);
    bind_textdomain_codeset("bench", "UTF-8");
    if (std::strcmp(dgettext("bench", "greeting"), "greeting") == 0)
        return state.SkipWithError("no translation");
    for (auto _ : state)
        DoNotOptimize(dgettext("bench", "greeting"));
}

void catgetsString(State &state) {
    const nl_catd catalog = catopen(UTI_BENCH_CATALOG, 0);
    if (*catgets(catalog, 1, 1, "") == 0)
        return state.SkipWithError("no catalog");
    for (auto _ : state)
        DoNotOptimize(catgets(catalog, 1, 1, ""));
    catclose(catalog);
}

// The string of the newest of so many modules.
template <int modules>
void stringAmongModules(State &state) {
    std::string name;
    for (int i = 0; i < modules; ++i) {
        name = "bench" + std::to_string(i);
        std::filesystem::copy_file("bench.res", name + ".res",
                                   std::filesystem::copy_options::overwrite_existing);
        if (*Resource_GetString(name.c_str(), BENCH_GREETING) == 0)
            return state.SkipWithError("no string");
    }
    for (auto _ : state)
        DoNotOptimize(Resource_GetString(name.c_str(), BENCH_GREETING));
    for (int i = 0; i < modules; ++i) {
        name = "bench" + std::to_string(i);
        Resource_Close(name.c_str());
        std::filesystem::remove(name + ".res");
    }
}

// --- containers

void listAppend(State &state) {
    int item = 0;
    for (auto _ : state) {
        List *list = List_Create();
        for (int i = 0; i < 1000; ++i)
            list->AddTail(list, &item);
        List_Destroy(list);
    }
}

void stdListAppend(State &state) {
    int item = 0;
    for (auto _ : state) {
        std::list<void *> list;
        for (int i = 0; i < 1000; ++i)
            list.push_back(&item);
        DoNotOptimize(list);
    }
}

BENCHMARK(traceBuffered)->Name("trace: binary record, buffered|uti|1.5");
BENCHMARK(copyWhenFull)->Name("trace: binary record, buffered|copy and write when full");
BENCHMARK(rawArguments)->Name("trace: binary record, buffered|raw arguments|-");
BENCHMARK(traceText)->Name("trace: text record, buffered|uti|0.6");
BENCHMARK(spdlogText)->Name("trace: text record, buffered|spdlog");
BENCHMARK(traceUnbuffered)->Name("trace: binary record, unbuffered|uti|1.05");
BENCHMARK(rawWrites)->Name("trace: binary record, unbuffered|raw writes");
BENCHMARK(traceBelowLevel)->Name("trace: record below the level|uti|3");
BENCHMARK(callThroughPointer)->Name("trace: record below the level|call through a pointer");
BENCHMARK(storedString)->Name("resources: stored string|uti|0.31");
BENCHMARK(gettextString)->Name("resources: stored string|dgettext");
BENCHMARK(catgetsString)->Name("resources: stored string|catgets|1.5");
BENCHMARK(stringAmongModules<1>)->Name("resources: stored string, newest of 1 module|uti|");
BENCHMARK(stringAmongModules<10>)->Name("resources: stored string, newest of 10 modules|uti|");
BENCHMARK(stringAmongModules<100>)->Name("resources: stored string, newest of 100 modules|uti|");
BENCHMARK(listAppend)->Name("list: append 1000|uti|0.8");
BENCHMARK(stdListAppend)->Name("list: append 1000|std::list");

} // namespace

BENCHMARK_MAIN();
