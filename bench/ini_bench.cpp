// ini_bench.cpp: INI files, each case once with uti and once with each of its peers: inih (through
// its INIReader, which cannot write), iniparser and simpleini. All of them read from disk and write
// into memory, so that the cases compare the libraries and not what a system call costs. A case is
// named "what|who|aim"; bench/run makes ratios of them.
#include "terminal.h"
#include "uti.h"

#define SI_NO_CONVERSION // texts are bytes; its Unicode converters are not packaged
#include <INIReader.h>
#include <SimpleIni.h>
#include <benchmark/benchmark.h>
#include <iniparser/iniparser.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <deque>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

// The platform's files: one is written at a time.
namespace {

constexpr int32_t writtenHandle = INT32_MAX;
std::string written;

} // namespace

int32_t File_Open(const char *path, int32_t mode) {
    if (mode == FILE_MODE_READ)
        return open(path, O_RDONLY);
    written.clear();
    return writtenHandle;
}

int32_t File_Close(int32_t handle) {
    return handle == writtenHandle ? 0 : close(handle);
}

int32_t File_Read(int32_t handle, void *buffer, uint32_t count) {
    return static_cast<int32_t>(read(handle, buffer, count));
}

int32_t File_Write(int32_t, const void *buffer, uint32_t count) {
    written.append(static_cast<const char *>(buffer), count);
    return static_cast<int32_t>(count);
}

int32_t File_GetLength(int32_t handle) {
    struct stat status;
    return fstat(handle, &status) == 0 ? static_cast<int32_t>(status.st_size) : -1;
}

int32_t File_IsValid(const char *) {
    return written.empty() ? 0 : 1;
}

int32_t File_Delete(const char *) {
    written.clear();
    return 0;
}

namespace {

// A value's name in the forms that the libraries ask for.
struct Name {
    Name(const std::string &sectionName, const std::string &keyName)
        : section(sectionName), key(keyName), joined(sectionName + ":" + keyName) {}

    std::string section;
    std::string key;
    std::string joined;
};

// Each library as a file that the constructor loads.

class Uti {
public:
    explicit Uti(const std::string &path) : path_(path) {
        benchmark::DoNotOptimize(Ini_GetSectionCount(path_.c_str()));
    }
    ~Uti() { Ini_RemoveFileInfoFromCache(path_.c_str()); }

    bool get(const Name &name) {
        char value[256];
        return Ini_GetStr(path_.c_str(), name.section.c_str(), name.key.c_str(), value,
                          sizeof value) == UTI_OK;
    }
    bool set(const Name &name, const char *value) {
        return Ini_SetStr(path_.c_str(), name.section.c_str(), name.key.c_str(), value) == UTI_OK;
    }

private:
    const std::string &path_;
};

class Inih {
public:
    explicit Inih(const std::string &path) : reader_(path) {}

    bool get(const Name &name) { return !reader_.GetString(name.section, name.key, "").empty(); }

private:
    INIReader reader_;
};

class IniParser {
public:
    explicit IniParser(const std::string &path) : dictionary_(iniparser_load(path.c_str())) {}
    ~IniParser() { iniparser_freedict(dictionary_); }

    bool get(const Name &name) {
        return iniparser_getstring(dictionary_, name.joined.c_str(), nullptr) != nullptr;
    }
    bool set(const Name &name, const char *value) {
        if (iniparser_set(dictionary_, name.joined.c_str(), value) != 0)
            return false;
        char *text = nullptr;
        std::size_t size = 0;
        std::FILE *file = open_memstream(&text, &size);
        iniparser_dump_ini(dictionary_, file);
        std::fclose(file);
        std::free(text);
        return size > 0;
    }

private:
    dictionary *dictionary_;
};

class SimpleIni {
public:
    explicit SimpleIni(const std::string &path) { ini_.LoadFile(path.c_str()); }

    bool get(const Name &name) {
        return ini_.GetValue(name.section.c_str(), name.key.c_str()) != nullptr;
    }
    bool set(const Name &name, const char *value) {
        std::string text;
        return ini_.SetValue(name.section.c_str(), name.key.c_str(), value) >= 0 &&
               ini_.Save(text) >= 0;
    }

private:
    CSimpleIniA ini_;
};

// A file of sections "section0", "section1" and so on, all with the keys "key0", "key1" and so on.
class Sample {
public:
    Sample(int sections, int keys, int number = 0)
        : path_(std::filesystem::temp_directory_path() /
                ("uti-bench-" + std::to_string(getpid()) + "-" + std::to_string(number) + ".ini")),
          sections_(sections), keys_(keys) {
        std::ofstream file(path_);
        for (int section = 0; section < sections_; ++section) {
            file << "[section" << section << "]\n";
            for (int key = 0; key < keys_; ++key)
                file << "key" << key << " = value number " << key << '\n';
        }
    }
    ~Sample() { std::filesystem::remove(path_); }

