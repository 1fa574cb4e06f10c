// dialog_source_test.cpp: dialogs from a resource source through the compiler into the library's
// records, and from a resource file back into source; the library's own messages.
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
    const ResourceFile file = readResourceSource(diagnostics).file;
    EXPECT_FALSE(diagnostics.hasErrors()) << source << findingsIn(source);
    return file;
}

std::string dumped(const ResourceFile &file) {
    static const auto codePage = CodePage::open(defaultCodePage);
    return writeResourceSource(file, "m", std::get<CodePage>(codePage));
}

// A file with one string, which differs from language to language.
ResourceFile fileOf(const std::string &english, const std::string &russian) {
    ResourceFile file;
    for (const auto &[language, text] : {std::pair("en", english), {"ru", russian}}) {
        LanguageTable &table = file.sections[3].emplace_back();
        table.language.code = language;
        table.strings[1] = text;
    }
    return file;
}

// Every control with every key; of two edits the first has the defaults.
constexpr const char *fullSource =
    "[colors]\none = '#010203'\ntwo = [4, 5, 6]\n"
    "[styles.all]\njustify = 'bottom-left'\nfont = 'dig6x8'\nborder = 'rounded'\n"
    "transparency = 'transparent'\n"
    "colors = { active = ['one', 'two'], passive = ['#070809', '#0A0B0C'] }\n"
    "[dialogs.FULL]\nid = 0x3001\ntype = 'list'\ntimeout = 70000\ntransparency = 'half'\n"
    "area = [10, 20, 200, 250]\nborder = false\n"
    "caption = { justify = 'center', font = '16x24', area = [0, 0, 240, 28], "
    "colors = ['one', 'two'] }\n"
    "static_text = { style = 'all', area = [1, 1, 2, 2], name = 'logo', image = 'logo.png' }\n"
    "ip_edit = { style = 'all', area = [1, 2, 3, 4] }\n"
    "progress_bar = { style = 'all', area = [2, 3, 4, 5] }\n"
    "signature = { style = 'all', area = [3, 4, 5, 6] }\n"
    "label = { name = 'sum', area = [5, 6, 7, 8], style = 'all', border = 9, value = 77, hide = 0 "
    "}\n"
    "edit = [{ style = 'all', area = [1, 2, 3, 4] }, { style = 'all', omit = ['colors', 'input'], "
    "area = [5, 6, 7, 8], name = 'Имя', wrap = false, key_scheme = ['abc', '', 'd'], hide = '*', "
    "max_length = 300, min_length = 4, pattern = { en = '__.__', ru = '__-__' }, scroll_bar = 7, "
    "multi_line = true, read_only = 2, right_aligned = 3, upper_case = 4, "
    "confirm_key = 'F2', fill_symbol = '_' }]\n"
    "button = { style = 'all', area = [1, 1, 2, 2], key = 'LAYOUT', confirms = false, "
    "image = 'a.png', passive_back_image = 'b.png', active_back_image = 'c.png' }\n"
    "menu = { style = 'all', page_up_key = 'F1', page_down_key = 'F2', up_key = 'UP', "
    "down_key = 13, tiles = true, text = 'goods', digits = 5, scroll_bar = 6, "
    "digit_font = '16x24', elements = [{ area = [1, 2, 3, 4], image = 'up' }, "
    "{ area = [5, 6, 7, 8], enabled = false }] }\n";

std::string text(const Rectangle &area) {
    return concat(area.left, ',', area.top, ',', area.right, ',', area.bottom);
}

std::string text(const ColorSet &colors) {
    return toHex({reinterpret_cast<const char *>(&colors), sizeof colors});
}

// What every control has; "styled" when it is as `styles.all` says.
template <class Entry>
std::string common(const Entry &entry) {
    const std::string look =
        concat("j", entry.justify, ' ', entry.fontName, '=', entry.font, " b", +entry.border, " t",
               +entry.transparency, ' ', text(entry.colors));
    const bool isStyled = look == "j6 dig6x8=3 b2 t1 07 08 09 0A 0B 0C 01 02 03 04 05 06 ";
    return concat(text(entry.area), ' ', isStyled ? "styled " : look);
}

