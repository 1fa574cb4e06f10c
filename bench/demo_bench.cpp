// demo_bench.cpp: a whole run of the demo application by its key script, without a display, as a
// process of its own. Its time is the processor time of that process. A case is named
// "what|who|aim"; there is nothing to hold this one against.
#include "bench/process.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>

namespace {

namespace fs = std::filesystem;

// An empty folder with what the shop reads, as long as this lives.
class ShopFolder {
public:
    ShopFolder() : path_(fs::temp_directory_path() / ("uti-shop-" + std::to_string(getpid()))) {
        fs::create_directories(path_ / "pictures");
        for (const char *name : {"shop.res", "utils_rc.res", "images"})
            fs::create_symlink(fs::path(UTI_SHOP).parent_path() / name, path_ / name);
    }
    ~ShopFolder() { fs::remove_all(path_); }
    ShopFolder(const ShopFolder &) = delete;
    ShopFolder &operator=(const ShopFolder &) = delete;

    const fs::path &path() const { return path_; }

private:
    fs::path path_;
};

// Runs the shop and gives the processor time that it took, negative when it failed.
double runShop(const fs::path &folder) {
    setenv("UTI_SCRIPT", UTI_SHOP_SCRIPT, 1);
    setenv("UTI_OUT", (folder / "pictures").c_str(), 1);
    setenv("UTI_PRINTER", (folder / "printer").c_str(), 1);
    return uti::bench::run({UTI_SHOP, folder.string()});
}

void demoRun(benchmark::State &state) {
    for (auto _ : state) {
        const ShopFolder folder;
        const double time = runShop(folder.path());
        if (time < 0)
            return state.SkipWithError("the shop failed");
        state.SetIterationTime(time);
    }
}

BENCHMARK(demoRun)->Name("demo: a whole run of the shop|uti|")->UseManualTime();

} // namespace

BENCHMARK_MAIN();
