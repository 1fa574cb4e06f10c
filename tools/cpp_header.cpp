// cpp_header.cpp: placeholders of texts counted as the trace log and `uti::format` read them.
#include "tools/cpp_header.h"

#include "Src/utiTraceText.h"

namespace uti::tool {

namespace {

// What the languages of a string take together.
struct Placeholders {
    int arguments = 0;       // of {n}
    std::string conversions; // of %, a class each
    bool differ = false;
    bool isKnown = false; // from the first text on
};

// The classes of the % placeholders, as in uti.hpp.
std::string conversionsOf(std::string_view text) {
    std::string classes;
    const auto skip = [&](std::string_view set) {
        text.remove_prefix(std::min(text.find_first_not_of(set), text.size()));
    };
    for (std::size_t percent; (percent = text.find('%')) != text.npos;) {
        text.remove_prefix(percent + 1);
        if (text.starts_with('%')) {
            text.remove_prefix(1);
            continue;
        }
        skip("-+ #0");
        skip("0123456789");
        if (text.starts_with('.')) {
            text.remove_prefix(1);
            skip("0123456789");
        }
        skip("hlLjztq");
        const char conversion = text.empty() ? '\0' : text[0];
        if (conversion == 's' || conversion == 'c')
            classes += conversion;
        else if (conversion != 0 && std::string_view("diuxXo").find(conversion) != text.npos)
            classes += 'i';
        else if (conversion != 0 && std::string_view("fFeEgG").find(conversion) != text.npos)
            classes += 'f';
    }
    return classes;
}

void addText(Placeholders &all, const std::string &text) {
    bool hasBraces = false;
    int arguments = 0;
    expandMessage(
        text, UINT16_MAX, [](std::string_view) { return UTI_OK; },
        [&](uint32_t number) {
            hasBraces = true;
            arguments = std::max(arguments, static_cast<int>(number) + 1);
            return UTI_OK;
        });
    const std::string conversions = hasBraces ? "" : conversionsOf(text);
    all.differ |= all.isKnown && conversions != all.conversions;
    all.arguments = std::max(all.arguments, arguments);
    all.conversions = conversions;
    all.isKnown = true;
}

// A text holds no zero byte, a description does; one that is missing takes the place of none.
bool isText(const std::string &string) {
    return !string.empty() && string.find('\0') == string.npos;
}

Placeholders placeholdersOf(const ResourceFile &file, uint16_t id) {
    Placeholders all;
    const auto section = file.sections.find(sectionOf(id));
    if (section == file.sections.end())
        return all;
    for (const LanguageTable &table : section->second) {
        const auto string = table.strings.find(indexOf(id));
        if (string != table.strings.end() && isText(string->second))
            addText(all, string->second);
    }
    return all;
}

// The texts of a choice: constants, or what the source says itself.
std::string spelled(const TextChoice &choice, const ResourceSource &source,
                    std::string_view prefix) {
    std::string all;
    for (const NamedText &text : choice) {
        const auto name = std::ranges::find(source.names, text.string, &StringName::id);
        all += all.empty() ? "" : " or ";
        all += name != source.names.end() ? concat(prefix, name->name) : '"' + text.literal + '"';
    }
    return all;
}

} // namespace

std::string textsComment(const ResourceSource &source, const StringName &name,
                         std::string_view prefix) {
    const auto dialog = std::ranges::find_if(source.dialogs, [&](const SourceDialog &each) {
        return each.id == name.id && each.texts.areNamed();
    });
    if (dialog == source.dialogs.end())
        return "";
    std::string all;
    const auto add = [&](std::string_view what, const TextChoice &choice) {
        if (!choice.empty())
            all += concat(all.empty() ? "" : "; ", what, spelled(choice, source, prefix));
    };
    const auto addAll = [&](std::string_view what, const std::vector<TextChoice> &choices) {
        for (const TextChoice &choice : choices)
            all += concat(&choice != &choices.front() ? ", "
                          : all.empty()               ? ""
                                                      : "; ",
                          &choice != &choices.front() ? "" : what, spelled(choice, source, prefix));
    };
    add("caption ", dialog->texts.caption);
    add("text ", dialog->texts.text);
    for (const auto &[label, choice] : dialog->texts.labels)
        add(concat("label \"", label, "\" "), choice);
    addAll("buttons ", dialog->texts.buttons);
    addAll("items ", dialog->texts.items);
    for (const std::string_view mark : {"*/", "/*"}) // would end the comment, or begin another one
        for (std::size_t at; (at = all.find(mark)) != all.npos;)
            all.insert(at + 1, 1, ' ');
    std::ranges::replace(all, '\n', ' ');
    return all.empty() ? "" : "/** " + all + " */\n";
}

std::string writeCppConstants(const ResourceSource &source, std::string_view prefix) {
    std::string text =
        concat("inline constexpr char ", prefix, "MODULE[] = \"", source.module, "\";\n");
    for (const StringName &string : source.names) {
        const Placeholders takes = placeholdersOf(source.file, string.id);
        text += textsComment(source, string, prefix);
        text += concat("inline constexpr uti::Message<", Hex{string.id, 4});
        const std::string conversions = takes.differ ? "!" : takes.conversions;
        if (takes.arguments > 0 || !conversions.empty())
            text += concat(", ", takes.arguments);
        for (const char each : conversions)
            text += concat(", '", each, '\'');
        text += concat("> ", prefix, string.name, "{", prefix, "MODULE};\n");
    }
    return text;
}

} // namespace uti::tool
