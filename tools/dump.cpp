// dump.cpp: `uti dump`, a resource file back into source.
#include "tools/commands.h"
#include "tools/files.h"
#include "tools/library_answers.h"
#include "tools/resource_source.h"
#include "uti.h"

#include <algorithm>
#include <functional>
#include <iostream>
#include <map>
#include <memory>

namespace uti::tool {

namespace {

struct DumpOptions {
    std::filesystem::path file;
    std::vector<std::string> codePages;
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

// Every string as the library reads it, by language and id.
using Answers = std::map<std::pair<std::string, uint16_t>, std::string>;

// Asks for each index that either file has in a section.
Answers askLibrary(std::string_view bytes, const ResourceFile &file, const ResourceFile &other,
                   Diagnostics &diagnostics) {
    Answers answers;
    const LibraryAnswers library(bytes);
    if (library.result() != UTI_OK)
        diagnostics.error({}, "the library cannot load it: ", library.result());
    for (const auto &[section, tables] : file.sections) {
        const auto same = other.sections.find(section);
        const std::size_t size =
            std::max(indexSize(tables), same == other.sections.end() ? 0 : indexSize(same->second));
        for (const LanguageTable &table : tables)
            for (uint16_t index = 0; index < size / entrySize; ++index) {
                const uint16_t id = stringId(section, index);
                answers[{table.language.code, id}] = library.text(table.language.code, id);
            }
    }
    return answers;
}

// The library is the judge of what a file holds.
void compareAnswers(std::string_view bytes, const ResourceFile &file, const ResourceFile &again,
                    std::string_view compiled, Diagnostics &diagnostics) {
    const Answers given = askLibrary(bytes, file, again, diagnostics);
    Answers made = askLibrary(compiled, again, file, diagnostics);
    for (const auto &[key, text] : given) {
        const auto &[language, id] = key;
        if (made[key] != text)
            diagnostics.error({}, "string ", Hex{id, 4}, " in ", language, ": the library reads ",
                              text.size(), " bytes, and other ones, ", made[key].size(),
                              ", from the source");
    }
    if (file.version != again.version || file.rootTag != again.rootTag)
        diagnostics.error({}, "the source has another version or root");
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
    Diagnostics differences(path);
    compareAnswers(bytes, file, again.file, compiled, differences);
    differences.print(std::cerr);
    std::cerr << path << ": error: the source compiles to "
              << (differences.hasErrors() ? "other content" : "the same content in another layout")
              << ": " << compiled.size() << " bytes, not " << bytes.size() << '\n';
    return false;
}

int dump(const DumpOptions &options) {
    const std::string path = options.file.string();
    const std::string bytes = readInput(options.file);
    const std::optional<CodePages> codePages = openCodePages(options.codePages);
    if (!codePages)
        return exitUsage;

    Diagnostics diagnostics(path);
    const std::optional<ResourceFile> file = readResourceFile(bytes, diagnostics);
    diagnostics.print(std::cerr);
    if (!file)
        return exitErrors;

    const std::string module = moduleOf(options.file);
    const std::string source = writeResourceSource(*file, module, *codePages);
    if (!(std::cout << source << std::flush)) {
        std::cerr << "uti: cannot write the source\n";
        return exitUsage;
    }
    return options.verify && !verify(path, bytes, *file, source) ? exitErrors : exitDone;
}

} // namespace

void addDumpCommand(CLI::App &app, int &result) {
    CLI::App *command = app.add_subcommand("dump", "Writes a resource file as source");
    const auto options = std::make_shared<DumpOptions>();
    command->add_option("FILE", options->file, "Resource file")
        ->required()
        ->check(CLI::ExistingFile);
    command->add_option("--code-page", options->codePages, codePageHelp)->allow_extra_args(false);
    command->add_flag("--verify", options->verify,
                      "Compile the source in turn and compare the bytes");
    command->footer("Examples:\n  uti dump first.res > first.toml\n"
                    "  uti dump shop.res --code-page de=windows-1252 > shop.toml\n");
    command->callback([options, &result] { result = dump(*options); });
}

} // namespace uti::tool