std::string text(const GraphicEditEntry &e) {
    return concat(common(e), e.name, " wrap", +e.inputFlagD, " [", e.keySchemeText, "] hide",
                  +e.hideInput, " length", e.maxLength, ',', e.secondLength, " [", e.pattern,
                  "] bar", +e.inputFlagC, " lines", e.multiLine, " input", e.inputType, " flags",
                  +e.inputFlagA, +e.inputFlagB, +e.inputFlagE, " key", e.editValue, " fill",
                  +e.fillSymbol, " value", e.labelValue);
}

TEST_F(DialogSource, FillsEveryField) {
    terminal.environment["default_lang"] = "en";
    terminal.files["m.res"] = writeResourceFile(compiled(head + fullSource));
    ASSERT_EQ(GetDialogParameters("m", 0x3001, DIALOG_LIST), 0);

    const auto &caption = currentGraphicCaptionParameters;
    const auto &button = currentGraphicButtonParameters.entries[0];
    const auto &still = currentGraphicStaticTextParameters.entries[0];
    const auto &menu = currentGraphicMenuParameters.entries[0];
    const auto &[up, down] = menu.elements;
    const std::string records =
        concat(currentDialogType, ' ', currentDialogTimeout, ' ', currentDialogTrasparency, ' ',
               currentDialogPositionType, ' ', +currentDialogBorder, ' ',
               text(currentDialogAreaRectangle), '\n', text(caption.area), ' ', caption.justify,
               ' ', caption.fontName, '=', caption.font, ' ', caption.count, ' ',
               text(caption.colors), '\n', text(currentGraphicEditParameters.entries[0]), '\n',
               text(currentGraphicEditParameters.entries[1]), '\n',
               text(currentGraphicLabelParameters.entries[0]), '\n', common(still), still.name, ' ',
               still.image, '\n', common(button), +button.key, ' ', +button.option, ' ',
               button.image, ' ', button.passiveBackImage, ' ', button.activeBackImage, '\n',
               common(currentGraphicIpEditParameters.entries[0]), '\n',
               common(currentGraphicProgressBarParameters.entries[0]), '\n',
               common(currentGraphicSignatureParameters.entries[0]), '\n', common(menu), menu.text,
               ' ', +menu.keys[0], '.', +menu.keys[1], '.', +menu.keys[2], '.', +menu.keys[3], ' ',
               menu.option, +menu.style, +menu.styleFlag, menu.accelFontMode, ' ', text(up.area),
               up.image, +up.value, ' ', text(down.area), down.image, +down.value, '\n');
    EXPECT_EQ(
        records,
        "2 70000 1 1 0 10,20,210,270\n"
        "0,0,240,28 2 16x24=2 1 01 02 03 04 05 06 01 02 03 04 05 06 \n"
        "1,2,4,6 styled  wrap0 [] hide0 length255,0 [] bar0 lines0 input1 flags000 key0 fill0 "
        "value0\n"
        "5,6,12,14 j6 dig6x8=3 b2 t1 00 00 00 00 00 00 00 00 00 00 00 00 \xC8\xEC\xFF wrap1 "
        "[abc\\n\\nd] hide42 length300,4 [__.__] bar7 lines1 input0 flags234 key130 fill95 value0\n"
        "5,6,12,14 j6 dig6x8=3 b9 t1 07 08 09 0A 0B 0C 01 02 03 04 05 06 sum wrap0 [] hide0 "
        "length255,0 [] bar0 lines0 input1 flags100 key0 fill0 value77\n"
        "1,1,3,3 styled logo logo.png\n"
        "1,1,3,3 styled 69 1 a.png b.png c.png\n"
        "1,2,4,6 styled \n2,3,6,8 styled \n3,4,8,10 styled \n"
        "0,0,0,0 styled goods 59.60.103.13 1562 1,2,4,6up1 5,6,12,140\n");
}

// Loads a description from a block of its exact size.
bool load(const std::string &description) {
    const ExactBlock block(description);
    ParserNode root{};
    uti::Dialogs_ResetControls();
    Parser_Initialize(1, 2);
    return Parser_GetRootNodeInBlock(block.data(), block.size(), &root) == 0 &&
           Parser_ParseNode(&root, ParseDialog) == 0;
}

void buildForm() {
    uti::IG_CreateForm("", currentDialogTrasparency, currentDialogPositionType, 0);
    uti::IG_CreateControls();
}

