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

namespace {

using namespace uti::tool;

// Says what of the command line its command does not know; false when it knows all of it.
bool refuses(const CLI::App &app) {
    const std::vector<std::string> left = app.remaining(true);
    if (left.empty())
        return false;
    const CLI::App *command = &app;
    while (!command->get_subcommands().empty())
        command = command->get_subcommands().front();
    const std::string word = left.front().substr(0, left.front().find('='));
    std::cerr << "uti: " << commandPath(*command, " ");
    if (!word.starts_with('-')) {
        std::cerr << " does not take \"" << word << "\" as well\n";
        return true;
    }
    std::vector<std::string> names;
    for (const CLI::Option *option : toldOptions(*command, false))
        for (const std::string &name : option->get_lnames())
            names.push_back("--" + name);
    const std::vector<std::string_view> known(names.begin(), names.end());
    std::cerr << " has no option \"" << word << '"' << hint(word, known) << '\n';
    return true;
}

} // namespace

int main(int argc, char **argv) try {

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
    addNewCommand(app, result);
    addShowCommand(app, result);
#endif
    addManualCommand(app);

    const CLI::App *command = &app;
    for (int i = 1; i < argc && argv[i][0] != '-'; ++i) {
        const std::string word = argv[i];
        const auto below = command->get_subcommands([](const CLI::App *) { return true; });
        if (below.empty())
            break;
        const auto named = std::ranges::find_if(
            below, [&](const CLI::App *each) { return each->check_name(word); });
        if (named == below.end()) {
            std::vector<std::string> names;
            for (const CLI::App *each : toldCommands(*command))
                names.push_back(each->get_name());
            const std::vector<std::string_view> known(names.begin(), names.end());
            std::cerr << commandPath(*command, " ") << ": there is no command \"" << word << '"'
                      << hint(word, known) << '\n';
            return exitUsage;
        }
        command = *named;
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        if (error.get_exit_code() != 0 && refuses(app))
            return exitUsage;
        return app.exit(error) == 0 ? exitDone : exitUsage;
    }
    return result;
} catch (const std::exception &failure) {
    std::cerr << "uti: " << failure.what() << '\n';
    return uti::tool::exitUsage;
}
