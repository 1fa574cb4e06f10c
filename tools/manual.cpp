// manual.cpp: the hidden subcommand that writes manual pages and completions, and the pages of the
// commands. Stands on the help formatter, so that a page says what `--help` says.
#include "tools/manual.h"

#include "tools/files.h"

#include <memory>

namespace uti::tool {

namespace {

struct ManualOptions {
    std::filesystem::path directory;
    std::filesystem::path header;
    std::filesystem::path formats;
};

std::string manualName(const CLI::App &command) {
    return commandPath(command, "-");
}

// A line or a text of the help as a macro's single argument or as a line of its own.
std::string line(std::string_view macro, std::string_view text) {
    return std::string(macro) + " \"" + roffLiteral(text) + "\"\n";
}

// The footer of a help text: prose, and examples two columns to the right.
std::string footer(const std::string &text) {
    std::string page, prose, example;
    std::istringstream lines(text);
    std::string one;
    const auto flush = [&] {
        if (!prose.empty())
            page += ".PP\n" + roffProse(prose);
        if (!example.empty())
            page += roffExample(example);
        prose.clear();
        example.clear();
    };
    while (std::getline(lines, one)) {
        const bool indented = one.starts_with("  ");
        if (one.empty() || indented != !example.empty())
            flush();
        if (indented)
            example += one.substr(2) + '\n';
        else if (one == "Example:" || one == "Examples:")
            page += ".SH " + std::string(one == "Example:" ? "EXAMPLE" : "EXAMPLES") + '\n';
        else
            prose += one + '\n';
    }
    flush();
    return page;
}

void addPages(const CLI::App &command, const std::filesystem::path &directory) {
    writeFileIfChanged(directory / (manualName(command) + ".1"), commandPage(command));
    for (const CLI::App *below : toldCommands(command))
        addPages(*below, directory);
}

// A document that is made of a file, where it is asked for.
void addDocument(const std::filesystem::path &source, const std::filesystem::path &page,
                 std::string (*make)(std::string_view)) {
    if (!source.empty())
        writeFileIfChanged(page, make(readInput(source)));
}

void writeManual(const CLI::App &app, const ManualOptions &options) {
    std::filesystem::create_directories(options.directory);
    addPages(app, options.directory);
    addDocument(options.header, options.directory / "uti.h.3", headerPage);
    addDocument(options.formats, options.directory / "uti-formats.5", [](std::string_view text) {
        return markdownPage("uti-formats", "stored formats of uti", text);
    });
    writeFileIfChanged(options.directory / "uti.bash", bashCompletion(app));
    writeFileIfChanged(options.directory / "_uti", zshCompletion(app));
}

} // namespace

std::string commandPath(const CLI::App &command, std::string_view separator) {
    const CLI::App *parent = command.get_parent();
    return parent ? commandPath(*parent, separator) + std::string(separator) + command.get_name()
                  : command.get_name();
}

std::vector<const CLI::App *> toldCommands(const CLI::App &app) {
    return app.get_subcommands([](const CLI::App *command) {
        return !command->get_group().empty() && !command->get_name().empty();
    });
}

std::vector<const CLI::Option *> toldOptions(const CLI::App &app, bool positional) {
    return app.get_options([positional](const CLI::Option *option) {
        return !option->get_group().empty() && option->nonpositional() != positional;
    });
}

std::string commandPage(const CLI::App &command) {
    const auto help = std::dynamic_pointer_cast<CLI::Formatter>(command.get_formatter());
    const std::string name = manualName(command);
    const std::vector<const CLI::App *> commands = toldCommands(command);
    std::string page = roffTitle(name, "1");

    std::string description = command.get_description();
    if (description.ends_with('.'))
        description.pop_back();
    page += ".SH NAME\n" + roffLiteral(name) + " \\- " + roffLiteral(description) + '\n';

    page += ".SH SYNOPSIS\n";
    std::string usage = help->make_usage(&command, commandPath(command, " "));
    for (const std::string_view before : {"Usage: ", "\n"})
        if (usage.starts_with(before))
            usage.erase(0, before.size());
    while (usage.ends_with('\n'))
        usage.pop_back();
    page += roffLiteral(usage) + '\n';

    for (const bool positional : {true, false}) {
        const std::vector<const CLI::Option *> options = toldOptions(command, positional);
        if (!options.empty())
            page += positional ? ".SH ARGUMENTS\n" : ".SH OPTIONS\n";
        for (const CLI::Option *option : options)
            page += ".TP\n" +
                    ("\\fB" + roffLiteral(help->make_option_name(option, positional)) + "\\fR" +
                     roffLiteral(help->make_option_opts(option)) + '\n') +
                    roffLiteral(help->make_option_desc(option)) + '\n';
    }

    if (!commands.empty())
        page += ".SH COMMANDS\n";
    for (const CLI::App *below : commands)
        page += ".TP\n" + line(".B", below->get_name()) + roffLiteral(below->get_description()) +
                ".\nSee\n.BR " + roffLiteral(manualName(*below)) + " (1).\n";

    page += footer(command.get_footer());
    page += ".SH EXIT STATUS\n.TP\n0\ndone\n.TP\n1\nerrors in the input, which are printed\n"
            ".TP\n2\nwrong usage, no such file, or a file that cannot be written\n";

    page += ".SH SEE ALSO\n";
    for (const CLI::App *above = command.get_parent(); above; above = above->get_parent())
        page += ".BR " + roffLiteral(manualName(*above)) + " (1),\n";
    for (const CLI::App *below : commands)
        page += ".BR " + roffLiteral(manualName(*below)) + " (1),\n";
    return page + ".BR uti.h (3),\n.BR uti\\-formats (5)\n";
}

void addManualCommand(CLI::App &app) {
    CLI::App *command = app.add_subcommand("manual", "Writes manual pages and completions");
    command->group("");
    const auto options = std::make_shared<ManualOptions>();
    command->add_option("DIR", options->directory, "Folder to write to")->required();
    command->add_option("--header", options->header, "The public header, for its page");
    command->add_option("--formats", options->formats, "The formats' document, for its page");
    command->callback([&app, options] { writeManual(app, *options); });
}

} // namespace uti::tool
