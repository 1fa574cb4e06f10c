// completion.cpp: what bash and zsh offer after `uti`, out of the command line itself.
#include "tools/manual.h"

namespace uti::tool {

namespace {

enum class Value { none, choice, directory, file, text };

// What follows an option, by its help text: "TEXT:{a,b}", "TEXT:DIR", "TEXT:FILE".
Value valueOf(const CLI::Option &option) {
    if (option.get_items_expected_min() == 0)
        return Value::none;
    const std::string type = option.get_type_name();
    if (type.find('{') != std::string::npos)
        return Value::choice;
    if (type.find("DIR") != std::string::npos)
        return Value::directory;
    return type.find("FILE") != std::string::npos ? Value::file : Value::text;
}

// The values of a choice with a blank between.
std::string choicesOf(const CLI::Option &option) {
    std::string type = option.get_type_name();
    type = type.substr(type.find('{') + 1);
    type = type.substr(0, type.find('}'));
    for (char &c : type)
        if (c == ',')
            c = ' ';
    return type;
}

std::vector<std::string> namesOf(const CLI::Option &option) {
    std::vector<std::string> names;
    for (const std::string &name : option.get_snames())
        names.push_back("-" + name);
    for (const std::string &name : option.get_lnames())
        names.push_back("--" + name);
    return names;
}

std::string joined(const std::vector<std::string> &words, std::string_view separator) {
    std::string text;
    for (const std::string &word : words)
        text += (text.empty() ? "" : std::string(separator)) + word;
    return text;
}

// All commands, the outer ones first.
void collect(const CLI::App &app, std::vector<const CLI::App *> &all) {
    all.push_back(&app);
    for (const CLI::App *command : toldCommands(app))
        collect(*command, all);
}

std::string singleQuoted(std::string_view text) {
    std::string out = "'";
    for (const char c : text)
        out += c == '\'' ? "'\\''" : std::string(1, c);
    return out + '\'';
}

// A text inside of an entry of zsh, where the characters that end it need a backslash.
std::string inside(std::string_view text) {
    std::string out;
    for (const char c : text) {
        if (c == '[' || c == ']' || c == ':' || c == '\\')
            out += '\\';
        out += c;
    }
    return out;
}

std::string zshFunction(const CLI::App &command) {
    return "_" + commandPath(command, "_");
}

} // namespace

std::string bashCompletion(const CLI::App &app) {
    std::vector<const CLI::App *> all;
    collect(app, all);
    std::string cases, paths;
    for (const CLI::App *command : all) {
        const std::string path = commandPath(*command, " ");
        std::string names, values;
        if (command != &app)
            paths += (paths.empty() ? "" : "|") + singleQuoted(path);
        for (const CLI::Option *option : toldOptions(*command, false)) {
            const std::vector<std::string> spelled = namesOf(*option);
            names += (names.empty() ? "" : " ") + joined(spelled, " ");
            const Value value = valueOf(*option);
            if (value == Value::none)
                continue;
            values += "        " + joined(spelled, "|") + ") offer ";
            switch (value) {
            case Value::choice:
                values += "-W " + singleQuoted(choicesOf(*option));
                break;
            case Value::directory:
                values += "-d";
                break;
            case Value::file:
                values += "-f";
                break;
            default:
                values += "-W ''";
            }
            values += "; return ;;\n";
        }
        std::string others = "-f";
        if (!toldCommands(*command).empty()) {
            std::vector<std::string> below;
            for (const CLI::App *one : toldCommands(*command))
                below.push_back(one->get_name());
            others = "-W " + singleQuoted(joined(below, " "));
        }
        cases += "    " + singleQuoted(path) + ")\n";
        if (!values.empty())
            cases += "        case $prev in\n" + values + "        esac\n";
        cases += "        if [[ $cur == -* ]]; then offer -W " + singleQuoted(names) +
                 "; else offer " + others + "; fi ;;\n";
    }

    return "# bash completion of uti\n"
           "_uti() {\n"
           "    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]}\n"
           "    local path=" +
           app.get_name() +
           " i\n"
           "    # --option=value comes as three words.\n"
           "    if [[ $cur == = ]]; then\n"
           "        cur=\n"
           "    elif [[ $prev == = ]]; then\n"
           "        prev=${COMP_WORDS[COMP_CWORD - 2]}\n"
           "    fi\n"
           "    for ((i = 1; i < COMP_CWORD; ++i)); do\n"
           "        case \"$path ${COMP_WORDS[i]}\" in\n"
           "        " +
           paths +
           ") path=\"$path ${COMP_WORDS[i]}\" ;;\n"
           "        esac\n"
           "    done\n"
           "    offer() { mapfile -t COMPREPLY < <(compgen \"$@\" -- \"$cur\"); }\n"
           "    case $path in\n" +
           cases +
           "    esac\n"
           "}\n"
           "complete -o filenames -F _uti " +
           app.get_name() + '\n';
}

std::string zshCompletion(const CLI::App &app) {
    std::vector<const CLI::App *> all;
    collect(app, all);
    std::string text = "#compdef uti\n# zsh completion of uti\n";
    for (const CLI::App *command : all) {
        const std::vector<const CLI::App *> below = toldCommands(*command);
        text += '\n' + zshFunction(*command) + "() {\n";
        if (!below.empty())
            text += "  local line state\n";
        text += std::string("  _arguments") + (below.empty() ? "" : " -C");
        for (const CLI::Option *option : toldOptions(*command, false)) {
            const std::vector<std::string> names = namesOf(*option);
            const Value value = valueOf(*option);
            const bool repeated = option->get_items_expected_max() > 1;
            for (const std::string &name : names) {
                std::string entry = repeated ? "*" : "(" + joined(names, " ") + ")";
                entry += name + (value != Value::none && name.starts_with("--") ? "=" : "") + '[' +
                         inside(option->get_description()) + ']';
                switch (value) {
                case Value::none:
                    break;
                case Value::choice:
                    entry += ":value:(" + choicesOf(*option) + ")";
                    break;
                case Value::directory:
                    entry += ":folder:_files -/";
                    break;
                case Value::file:
                    entry += ":file:_files";
                    break;
                case Value::text:
                    entry += ":value:";
                    break;
                }
                text += " \\\n    " + singleQuoted(entry);
            }
        }
        if (below.empty()) {
            text += " \\\n    '*:file:_files'\n}\n";
            continue;
        }
        std::string commands, cases;
        for (const CLI::App *one : below) {
            commands +=
                "\n      " + singleQuoted(one->get_name() + ":" + inside(one->get_description()));
            cases += "      " + one->get_name() + ") " + zshFunction(*one) + " ;;\n";
        }
        text += " \\\n    '1:command:->command' \\\n    '*::argument:->argument'\n"
                "  case $state in\n"
                "  command)\n    local -a commands=(" +
                commands +
                ")\n    _describe command commands ;;\n"
                "  argument)\n    case $line[1] in\n" +
                cases + "    esac ;;\n  esac\n}\n";
    }
    return text + "\n_uti \"$@\"\n";
}

} // namespace uti::tool
