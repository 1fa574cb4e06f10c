// hpp_bench.cpp: the typed face against the same calls in C. A case is named "what|who|aim";
// bench/run makes ratios of them.
#include "terminal.h"
#include "typed_strings.hpp"
#include "uti.hpp"

#include <benchmark/benchmark.h>

#include <unistd.h>

#include <cstring>
#include <string>

namespace {

using benchmark::DoNotOptimize;
using benchmark::State;

// What the records say, hidden from the optimiser: otherwise the peer's arguments would be
// constants.
struct Said {
    int32_t total = 12345;
    int64_t big = 1;
    double price = 2.5;
    const char *name = "a text";
    TerminalDate date{2026, 11, 23, {}};
    TerminalTime time{6, 7, 8};
};

// A log in mode 2, so records for debugging are below the level, or none.
template <class Call>
void measure(State &state, bool isOpen, Call call) {
    TraceExSettings settings{};
    settings.output = TRACE_OUTPUT_BUFFERED;
    settings.mode = 2;
    settings.maxSize = 64 << 20;
    std::strcpy(settings.device.baseName, "typed");
    if (isOpen && TraceExOpen(&settings) != 0)
        return state.SkipWithError("no trace log");
    Said said;
    for (auto _ : state) {
        DoNotOptimize(said);
        DoNotOptimize(call(said));
    }
    TraceExClose();
    unlink("typed.log");
}

uint64_t bitsOf(double value) {
    uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

int32_t typedNumber(const Said &said) {
    return uti::trace::debug(TYPED_MODULE, 1, said.total);
}
int32_t plainNumber(const Said &said) {
    return TraceExDebug(TYPED_MODULE, 1, Long, said.total, 0);
}

int32_t typedRecord(const Said &said) {
    return uti::trace::debug(TYPED_RECORD, said.total, said.name, uint16_t{7});
}
int32_t plainRecord(const Said &said) {
    return TraceExDebug(TYPED_MODULE, TYPED_RECORD, Long, said.total, String, said.name, Word, 7,
                        0);
}

int32_t typedAll(const Said &said) {
    return uti::trace::debug(TYPED_MODULE, 1, said.total, said.big, said.price, said.name,
                             said.date, said.time);
}
int32_t plainAll(const Said &said) {
    return TraceExDebug(TYPED_MODULE, 1, Long, said.total, Int64, UTI_TRACE_HALVES(said.big),
                        Double, UTI_TRACE_HALVES(bitsOf(said.price)), String, said.name, Date,
                        &said.date, Time, &said.time, 0);
}

int32_t typedWritten(const Said &said) {
    return uti::trace::support(TYPED_RECORD, said.total, said.name, uint16_t{7});
}
int32_t plainWritten(const Said &said) {
    return TraceExSupport(TYPED_MODULE, TYPED_RECORD, Long, said.total, String, said.name, Word, 7,
                          0);
}

template <int32_t (*call)(const Said &), bool isOpen = true>
void record(State &state) {
    measure(state, isOpen, call);
}

void typedText(State &state) {
    uti::Module module(TYPED_MODULE);
    if (!module)
        return state.SkipWithError("no module");
    uti::setLanguage("en");
    for (auto _ : state)
        DoNotOptimize(module.text(TYPED_GREETING));
}
void plainText(State &state) {
    Resource_Initialize(TYPED_MODULE);
    Resource_SetLanguage("en");
    for (auto _ : state) {
        std::string copy = Resource_GetString(TYPED_MODULE, TYPED_GREETING);
        Resource_Release(TYPED_MODULE, TYPED_GREETING);
        DoNotOptimize(copy);
    }
    Resource_Close(TYPED_MODULE);
}

BENCHMARK(record<typedNumber>)->Name("typed: number below the level|uti|1.05");
BENCHMARK(record<plainNumber>)->Name("typed: number below the level|in C");
BENCHMARK(record<typedRecord>)->Name("typed: record below the level|uti|1.05");
BENCHMARK(record<plainRecord>)->Name("typed: record below the level|in C");
BENCHMARK(record<typedAll>)->Name("typed: six arguments below the level|uti|1.05");
BENCHMARK(record<plainAll>)->Name("typed: six arguments below the level|in C");
BENCHMARK(record<typedRecord, false>)->Name("typed: record while closed|uti|1.05");
BENCHMARK(record<plainRecord, false>)->Name("typed: record while closed|in C");
BENCHMARK(record<typedWritten>)->Name("typed: record written|uti|1.05");
BENCHMARK(record<plainWritten>)->Name("typed: record written|in C");
BENCHMARK(typedText)->Name("typed: copy of a string|uti|1.05");
BENCHMARK(plainText)->Name("typed: copy of a string|in C");

} // namespace

BENCHMARK_MAIN();
