// compile.cpp: `uti compile`, sources into resource files and the header of their string ids.
#include "tools/commands.h"
#include "tools/cpp_header.h"
#include "tools/files.h"
#include "tools/resource_source.h"

#include <algorithm>
#include <iostream>
#include <map>
#include <memory>

namespace uti::tool {

namespace {

namespace fs = std::filesystem;

struct CompileOptions {
    std::vector<fs::path> sources;
    fs::path directory;
    fs::path header;
    bool strict = false;
};

// A source on its way to its file.
struct Unit {
    fs::path path;
    Diagnostics diagnostics;
    ResourceSource source;
};

std::string upperCase(std::string_view name) {
    std::string upper(name);
    for (char &c : upper) {
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 'a' + 'A');
        else if (!isNamePart(c))
            c = '_';
    }
    return upper;
}

std::string identifier(const Unit &unit, std::string_view name) {
    return concat(upperCase(unit.source.module), '_', name);
}

bool isInside(const fs::path &path, const fs::path &directory) {
    const auto [end, other] =
        std::mismatch(directory.begin(), directory.end(), path.begin(), path.end());
    return end == directory.end();
}

// The folder to write to, or nothing and a message: the present one is meant only when the sources
// lie elsewhere.
std::optional<fs::path> outputDirectory(const CompileOptions &options) {
    if (!options.directory.empty())
        return options.directory;
    const fs::path present = fs::canonical(fs::current_path());
    for (const fs::path &source : options.sources) {
        if (isInside(fs::canonical(source), present)) {
            std::cerr << "uti: the present folder holds the source " << source.string()
                      << "; name the folder to write to with -o\n";
            return std::nullopt;
        }
    }
    return present;
}

// Modules and names must differ across the sources of one run: they share a folder and a header.
void reportClashes(std::vector<Unit> &units) {
    std::map<std::string, std::string> taken;
    for (Unit &unit : units) {
        const auto take = [&](std::string_view name, Place place) {
            const std::string key = identifier(unit, name);
            const auto [other, isFree] = taken.emplace(key, unit.diagnostics.path());
            if (!isFree)
                unit.diagnostics.error(place, "the header has ", key, " already, from ",
                                       other->second);
        };
        if (!isModuleName(unit.source.module))
            continue;
        take("MODULE", unit.source.modulePlace);
        take("VERSION", unit.source.modulePlace);
        for (const StringName &string : unit.source.names)
            take(string.name, string.place);
    }
}

std::string makeHeader(const fs::path &path, const std::vector<Unit> &units) {
    const std::string guard = "UTI_RESOURCES_" + upperCase(path.filename().string());
    const bool isCpp = path.extension() == ".hpp";
    std::string text = "/* String ids, made by uti compile; do not edit. */\n";
    text += concat("#ifndef ", guard, "\n#define ", guard, '\n');
    text += isCpp ? "\n#include \"uti.hpp\"\n" : "";
    for (const Unit &unit : units) {
        if (isCpp) {
            text += concat("\n/* ", unit.path.filename().string(), " */\n",
                           writeCppConstants(unit.source, identifier(unit, "")));
            continue;
        }
        const ResourceSource &source = unit.source;
        text += concat("\n/* ", unit.path.filename().string(), " */\n#define ",
                       identifier(unit, "MODULE"), " \"", source.module, "\"\n#define ",
                       identifier(unit, "VERSION"), ' ', source.file.version.value_or(0), '\n');
        if (source.names.empty())
            continue;
        text += "enum {\n";
        for (const StringName &string : source.names)
            text += concat("    ", identifier(unit, string.name), " = ", Hex{string.id, 4}, ",\n");
        text += "};\n";
    }
    return text + "\n#endif\n";
}

int compile(const CompileOptions &options) {
    const std::optional<fs::path> directory = outputDirectory(options);
    if (!directory)
        return exitUsage;

    const Warnings warnings = options.strict ? Warnings::areErrors : Warnings::allowed;
    std::vector<Unit> units;
    for (const fs::path &path : options.sources) {
        Unit unit{path, Diagnostics(path.string(), readInput(path), warnings), {}};
        unit.source = readResourceSource(unit.diagnostics);
        units.push_back(std::move(unit));
    }
    reportClashes(units);
    for (const Unit &unit : units)
        unit.diagnostics.print(std::cerr);
    if (std::ranges::any_of(units, [](const Unit &u) { return u.diagnostics.hasErrors(); }))
        return exitErrors;

    std::error_code failure; // told by what cannot be written there
    fs::create_directories(*directory, failure);
    for (const Unit &unit : units)
        writeFileIfChanged(*directory / (unit.source.module + ".res"),
                           writeResourceFile(unit.source.file));
    if (!options.header.empty())
        writeFileIfChanged(options.header, makeHeader(options.header, units));
    return exitDone;
}

} // namespace

void addCompileCommand(CLI::App &app, int &result) {
    CLI::App *command = app.add_subcommand("compile", "Makes resource files from their sources");
    const auto options = std::make_shared<CompileOptions>();
    command->add_option("SOURCE", options->sources, "Resource sources, a module each")
        ->required()
        ->check(CLI::ExistingFile);
    command
        ->add_option("-o", options->directory,
                     "Folder to write to, made if missing (default: the present one, if no source "
                     "lies in it)")
        ->check([](const std::string &path) {
            return fs::exists(path) && !fs::is_directory(path) ? path + " is no folder" : "";
        });
    command->add_option("--header", options->header,
                        "C header of the string ids to write, for C++ with a name in .hpp");
    command->add_flag("--strict", options->strict, "Treat warnings as errors");
    command->footer("Example:\n  uti compile first.toml -o build --header build/first.h\n");
    command->callback([options, &result] { result = compile(*options); });
}

} // namespace uti::tool
