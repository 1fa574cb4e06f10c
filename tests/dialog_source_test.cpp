// dialog_source_test.cpp: resource sources with dialogs: what is wrong with them, the calls that
// build their forms, and a resource file back into source; the library's own messages.
#include "Src/utiDialogsFonts.h"
#include "tests/dialog_support.h"
#include "tools/files.h"
#include "tools/resource_source.h"

#include <span>
#include <sstream>

using namespace support;
using namespace support::describe;
using uti::CodePage;
using uti::concat;
using uti::defaultCodePage;
using uti::Diagnostics;
using namespace uti::tool;

namespace {

using DialogSource = support::Dialogs;

const std::string head = "module = \"m\"\ncode_page = \"windows-1251\"\n\n"
                         "[languages]\nen = 0\nru = 0\n";

// What is wrong with a source, a line each.
std::string findingsIn(const std::string &source) {
    Diagnostics diagnostics("f", source);
    readResourceSource(diagnostics);
    std::stringstream printed;
    diagnostics.print(printed);
    std::string findings;
    for (std::string line; std::getline(printed, line);) {
        if (line.starts_with("f:"))
            findings += line.substr(2) + '\n';
    }
    return findings;
}

ResourceFile compiled(const std::string &source) {
    Diagnostics diagnostics("f", source);
    ResourceFile file = readResourceSource(diagnostics).file;
    EXPECT_FALSE(diagnostics.hasErrors()) << source << findingsIn(source);
    return file;
}

std::string dumped(const ResourceFile &file) {
    static const auto codePage = CodePage::open(defaultCodePage);
    return writeResourceSource(file, "m", std::get<CodePage>(codePage));
}

TEST(Source, ReportsEveryMistakeAtItsPlace) {
    std::istringstream file(readInput(UTI_GOLDEN "/mistakes.txt"));
    std::string seen, line, source;
    for (bool isSource = true; std::getline(file, line);) {
        if (line == "--") {
            for (std::size_t at; (at = source.find('<')) != source.npos;)
                source.replace(at, source.find('>', at) + 1 - at,
                               std::string(std::stoul(source.substr(at + 3)), source[at + 1]));
            seen += line + '\n' + findingsIn(source);
            isSource = false;
        } else if (line.starts_with("== ") || seen.empty()) {
            seen += line + '\n';
            source.clear();
            isSource = true;
        } else if (isSource) {
            seen += line + '\n';
            source += line + '\n';
        }
    }
    expectGolden("mistakes.txt", seen);
}

// From the source of a dialog to the calls that build its form: menus are those of a list of three
// items, more where digits may lead to them; what the terminal's keys change is told by itself.
TEST_F(DialogSource, FormsAreBuiltAsBefore) {
    const std::string source = readInput(UTI_GOLDEN "/forms.toml");
    const std::string bytes = writeResourceFile(compiled(source));
    const LabelValue labels[] = {{"sum", "one\\ntwo"}, {"l", "a label"}, {nullptr, nullptr}};
    std::vector<ListItem> items(12);
    items[0] = {11, 12, 0, 13, "one"};
    items[1] = {21, 22, 5, 23, nullptr};
    ListRequest list{request, items.data(), 0};
    list.dialog.text = "first";
    list.dialog.caption = "title";
    list.dialog.labelValues = labels;
    const auto show = [&](bool isList, int32_t terminalType, uint16_t count) {
        EXPECT_EQ(toolkit.mistakes, "");
        fake::reset();
        forgetDialogs();
        serve("");
        terminal.files["m.res"] = bytes;
        terminal.type = terminalType;
        toolkit.answers["igWidget_GetDeltaY"] = 5;
        toolkit.script = {{13}};
        openLog();
        list.itemCount = count;
        EXPECT_EQ(isList ? DialogList_DoModal(&list)
                         : DialogMessage_Show(&list.dialog, SHOW_AND_RETURN),
                  0);
        TraceExClose();
    };

    std::string seen, title;
    std::istringstream lines(source);
    for (std::string line; std::getline(lines, line);) {
        title = line.starts_with("[dialogs.") ? line.substr(9, line.size() - 10) : title;
        if (!line.starts_with("id = "))
            continue;
        SCOPED_TRACE(title);
        list.dialog.resourceId = static_cast<uint16_t>(std::stoul(line.substr(5), nullptr, 16));
        const bool isList = title.starts_with("LIST") || title == "FULL";
        show(isList, 0, 3);
        seen += "== " + title + '\n' + toolkit.take();
        if (const int count = reports("Src/utiDialogs  Line: 637"))
            seen += concat("reports ", count, '\n');
        for (const uint16_t count : {uint16_t{0}, uint16_t{9}, uint16_t{10}}) {
            show(isList, 0, count);
            const std::string delta = toolkit.take({"igMenuBox_SetRowDelta"});
            seen += delta.empty() ? "" : concat(count, " items: ", delta);
        }
        for (const int32_t type : {19, 20, 23, 24, 26}) {
            if (!isList && !title.starts_with("CODES"))
                continue;
            show(isList, type, 3);
            seen +=
                concat("terminal ", type, '\n', toolkit.take({"igInput_SetC", "igMenuBox_SetC"}));
        }
    }
    expectGolden("forms.txt", seen);
}

// Sources as a dump writes them come back as they are; what no key can tell stands in hex.
TEST_F(DialogSource, DumpsTheSourceAgain) {
    std::istringstream file(readInput(UTI_GOLDEN "/dialogs.toml"));
    std::vector<std::string> sources;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("# "))
            sources.emplace_back();
        else
            sources.back() += line + '\n';
    }
    ASSERT_EQ(sources.size(), 5u);
    for (std::string &source : std::span(sources).subspan(1)) {
        if (&source != &sources.back())
            source.pop_back(); // the blank line before the next comment
        SCOPED_TRACE(source);
        EXPECT_EQ(dumped(compiled(head + source)), head + source);
    }
}

