// storage_bench.cpp: finding a value in stores of many sizes, against a hash map of owned bytes,
// and what a block costs whose keys all fall into one bucket. A case is named "what|who|aim";
// bench/run makes ratios of them.
#include "uti.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

using benchmark::DoNotOptimize;
using benchmark::State;

template <uint32_t keyCount>
void storageGet(State &state) {
    const Storage storage = Storage_Create();
    for (uint32_t key = 0; key < keyCount; ++key)
        Storage_PutLong(storage, key * 7919, static_cast<int32_t>(key));
    uint32_t key = 0;
    int32_t value = 0;
    for (auto _ : state) {
        DoNotOptimize(Storage_GetLong(storage, key * 7919, &value));
        DoNotOptimize(value);
        key = key + 1 < keyCount ? key + 1 : 0;
    }
    Storage_Free(storage);
}

template <uint32_t keyCount>
void mapFind(State &state) {
    std::unordered_map<uint32_t, std::string> map; // values of any type, so owned bytes
    for (uint32_t key = 0; key < keyCount; ++key)
        map[key * 7919] = std::string(reinterpret_cast<const char *>(&key), sizeof key);
    uint32_t key = 0;
    int32_t value = 0;
    for (auto _ : state) {
        const auto found = map.find(key * 7919);
        if (found != map.end())
            std::memcpy(&value, found->second.data(), sizeof value);
        DoNotOptimize(value);
        key = key + 1 < keyCount ? key + 1 : 0;
    }
}

// Imports a block of 80,000 values with the keys that `takes` takes, and compares the two.
template <class Takes>
void importAndCompare(State &state, Takes takes) {
    const Storage storage = Storage_Create(), copy = Storage_Create();
    uint32_t count = 0;
    for (uint32_t key = 0; count < 80'000; ++key) {
        if (takes(key) && ++count)
            Storage_PutLong(storage, key, 1);
    }
    void *block = nullptr;
    uint32_t size = 0;
    Storage_Export(storage, &block, &size);
    for (auto _ : state) {
        if (!Storage_Import(copy, block, size) || Storage_Compare(storage, copy) != 0)
            return state.SkipWithError("not the same");
    }
    Storage_MemFree(block);
    Storage_Free(storage);
    Storage_Free(copy);
}

void importOfOneBucket(State &state) {
    importAndCompare(state, [](uint32_t key) { return CalcHash(key) == 5; });
}

void importOfAllBuckets(State &state) {
    importAndCompare(state, [](uint32_t) { return true; });
}

#define GET(keys, name, aim)                                                                       \
    BENCHMARK(storageGet<keys>)->Name("storage: get at " name " keys|uti|" aim);                   \
    BENCHMARK(mapFind<keys>)->Name("storage: get at " name " keys|std::unordered_map")

GET(10, "10", "1.5");
GET(100, "100", "1.2");
GET(2000, "2,000", "4");
GET(100000, "100,000", "4");
BENCHMARK(importOfOneBucket)->Name("storage: import, compare 80,000 keys of one bucket|uti|20");
BENCHMARK(importOfAllBuckets)->Name("storage: import, compare 80,000 keys of one bucket|of all");

} // namespace

BENCHMARK_MAIN();
