// commands.h: the subcommands of uti. Each lives in a room of its own and puts itself on the
// command line; when it is the one asked for, it leaves the exit code in `result`.
#pragma once

#include "tools/po.h"
#include "tools/rules.h"

#include <CLI/CLI.hpp>

namespace uti::tool {

enum ExitCode : int {
    exitDone = 0,
    exitErrors = 1, // in the input, printed
    exitUsage = 2   // wrong usage, no such file, or a file that cannot be written
};

void addCheckCommand(CLI::App &app, FormRules formRules, int &result);
void addCompileCommand(CLI::App &app, FormRules formRules, int &result);
void addDumpCommand(CLI::App &app, int &result);
void addLogCommand(CLI::App &app, int &result);
void addNewCommand(CLI::App &app, int &result);                     // needs the widget toolkit
void addPoCommand(CLI::App &app, FindRooms findRooms, int &result); // needs libgettextpo
void addShowCommand(CLI::App &app, int &result);                    // needs the widget toolkit

} // namespace uti::tool
