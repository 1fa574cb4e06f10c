// driver.cpp: what runs a harness: libFuzzer, or without it a main that runs the files named, and
// those in the folders named, once each.
#include "fuzz/harness.h"

#include <filesystem>
#include <fstream>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size);

int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size) {
    fuzz::Input in({reinterpret_cast<const char *>(data), size});
    fuzz::run(in);
    return 0;
}

#ifndef UTI_FUZZ
int main(int argc, char **argv) {
    int replayed = 0;
    for (int i = 1; i < argc; ++i)
        for (const auto &entry : std::filesystem::recursive_directory_iterator(argv[i])) {
            std::ifstream file(entry.path(), std::ios::binary);
            const std::string bytes{std::istreambuf_iterator<char>(file), {}};
            printf("%s\n", entry.path().c_str());
            fflush(stdout);
            fuzz::Input in(bytes);
            fuzz::run(in);
            ++replayed;
        }
    return replayed > 0 ? 0 : 2;
}
#endif
