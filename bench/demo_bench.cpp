// demo_bench.cpp: a whole run of the demo application by its key script, without a display, as a
// process of its own. Its time is the processor time of that process. A case is named
// "what|who|aim"; there is nothing to hold this one against.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

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

double seconds(const timeval &time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

// Runs the shop and gives the processor time that it took, negative when it failed.
double runShop(const fs::path &folder) {
    const pid_t child = fork();
    if (child == 0) {
        setenv("UTI_SCRIPT", UTI_SHOP_SCRIPT, 1);
        setenv("UTI_OUT", (folder / "pictures").c_str(), 1);
        setenv("UTI_PRINTER", (folder / "printer").c_str(), 1);
        execl(UTI_SHOP, UTI_SHOP, folder.c_str(), nullptr);
        _exit(127);
    }
    int status;
    rusage used;
    if (child < 0 || wait4(child, &status, 0, &used) != child || status != 0)
        return -1;
    return seconds(used.ru_utime) + seconds(used.ru_stime);
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