// Every truncation and every other value of each byte of three descriptions.
TEST_F(DialogSource, DamagedDescriptionsAreReadOrRefused) {
    for (const std::string source :
         {"type = 'message'\ntimeout = 500\narea = [0, 0, 200, 100]\n"
          "caption = { font = 'dig6x8', colors = ['#000001', '#FFFFFF'] }\n"
          "static_text = { area = [1, 2, 3, 4], name = 't', image = 'a.png' }\n"
          "label = { area = [1, 2, 3, 4], name = 'l', multi_line = true }\n",
          "type = 'edit'\nedit = [{ area = [1, 2, 3, 4], key_scheme = ['abc', 'd', 'e'] }, "
          "{ area = [1, 2, 3, 4], pattern = '__.__', fill_symbol = '_' }]\n",
          "type = 'list'\nsignature = { area = [1, 2, 3, 4] }\nmenu = { up_key = 'F1', text = 'm', "
          "elements = [{ area = [1, 2, 3, 4], image = 'up' }] }\n"}) {
        const std::string whole =
            compiled(head + "[dialogs.A]\nid = 0x3001\n" + source).sections.at(3)[0].strings.at(1);
        EXPECT_TRUE(load(whole));
        for (std::size_t size = 0; size < whole.size(); ++size) {
            if (load(whole.substr(0, size)))
                buildForm();
        }
        for (std::size_t at = 0; at < whole.size(); ++at) {
            std::string damaged = whole;
            for (int value = 1; value < 256; ++value) {
                ++damaged[at];
                const bool oneBit = (value & (value - 1)) == 0;
                if (load(damaged) && oneBit)
                    buildForm();
            }
            EXPECT_EQ(toolkit.mistakes, "");
            fake::resetToolkit();
            uti::currentForm = -1;
        }
    }
}

