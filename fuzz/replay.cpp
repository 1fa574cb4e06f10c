// replay.cpp: the main of a harness without libFuzzer: runs the files named, and those in the
// folders named, once each.
#include "fuzz/harness.h"

#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace {

int replayed;

void replay(const fs::path &path) {
    std::ifstream file(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    printf("%s\n", path.c_str());
    fflush(stdout);
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(bytes.data()), bytes.size());
    ++replayed;
}

} // namespace

int main(int argc, char **argv) {
    for (int i = 1; i < argc; ++i) {
        if (!fs::is_directory(argv[i]))
            replay(argv[i]);
        else
            for (const auto &entry : fs::directory_iterator(argv[i]))
                replay(entry.path());
    }
    return replayed > 0 ? 0 : 2;
}