    const std::string &path() const { return path_; }

    // A thousand names all over the file.
    std::vector<Name> names() const {
        std::vector<Name> names;
        for (int i = 0; i < 1000; ++i)
            names.emplace_back("section" + std::to_string(i * 7 % sections_),
                               "key" + std::to_string(i * 7 % keys_));
        return names;
    }

private:
    const std::string path_;
    int sections_;
    int keys_;
};

template <class Library, int sections, int keys>
void parse(benchmark::State &state) {
    const Sample sample(sections, keys);
    for (auto _ : state)
        Library file(sample.path());
}

template <class Library, int sections, int keys>
void get(benchmark::State &state) {
    const Sample sample(sections, keys);
    Library file(sample.path());
    const std::vector<Name> names = sample.names();
    std::size_t next = 0;
    for (auto _ : state) {
        if (!file.get(names[next]))
            state.SkipWithError("value missing");
        next = next + 1 < names.size() ? next + 1 : 0;
    }
}

// A value of the newest of so many files in the cache.
template <int files>
void getAmongFiles(benchmark::State &state) {
    std::deque<Sample> samples;
    std::deque<Uti> cached;
    for (int i = 0; i < files; ++i)
        cached.emplace_back(samples.emplace_back(1, 200, i).path());
    const Name name("section0", "key7");
    for (auto _ : state) {
        if (!cached.back().get(name))
            state.SkipWithError("value missing");
    }
}

template <class Library, int sections, int keys>
void set(benchmark::State &state) {
    const Sample sample(sections, keys);
    Library file(sample.path());
    const Name name("section0", "key1");
    const char *values[] = {"a new value", "another one"};
    for (auto _ : state) {
        std::swap(values[0], values[1]);
        if (!file.set(name, values[0]))
            state.SkipWithError("value not set");
    }
}

// clang-format off
BENCHMARK(parse<Uti, 2, 9>)->Name("ini: parse of 20 lines|uti|1");
BENCHMARK(parse<Inih, 2, 9>)->Name("ini: parse of 20 lines|inih");
BENCHMARK(parse<IniParser, 2, 9>)->Name("ini: parse of 20 lines|iniparser");
BENCHMARK(parse<SimpleIni, 2, 9>)->Name("ini: parse of 20 lines|simpleini");

BENCHMARK(parse<Uti, 1000, 20>)->Name("ini: parse of 1,000 sections|uti|1");
BENCHMARK(parse<Inih, 1000, 20>)->Name("ini: parse of 1,000 sections|inih");
BENCHMARK(parse<IniParser, 1000, 20>)->Name("ini: parse of 1,000 sections|iniparser");
BENCHMARK(parse<SimpleIni, 1000, 20>)->Name("ini: parse of 1,000 sections|simpleini");

BENCHMARK(parse<Uti, 1, 20000>)->Name("ini: parse of 20,000 keys in one section|uti|1.5");
BENCHMARK(parse<Uti, 100, 200>)->Name("ini: parse of 20,000 keys in one section|uti, in 100 sections");

BENCHMARK(getAmongFiles<1>)->Name("ini: get, newest of 1 file|uti|");
BENCHMARK(getAmongFiles<10>)->Name("ini: get, newest of 10 files|uti|");
BENCHMARK(getAmongFiles<100>)->Name("ini: get, newest of 100 files|uti|");

BENCHMARK(get<Uti, 1, 200>)->Name("ini: get among 200 keys|uti|1");
BENCHMARK(get<Inih, 1, 200>)->Name("ini: get among 200 keys|inih");
BENCHMARK(get<IniParser, 1, 200>)->Name("ini: get among 200 keys|iniparser");
BENCHMARK(get<SimpleIni, 1, 200>)->Name("ini: get among 200 keys|simpleini");

BENCHMARK(get<Uti, 1000, 20>)->Name("ini: get among 1,000 sections of 20 keys|uti|1");
BENCHMARK(get<Inih, 1000, 20>)->Name("ini: get among 1,000 sections of 20 keys|inih");
BENCHMARK(get<IniParser, 1000, 20>)->Name("ini: get among 1,000 sections of 20 keys|iniparser");
BENCHMARK(get<SimpleIni, 1000, 20>)->Name("ini: get among 1,000 sections of 20 keys|simpleini");

BENCHMARK(set<Uti, 1, 200>)->Name("ini: set and rewrite, 200 keys|uti|1");
BENCHMARK(set<IniParser, 1, 200>)->Name("ini: set and rewrite, 200 keys|iniparser");
BENCHMARK(set<SimpleIni, 1, 200>)->Name("ini: set and rewrite, 200 keys|simpleini");
// clang-format on

} // namespace

BENCHMARK_MAIN();