TEST_F(DialogSource, ReportsEveryMistakeAtItsPlace) {
    const std::string start = "[dialogs.A]\nid = 0x3001\ntype = 'message'\n";
    const std::string longText = "'" + std::string(129, 'x') + "'\n";
    std::string eleven;
    for (int i = 0; i < 11; ++i)
        eleven += "[[dialogs.A.label]]\narea = [0, 0, 1, 1]\n";
    const std::pair<std::string, std::string> rows[] = {
        // a source begins in line 7
        {"[dialogs.A]\nid = 0x3001\ntyp = 0\n[[dialogs.A.lable]]\n",
         "7:1: error: a dialog needs a type: \"message\", \"edit\", \"list\", \"confirmation\", "
         "\"signature\" or 0 to 4\n9:1: error: unknown key \"typ\"; did you mean \"type\"?\n"
         "10:13: error: unknown key \"lable\"; did you mean \"label\"?\n"},
        {start + "timeout = -1\nborder = 'none'\nroot_tag = 5\nlabel = 'x'\n",
         "10:11: error: timeout must be milliseconds, 0 to 4294967295\n"
         "11:10: error: border must be false, true or 0 to 255\n"
         "12:12: error: root_tag must be 128 to 255\n13:9: error: label must be a table, not a "
         "text\n"},
        {start +
             "edit = { max_length = 65536, area = [1, 2, 3], hide = '**', fill_symbol = '中' }\n",
         "10:23: error: max_length must be 0 to 65535\n"
         "10:37: error: area must be [left, top, width, height] of 0 to 65535\n"
         "10:55: error: hide must be one character or 0 to 255\n"
         "10:76: error: U+4E2D '中' is not in windows-1251\n"},
        {start + "[dialogs.A.label]\nraw = '01 02'\nfnt = ''\nname = " + longText,
         "10:1: error: label needs area = [left, top, width, height]\n"
         "11:7: error: raw must be whole nodes: tag, length in 2 bytes, value\n"
         "12:1: error: unknown key \"fnt\"; did you mean \"font\"?\n"
         "13:8: error: name takes 129 bytes; it may take 128\n"},
        {"[colors]\nink = '#12345'\n[styles.s]\nfnt = ''\nborder = 'thick'\n" + start +
             "[dialogs.A.label]\nstyle = 't'\narea = [200, 300, 41, 21]\ncolors = ['ik', 'ink']\n"
             "[dialogs.A.button]\nstyle = 's'\narea = [9, 9, 9, 65535]\n"
             "colors = { active = ['ink', [0, 0, 256]], pasive = 1 }\nomit = ['colours']\n",
         "8:7: error: a color is \"#RRGGBB\", [red, green, blue] or a name of [colors]\n"
         "10:1: error: unknown key \"fnt\"; did you mean \"font\"?\n"
         "11:10: error: border must be \"none\", \"line\", \"rounded\", \"sunken\" or 0 to 255\n"
         "16:9: error: \"t\" is not in [styles]; did you mean \"s\"?\n"
         "17:8: warning: area reaches to 241 x 321; the display has 240 x 320 [outside]\n"
         "18:11: error: a color is \"#RRGGBB\", [red, green, blue] or a name of [colors]; did you "
         "mean \"ink\"?\n21:8: error: area must be [left, top, width, height] of 0 to 65535\n"
         "22:10: error: colors needs active and passive, or two colors alone\n"
         "22:29: error: a color is \"#RRGGBB\", [red, green, blue] or a name of [colors]\n"
         "22:43: error: unknown key \"pasive\"; did you mean \"passive\"?\n"
         "23:9: error: button has no key \"colours\"; did you mean \"colors\"?\n"},
        {start + "text_type = 0\ncaption = { omit = ['font'] }\n",
         "10:13: error: text_type must be 1 or 2\n"
         "11:11: warning: the last node, 0x9F, is empty; the library does not read it "
         "[empty-node]\n"},
        {start + eleven, "30:1: error: label 11: a dialog has at most 10 of a kind\n"},
        {start + "[dialogs.A.menu]\nup_key = 49\ntext = " + longText +
             "elements = [{ area = [0, 0, 1, 1] }, { area = [0, 0, 1, 1] }, {}]\n",
         "11:10: warning: dialogs do not know the key 49 [key]\n"
         "12:8: error: text takes 129 bytes; it may take 128\n"
         "13:63: error: element 3: a menu has at most 2\n"
         "13:63: error: element needs area = [left, top, width, height]\n"},
        {start + "edit = { area = { en = [0, 0, 1, 1] }, key_scheme = ['', '', '', '', '', '', '', "
                 "'', '', '', '', '', ''], name = { en = '', ru = '', de = '' } }\n",
         "10:17: error: area has no value in ru\n"
         "10:53: error: key_scheme has 13 texts; it may have 12\n"
         "10:134: error: \"de\" is not in [languages]\n"},
        {start + "languages = ['ru', 'de']\n[dialogs.B]\nid = 0x3001\ntype = 0\nlanguages = []\n"
                 "[dialogs.C]\nid = 0x3001\ntype = 0\n",
         "10:20: error: \"de\" is no language of this section\n"
         "14:13: error: a dialog needs a language\n"
         "16:6: error: id 0x3001 is taken by A\n7:10: note: A is here\n"},
    };
    for (const auto &[source, findings] : rows) {
        SCOPED_TRACE(source.substr(0, 300));
        EXPECT_EQ(findingsIn(head + source), findings);
    }
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

// Whatever the bytes are, their dump compiles to them, as a dialog or as a string in hex.
TEST_F(DialogSource, DumpsAnythingTruly) {
    const ResourceFile full = compiled(head + fullSource);
    const std::string english = full.sections.at(3)[0].strings.at(1);
    const std::string russian = full.sections.at(3)[1].strings.at(1);
    const auto isDialog = [&](const std::string &bytes) {
        const ResourceFile file = fileOf(bytes, russian);
        const std::string source = dumped(file);
        EXPECT_EQ(compiled(source), file) << source;
        return source.find("[dialogs.") != source.npos;
    };
    for (std::size_t size = 1; size < english.size(); size += 31)
        EXPECT_FALSE(isDialog(english.substr(0, size))) << size;
    std::size_t dialogs = 0;
    for (std::size_t at = 0; at < english.size(); at += 3) {
        std::string damaged = english;
        damaged[at] = static_cast<char>(damaged[at] ^ "\x01\x80\x10\x07"[at % 4]);
        dialogs += isDialog(damaged);
    }
    EXPECT_GT(dialogs, english.size() / 6);

    std::string ten;
    for (int i = 0; i < 10; ++i)
        ten += group(150);
    EXPECT_TRUE(isDialog(dialog(1, ten)));
    for (const std::string &other :
         {dialog(1, ten + ten), group(0x80, group(148)), std::string("Yes"), group(0x80),
          english + english, english + "\x81"})
        EXPECT_FALSE(isDialog(other)) << toHex(other.substr(0, 20));
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
