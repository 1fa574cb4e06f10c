// po.cpp: `uti po export` and `uti po import`.
#include "tools/po.h"

#include "tools/commands.h"
#include "tools/files.h"

#include <iostream>
#include <memory>

namespace uti::tool {

namespace {

namespace fs = std::filesystem;

struct PoOptions {
    fs::path source;
    fs::path directory = ".";
    std::vector<fs::path> files;
};

// A source that has texts to translate; what is wrong with it is printed.
std::optional<ResourceSource> readTranslatable(Diagnostics &diagnostics) {
    ResourceSource source = readResourceSource(diagnostics);
    if (!diagnostics.hasErrors() && source.languages.size() < 2)
        diagnostics.error({}, "there is no language to translate into; name it in [languages]");
    if (!diagnostics.hasErrors())
        return source;
    diagnostics.print(std::cerr);
    return std::nullopt;
}

// "3 texts"
std::string counted(std::size_t count, std::string_view noun) {
    return concat(count, ' ', noun, count == 1 ? "" : "s");
}

int exportTexts(const PoOptions &options, FindRooms findRooms) {
    Diagnostics sourceText(options.source.string(), readInput(options.source));
    const std::optional<ResourceSource> source = readTranslatable(sourceText);
    if (!source)
        return exitErrors;
    if (!findRooms)
        std::cerr << "uti: the room for texts is left out: this build has no toolkit\n";
    const Rooms rooms =
        findRooms ? findRooms(*source, fs::absolute(options.source).parent_path()) : Rooms();

    std::vector<std::pair<fs::path, PoFile>> made;
    bool isGood = true;
    for (auto language = source->languages.begin() + 1; language != source->languages.end();
         ++language) {
        const fs::path path =
            (options.directory / concat(source->module, '.', language->code, ".po"))
                .lexically_normal();
        Diagnostics diagnostics(path.string(), readFile(path).value_or(""));
        const PoFile before = readPo(diagnostics);
        if (!diagnostics.hasErrors())
            made.emplace_back(path, exportPo(*source, sourceText.source(), language->code, rooms,
                                             before, diagnostics));
        diagnostics.print(std::cerr);
        isGood = isGood && !diagnostics.hasErrors();
    }
    if (!isGood)
        return exitErrors;

    std::error_code failure; // told by what cannot be written there
    fs::create_directories(options.directory, failure);
    for (const auto &[path, po] : made) {
        writeFileIfChanged(path, writePo(po));
        std::size_t texts = 0, untranslated = 0, fuzzy = 0;
        for (const PoEntry &entry : po.entries) {
            texts += entry.isObsolete ? 0 : 1;
            untranslated += entry.translation.empty() ? 1 : 0;
            fuzzy += entry.isFuzzy && !entry.isObsolete ? 1 : 0;
        }
        std::cerr << path.string() << ": " << counted(texts, "text") << ", " << untranslated
                  << " untranslated, " << fuzzy << " fuzzy\n";
    }
    return exitDone;
}

int importTexts(const PoOptions &options) {
    Diagnostics sourceText(options.source.string(), readInput(options.source));
    const std::optional<ResourceSource> source = readTranslatable(sourceText);
    if (!source)
        return exitErrors;

    std::vector<Translation> translations;
    std::map<std::string, fs::path> files; // by language
    std::string told;
    bool isGood = true;
    for (const fs::path &path : options.files) {
        Diagnostics diagnostics(path.string(), readInput(path));
        const PoFile po = readPo(diagnostics);
        PoCounts counts;
        std::string language;
        if (!diagnostics.hasErrors())
            language = importPo(*source, sourceText, po, diagnostics, translations, counts);
        if (const auto [other, isFirst] = files.emplace(language, path);
            !isFirst && !language.empty())
            diagnostics.error({}, other->second.string(), " is in ", language, " as well");
        diagnostics.print(std::cerr);
        isGood = isGood && !diagnostics.hasErrors();
        told += concat(path.string(), ": ", counted(counts.changed, "text"), " changed, ",
                       counts.added, " new; not imported: ", counts.untranslated, " untranslated, ",
                       counts.fuzzy, " fuzzy\n");
    }
    if (!isGood) {
        std::cerr << options.source.string() << " is left as it was\n";
        return exitErrors;
    }
    if (!translations.empty()) {
        const Diagnostics made = putInto(*source, sourceText.source(), std::move(translations));
        if (made.hasErrors()) {
            made.print(std::cerr);
            return exitErrors;
        }
        const fs::path file = fs::canonical(options.source);
        const fs::perms permissions = fs::status(file).permissions();
        writeFile(file, made.text());
        fs::permissions(file, permissions);
    }
    std::cerr << told;
    return exitDone;
}

} // namespace

void addPoCommand(CLI::App &app, FindRooms findRooms, int &result) {
    CLI::App *command = app.add_subcommand("po", "Brings texts to translators and back");
    command->require_subcommand(1);
    const auto options = std::make_shared<PoOptions>();
    const auto add = [&](const char *name, const char *description) {
        CLI::App *one = command->add_subcommand(name, description);
        one->add_option("SOURCE", options->source, "Resource source")
            ->required()
            ->check(CLI::ExistingFile);
        return one;
    };

    CLI::App *out = add("export", "Writes a PO file for each language but the first");
    out->add_option("-o", options->directory,
                    "Folder to write to, made if missing (default: the present one)")
        ->check([](const std::string &path) {
            return fs::exists(path) && !fs::is_directory(path) ? path + " is no folder" : "";
        });
    out->footer(
        "A file such as shop.ru.po that is there is brought up to date: it keeps comments,\n"
        "fuzzy entries and its header.\n"
        "Example:\n  uti po export shop.toml -o po\n");
    out->callback([=, &result] { result = exportTexts(*options, findRooms); });

    CLI::App *in = add("import", "Puts the translations of PO files into their source");
    in->add_option("FILE", options->files, "PO files, one for each language")
        ->required()
        ->check(CLI::ExistingFile);
    in->footer("Texts that did not change stay as they are spelled. Nothing is written when there\n"
               "is an error.\n"
               "Example:\n  uti po import shop.toml po/shop.ru.po\n");
    in->callback([=, &result] { result = importTexts(*options); });
}

} // namespace uti::tool
