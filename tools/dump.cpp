// dump.cpp: `uti dump`, a resource file back into source.
#include "tools/commands.h"
#include "tools/files.h"
#include "tools/resource_source.h"

#include <algorithm>
#include <functional>
#include <iostream>
#include <memory>

namespace uti::tool {

namespace {

struct DumpOptions {
    std::filesystem::path file;
    std::string codePage = defaultCodePage;
    bool verify = false;
};

// The file's name as a module's: cut to length, what a module's name cannot hold replaced.
std::string moduleOf(const std::filesystem::path &file) {
    std::string name = file.stem().string().substr(0, longestModuleName);
    std::ranges::replace_if(name, std::not_fn(isNamePart), '_');
    if (!isModuleName(name))
        name.replace(0, 1, "_");
    return name;
}

// Compiles a dumped source and compares; says on standard error what came out.
bool verify(const std::string &path, const std::string &bytes, const ResourceFile &file,
            const std::string &source) {
    Diagnostics diagnostics(path + " (dumped)", source);
    const ResourceSource again = readResourceSource(diagnostics);
    if (diagnostics.hasErrors()) {
        diagnostics.print(std::cerr);
        return false;
    }
    const std::string compiled = writeResourceFile(again.file);
    if (compiled == bytes) {
        std::cerr << path << ": the source compiles to the same " << bytes.size() << " bytes\n";
        return true;
    }
    const char *finding =
        again.file == file ? "the same content in another layout" : "other content";
    std::cerr << path << ": error: the source compiles to " << finding << ": " << compiled.size()
              << " bytes, not " << bytes.size() << '\n';
    return false;
}

int dump(const DumpOptions &options) {
    const std::string path = options.file.string();
    const std::optional<std::string> bytes = readFile(options.file);
    if (!bytes) {
        std::cerr << "uti: cannot read " << path << '\n';
        return exitUsage;
    }
    const auto codePage = CodePage::open(options.codePage);
    if (const auto *fault = std::get_if<std::string>(&codePage)) {
        std::cerr << "uti: " << *fault << '\n';
        return exitUsage;
    }

    Diagnostics diagnostics(path);
    const std::optional<ResourceFile> file = readResourceFile(*bytes, diagnostics);
    diagnostics.print(std::cerr);
    if (!file)
        return exitErrors;

    const std::string module = moduleOf(options.file);
    const std::string source = writeResourceSource(*file, module, std::get<CodePage>(codePage));
    if (!(std::cout << source << std::flush)) {
        std::cerr << "uti: cannot write the source\n";
        return exitUsage;
    }
    return options.verify && !verify(path, *bytes, *file, source) ? exitErrors : exitDone;
}

} // namespace

void addDumpCommand(CLI::App &app, int &result) {
    CLI::App *command = app.add_subcommand("dump", "Writes a resource file as source");
    const auto options = std::make_shared<DumpOptions>();
    command->add_option("FILE", options->file, "Resource file")
        ->required()
        ->check(CLI::ExistingFile);
    command->add_option("--code-page", options->codePage, "Code page of the texts")
        ->capture_default_str();
    command->add_flag("--verify", options->verify,
                      "Compile the source in turn and compare the bytes");
    command->footer("Example:\n  uti dump first.res > first.toml\n");
    command->callback([options, &result] { result = dump(*options); });
}

} // namespace uti::tool