// What a dump takes for a dialog compiles to the same bytes, and so does what it leaves in hex.
TEST_F(DialogSource, DumpsAsDialogsWhatAreDialogs) {
    std::string ten;
    for (int i = 0; i < 10; ++i)
        ten += group(150);
    const std::string good = dialog(1, ten);
    for (const auto &[bytes, isDialog] : {std::pair(good, true),
                                          {dialog(1, ten + group(150)), false},
                                          {group(0x80, group(148)), false},
                                          {"Yes", false},
                                          {group(0x80), false},
                                          {good + good, false},
                                          {good + "\x81", false}}) {
        ResourceFile file;
        LanguageTable &table = file.sections[3].emplace_back();
        table.language.code = "en";
        table.strings[1] = bytes;
        const std::string source = dumped(file);
        EXPECT_EQ(compiled(source), file) << source;
        EXPECT_EQ(source.find("[dialogs.") != source.npos, isDialog) << toHex(bytes);
    }
}

TEST_F(DialogSource, HasTheLibrarysOwnMessages) {
    terminal.environment["default_lang"] = "en";
    terminal.files["utils_rc.res"] = readInput(UTILS_RC);
    openLog();
    toolkit.answers["igUI_SetFileFont"] = -5;
    uti::Dialogs_GetFontIndex("0.fnt");
    EXPECT_EQ(reports("The font file 0.fnt cannot be loaded, the toolkit's result is -5"), 1);
    toolkit.answers.clear();
    for (const char *name : {"1.fnt", "2.fnt", "3.fnt", "4.fnt", "5.fnt", "6.fnt", "7.fnt"})
        uti::Dialogs_GetFontIndex(name);
    EXPECT_EQ(reports("There is no room for the font 7.fnt: six font files are loaded already"), 1);
    EXPECT_NE(*Resource_GetStringEx("utils_rc", "ru", 12291), 0);
    EXPECT_NE(*Resource_GetStringEx("utils_rc", "ru", 12292), 0);
}

} // namespace
