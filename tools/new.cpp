// new.cpp: `uti new`, a small application to begin with. Its files stand in tools/new, where the
// application is called hello; the pictures of its test are taken here, with the fonts of this PC.
#include "tools/new.h"
#include "tools/commands.h"
#include "tools/dialog_pictures.h"
#include "tools/files.h"
#include "tools/resource_source.h"

#include <algorithm>
#include <cctype>
#include <iostream>
#include <memory>

namespace uti::tool {

namespace {

namespace fs = std::filesystem;

// What is wrong with a name; empty when an application can have it.
std::string wrongWith(const std::string &name) {
    constexpr std::string_view buildNames[] = {"all",      "clean",        "edit_cache", "help",
                                               "install",  "list_install", "package",    "test",
                                               "Makefile", "CMakeFiles",   "Testing"};
    constexpr std::string_view ownNames[] = {"uti", "utils_rc", "uti_answers"};
    if (!isModuleName(name))
        return concat(" is no name for a module: 1 to ", longestModuleName,
                      " letters, digits and underscores, the first no digit");
    if (std::ranges::count(buildNames, name) > 0)
        return " means something else to CMake; take another name";
    if (std::ranges::count(ownNames, name) > 0)
        return " is a name of the library's own; take another one";
    std::error_code error;
    return fs::exists(fs::symlink_status(name, error)) ? " is there already" : "";
}

std::string replaced(std::string_view text, std::string_view word, std::string_view by) {
    std::string all(text);
    for (std::size_t at = 0; (at = all.find(word, at)) != all.npos; at += by.size())
        all.replace(at, word.size(), by);
    return all;
}

template <class Change>
std::string changed(std::string_view text, Change change) {
    std::string all(text);
    std::ranges::transform(all, all.begin(),
                           [&](unsigned char c) { return static_cast<char>(change(c)); });
    return all;
}

// What each dialog shows at first, for the test of the application.
void takePictures(const fs::path &source, const fs::path &folder) {
    const std::optional<ShownModule> module =
        readShownModule(source, source.string(), *openCodePages({}));
    if (!module)
        throw std::runtime_error(source.string() + " has mistakes");
    const LoadedModule loaded(*module, folder);
    for (const ShownDialog &dialog : dialogsOf(*module)) {
        const Picture picture = loaded.picture(dialog);
        const std::string name =
            changed(dialog.name, [](int c) { return std::tolower(c); }) + '-' + dialog.language;
        const fs::path path = folder / (name + ".png");
        if (!picture.surface || !host::saveImage(*picture.surface, path))
            throw std::runtime_error("cannot write " + path.string());
    }
}

int makeApplication(const std::string &name) {
    if (const std::string wrong = wrongWith(name); !wrong.empty()) {
        std::cerr << "uti: " << name << wrong << '\n';
        return exitUsage;
    }
    const fs::path folder = fs::absolute(name), test = folder / "test";
    const std::string upper = changed(name, [](int c) { return std::toupper(c); });
    try {
        fs::create_directories(test);
        for (const NewFile &file : newFiles) {
            const std::string text = replaced(replaced(file.text, "HELLO", upper), "hello", name);
            const std::string path = replaced(file.name, "hello", name);
            writeFile((path.ends_with(".script") ? test : folder) / path, text);
        }
        takePictures(folder / (name + ".toml"), test);
    } catch (...) {
        std::error_code ignored;
        fs::remove_all(folder, ignored);
        throw;
    }
    std::cout << "The application " << name << " is there. To build it and run its test:\n  cd "
              << name << "\n  cmake -B build\n  cmake --build build\n  ctest --test-dir build\n";
    return exitDone;
}

} // namespace

void addNewCommand(CLI::App &app, int &result) {
    CLI::App *command = app.add_subcommand("new", "Makes a small application to begin with");
    const auto name = std::make_shared<std::string>();
    command
        ->add_option("NAME", *name,
                     "Its name and that of its folder: up to 12 letters, digits and underscores")
        ->required();
    command->footer("It has a dialog of each kind in two languages, and a test. In its folder:\n"
                    "  cmake -B build\n  cmake --build build\n  ctest --test-dir build\n\n"
                    "Example:\n  uti new hello\n");
    command->callback([name, &result] { result = makeApplication(*name); });
}

} // namespace uti::tool
