// main.cpp: the uti command, which makes and reads the files of the library. The subcommands are
// rooms of their own (commands.h).
#include "tools/check.h"
#include "tools/commands.h"
#include "tools/manual.h"
#include "tools/toml_reader.h"
#include "uti.h"

#include <algorithm>
#include <exception>
#include <iostream>

int main(int argc, char **argv) try {
    using namespace uti::tool;

    CLI::App app("Makes and reads the files of the uti library.", "uti");
    app.set_version_flag("--version", UTI_VERSION);
    app.require_subcommand(1);
    int result = exitDone;
#ifdef UTI_TOOLKIT
    constexpr FormRules formRules = checkForm;
    [[maybe_unused]] constexpr FindRooms rooms = findRooms;
#else
    constexpr FormRules formRules = nullptr;
    [[maybe_unused]] constexpr FindRooms rooms = nullptr;
#endif
    addCompileCommand(app, formRules, result);
    addCheckCommand(app, formRules, result);
    addDumpCommand(app, result);
    addLogCommand(app, result);
#ifdef UTI_PO
    addPoCommand(app, rooms, result);
#endif
#ifdef UTI_TOOLKIT
    addShowCommand(app, result);
#endif
    addManualCommand(app);

    const std::string first = argc > 1 ? argv[1] : "-";
    const auto all = app.get_subcommands([](const CLI::App *) { return true; });
    if (first[0] != '-' && std::ranges::none_of(all, [&](const CLI::App *command) {
            return command->check_name(first);
        })) {
        std::vector<std::string> names;
        for (const CLI::App *command : toldCommands(app))
            names.push_back(command->get_name());
        const std::vector<std::string_view> known(names.begin(), names.end());
        std::cerr << "uti: there is no command \"" << first << '"' << hint(first, known) << '\n';
        return exitUsage;
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? exitDone : exitUsage;
    }
    return result;
} catch (const std::exception &failure) {
    std::cerr << "uti: " << failure.what() << '\n';
    return uti::tool::exitUsage;
}
