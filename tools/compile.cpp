// compile.cpp: `uti compile`, sources into resource files and the header of their string ids, and
// `uti check`, which makes nothing and says what is wrong with them.
#include "tools/check.h"
#include "tools/commands.h"
#include "tools/cpp_header.h"
#include "tools/files.h"
#include "tools/finding_json.h"
#include "tools/pseudo.h"
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
    std::string pseudo;
    bool strict = false;
    bool check = false;
};

struct CheckOptions {
    std::vector<fs::path> sources;
    std::string format = "text";
    bool missing = false;
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
        for (const StringName &string : source.names) {
            const std::string comment = textsComment(source, string, identifier(unit, ""));
            text += comment.empty() ? "" : "    " + comment;
            text += concat("    ", identifier(unit, string.name), " = ", Hex{string.id, 4}, ",\n");
        }
        text += "};\n";
    }
    return text + "\n#endif\n";
}

std::vector<Unit> readUnits(const std::vector<fs::path> &sources, Warnings warnings,
                            Missing missing) {
    std::vector<Unit> units;
    for (const fs::path &path : sources) {
        Unit unit{path, Diagnostics(path.string(), readInput(path), warnings), {}};
        unit.source = readResourceSource(unit.diagnostics, missing);
        units.push_back(std::move(unit));
    }
    reportClashes(units);
    return units;
}

// Judges what could be read.
void checkUnits(std::vector<Unit> &units, FormRules formRules, Missing missing) {
    if (!formRules)
        std::cerr << "uti: fit, fonts and images are not checked: this build has no toolkit\n";
    for (Unit &unit : units)
        if (!unit.diagnostics.hasErrors())
            check(unit.source, fs::absolute(unit.path).parent_path(), formRules, missing,
                  unit.diagnostics);
}

// Prints what was found. False when there is an error.
bool printFindings(const std::vector<Unit> &units) {
    for (const Unit &unit : units)
        unit.diagnostics.print(std::cerr);
    return std::ranges::none_of(units, [](const Unit &u) { return u.diagnostics.hasErrors(); });
}

int checkSources(const CheckOptions &options, FormRules formRules) {
    const Missing missing = options.missing ? Missing::named : Missing::counted;
    std::vector<Unit> units = readUnits(options.sources, Warnings::allowed, missing);
    checkUnits(units, formRules, missing);
    std::vector<const Diagnostics *> files;
    files.reserve(units.size());
    for (const Unit &unit : units)
        files.push_back(&unit.diagnostics);
    if (options.format == "json")
        writeFindingsAsJson(files, std::cout);
    else
        printFindings(units);
    const auto isClean = [](const Diagnostics *file) { return file->isEmpty(); };
    return std::ranges::all_of(files, isClean) ? exitDone : exitErrors;
}

int compile(const CompileOptions &options, FormRules formRules) {
    const std::optional<fs::path> directory = outputDirectory(options);
    if (!directory)
        return exitUsage;

    const Warnings warnings = options.strict ? Warnings::areErrors : Warnings::allowed;
    std::vector<Unit> units = readUnits(options.sources, warnings, Missing::counted);
    for (Unit &unit : units)
        if (!options.pseudo.empty() && !unit.diagnostics.hasErrors())
            addPseudoLanguage(unit.source, options.pseudo, unit.diagnostics);
    if (options.check)
        checkUnits(units, formRules, Missing::counted);
    if (!printFindings(units))
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

void addCompileCommand(CLI::App &app, FormRules formRules, int &result) {
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
    command->add_flag("--check", options->check, "Check them as well, as uti check does");
    command
        ->add_option("--pseudo", options->pseudo,
                     "Add a language of that code, such as zz, whose texts are those of the first "
                     "one accented, longer and in brackets")
        ->check([](const std::string &code) {
            return isLanguageCode(code) ? "" : "a language code is two lower-case letters";
        });
    command->add_flag("--strict", options->strict, "Treat warnings as errors");
    command->footer("Example:\n  uti compile first.toml -o build --header build/first.h\n");
    command->callback([=, &result] { result = compile(*options, formRules); });
}

void addCheckCommand(CLI::App &app, FormRules formRules, int &result) {
    CLI::App *command = app.add_subcommand("check", "Finds mistakes in resource sources");
    const auto options = std::make_shared<CheckOptions>();
    command->add_option("SOURCE", options->sources, "Resource sources, a module each")
        ->required()
        ->check(CLI::ExistingFile);
    command->add_option("--format", options->format, "How to write what was found")
        ->check(CLI::IsMember({"text", "json"}))
        ->capture_default_str();
    command->add_flag("--missing", options->missing,
                      "Name each text that a language lacks, not how many there are");
    command->footer(
        "Looks for images in the folder of the source and in UTI_IMAGES. The exit code\n"
        "is 1 when anything was found.\n"
        "Example:\n  uti check shop.toml\n");
    command->callback([=, &result] { result = checkSources(*options, formRules); });
}

} // namespace uti::tool
