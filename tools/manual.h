// manual.h: the manual pages and the shells' completion, made of the command line's own help texts,
// of the public header and of docs/formats.md. The build runs it; it is not in `uti --help`.
#pragma once

#include "tools/commands.h"

#include <string>
#include <string_view>

namespace uti::tool {

void addManualCommand(CLI::App &app);

// Texts of troff, of which a manual page is made.
std::string roffTitle(std::string_view name, std::string_view section);
std::string roffProse(std::string_view text); // a paragraph of prose with `code` and **bold** words
std::string roffLiteral(std::string_view text); // what stands in the page as it is
std::string roffExample(std::string_view text); // lines that are not filled

std::string commandPage(const CLI::App &command);
std::string headerPage(std::string_view header);
std::string markdownPage(std::string_view name, std::string_view title, std::string_view markdown);

std::string bashCompletion(const CLI::App &app);
std::string zshCompletion(const CLI::App &app);

// What of a command line is told: everything but what has no group.
std::vector<const CLI::App *> toldCommands(const CLI::App &app);
std::vector<const CLI::Option *> toldOptions(const CLI::App &app, bool positional);
// The words that lead to a command, joined: "uti log".
std::string commandPath(const CLI::App &command, std::string_view separator);

} // namespace uti::tool
