// The desktop stand-in of the widget toolkit: called as the library calls it, answered by key
// scripts on the virtual clock, and looked at through dumps and pictures. tests/golden/ holds what
// is expected; with UTI_GOLDEN_UPDATE set it is written anew.
#include "host/faces/choose.h"
#include "host/faces/recorder.h"
#include "host/faces/script_face.h"
#include "host/terminal/clock.h"
#include "host/toolkit/code_page.h"
#include "host/toolkit/display.h"
#include "host/toolkit/dump.h"
#include "terminal.h"
#include "tests/command.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <sys/resource.h>
#include <unistd.h>

namespace {

using namespace uti::host;
using namespace std::literals;

constexpr uint16_t ink = rgb(33, 43, 54), white = 0xFFFF, blue = rgb(21, 101, 192);

std::string contentsOf(const std::filesystem::path &path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator(file), {}};
}

// A text in the terminal's code page.
std::string cp(std::string_view text) {
    return terminalCodePage().fromUtf8(text);
}

int32_t endOnEnterAndEscape(uint8_t *key) {
    return *key == IG_KEY_ESCAPE ? -1 : *key == IG_KEY_ENTER;
}

// Nobody at the display; keeps what it was shown.
class Watcher final : public Face {
public:
    void show(const Surface &, const Rect &changed) override { shown.push_back(changed); }
    std::optional<Event> next(uint32_t milliseconds) override {
        pass(milliseconds);
        return std::nullopt;
    }
    std::vector<Rect> shown;
};

class Toolkit : public testing::Test {
protected:
    Toolkit() : folder(mkdtemp((testing::TempDir() + "toolkit-XXXXXX").data())) {
        useVirtualClock();
        display().useFace(std::make_unique<Watcher>());
        form = newForm("Form");
    }
    ~Toolkit() override {
        igUI_Del(screen, form);
        std::filesystem::remove_all(folder);
    }

    static int32_t newForm(const char *caption) {
        const int32_t made = igForm_Create(cp(caption).c_str(), 0);
        igForm_ClearOption(made, 6);
        igForm_SetOption(made, IG_FORM_TRANSPARENT);
        igForm_SetHeaderColors(made, 0xF79E, 0x2DBD);
        return made;
    }
    void renew(const char *caption) {
        igUI_Del(screen, form);
        form = newForm(caption);
    }
    int32_t add(int32_t widget, uint32_t border = 1, uint32_t justify = IG_JUSTIFY_LEFT) const {
        igWidget_SetBorder(widget, border);
        igWidget_SetJustify(widget, justify);
        igWidget_SetActiveColor(widget, white, blue);
        igWidget_SetPassiveColor(widget, ink, white);
        EXPECT_EQ(igForm_Add(form, widget), 0);
        return widget;
    }
    int32_t addButton(int16_t x, const char *text, uint8_t key, uint32_t option = IG_BUTTON_END) {
        const int32_t button =
            add(igButton_Create(x, 220, 108, 40, cp(text).c_str(), 0, key), 1, 0);
        igButton_SetOption(button, option);
        return button;
    }
    int32_t addInput(uint16_t maxLength, uint32_t style, uint8_t radix = 0) {
        const int32_t input =
            add(igInput_Create(8, 30, 222, 28, maxLength, style | IG_INPUT_CURSOR), 2);
        igInput_SetRadix(input, radix);
        return input;
    }
    int32_t addMenu(uint32_t style, uint32_t columns, int items) {
        const int32_t menu = igMenuBox_Create(0, 0, 238, 200, columns, style);
        const std::string names[] = {cp("Чай"), "Coffee", "An apple juice with pulp"};
        for (int i = 0; i < items; ++i) {
            const IgMenuItem item{reinterpret_cast<uintptr_t>(names[i % 3].c_str()),
                                  reinterpret_cast<uintptr_t>("90"), 0, i == 1 || i == 2};
            EXPECT_EQ(igMenuBox_AddItemExt2(menu, &item, 0, 1), 0);
        }
        igMenuBox_SetItemsActiveColor(menu, white, blue);
        igMenuBox_SetItemsPassiveColor(menu, ink, white);
        return add(menu, 0);
    }

    // Has the next run answered by a script, which must not fail.
    void answerWith(const std::string &script) {
        failed = false;
        display().useFace(std::make_unique<ScriptFace>(
            display(), parseScript(UTI_GOLDEN "/test.script", script), folder, failed));
    }
    static int32_t run(int32_t shown, IgEventCallback callback = endOnEnterAndEscape) {
        igForm_Reset(shown);
        igUI_Add(screen, shown);
        EXPECT_EQ(igUI_ShowExt(screen, shown, callback), 0);
        while (igUI_IsModal()) {
            Wait(1);
            WaitSleep(100);
        }
        return igForm_GetState(shown);
    }
    int32_t play(const std::string &script, IgEventCallback callback = endOnEnterAndEscape) {
        answerWith(script);
        const int32_t state = run(form, callback);
        display().useFace(std::make_unique<Watcher>());
        EXPECT_FALSE(failed) << script;
        return state;
    }
    // Runs the form until a dump of it is taken, and returns the line of its nth widget.
    std::string line(const std::string &script, int widget = 0) {
        play(script + "\ndump lines\nkey ESCAPE\n");
        std::ifstream lines(folder / "lines.txt");
        std::string line;
        while (std::getline(lines, line))
            if (line.starts_with("  ") && widget-- == 0)
                return line.substr(2);
        return "none";
    }
    // Plays a script and compares what it dumps and shoots under `name` with what is expected.
    void expectGolden(const std::string &name, const std::string &script) {
        SCOPED_TRACE(name);
        const std::string golden = UTI_GOLDEN "/" + name + ".txt", seen = folder / (name + ".txt");
        const bool isNew = std::getenv("UTI_GOLDEN_UPDATE");
        isNew ? setenv("UTI_UPDATE", "1", 1) : unsetenv("UTI_UPDATE");
        play(script + "\nexpect shot " + name + "\ndump " + name + "\nkey ESCAPE\n");
        if (isNew)
            std::ofstream(golden) << contentsOf(seen);
        EXPECT_EQ(contentsOf(seen), contentsOf(golden));
    }

    static constexpr int32_t screen = Display::handle;
    std::filesystem::path folder;
    int32_t form;
    bool failed = false;
};

// --------------------------------------------------------------------------- what is seen

TEST_F(Toolkit, ShowsFormsOfEveryKind) {
    const std::string question = cp("Оплатить заказ № 12?\nЁжик: 1 250,00 руб.");
    add(igStatic_Create(8, 10, 222, 70, question.c_str(), 0), 2);
    addButton(8, "Да", IG_KEY_ENTER);
    addButton(122, "Нет", IG_KEY_ESCAPE);
    expectGolden("confirm", "key RIGHT");

    const int32_t below = form;
    igUI_Show(screen, below);
    form = igChildForm_Create(30, 110, 180, 110, cp("Ошибка").c_str(), 0);
    igForm_SetOption(form, IG_FORM_OPAQUE);
    add(igStatic_Create(8, 8, 160, 60, "It has a shadow and a mark to close it", 0), 0, 0);
    expectGolden("child", "");
    igUI_Del(screen, below);

    renew("Registration");
    addInput(20, 0);
    add(igInput_Create(8, 64, 106, 28, 8, IG_INPUT_DIGITS | IG_INPUT_AMOUNT | IG_INPUT_RIGHT));
    igInput_SetHideSymbol(add(igInput_Create(122, 64, 108, 28, 4, 0x601), 3, 0), '*');
    igPatternInput_SetFillSymbol(add(igPatternInput_Create(8, 98, 222, 28, 0x641, "__.__.____")),
                                 '_');
    igIPInput_SetIPtext(add(igIPInput_Create(8, 132, 222, 30, 0x240)), "10.0.0.1");
    add(igMultiLine_Create(8, 168, 222, 52, IG_MULTI_LINE_SCROLL_BAR | IG_MULTI_LINE_WRAP,
                           "A text that does not fit into one line, and not into three either"));
    igProgress_SetValue(add(igProgress_Create(8, 226, 222, 20), 2, 0), 40);
    expectGolden("inputs",
                 "type \"Anna Ё\"\nkey TAB 4 2 TAB 1 2 3 TAB 0 1 0 2 TAB 1 0 7 RIGHT RIGHT");

    renew("Меню");
    addMenu(IG_MENU_WRAP | IG_MENU_SHOW_DIGITS | IG_MENU_SCROLL_BAR, 0, 12);
    expectGolden("menu", "key DOWN DOWN");

    renew("Sign");
    add(igSignBox_Create(8, 10, 222, 150), 2);
    expectGolden("sign", "pen 30,100 60,80 90,100\npen 40,60\nadvance 61s");
}

TEST_F(Toolkit, FontFiles) {
    const char *const file = "DejaVuSans.ttf";
    EXPECT_EQ(igUI_SetFileFont(screen, 7, file), 0);
    EXPECT_LT(display().stage().fonts.at(7).width('i'), display().stage().fonts.at(7).width('W'));
    EXPECT_EQ(&display().stage().fonts.at(8), &display().stage().fonts.at(1));
    EXPECT_LT(igUI_SetFileFont(screen, 12, file), 0);
    EXPECT_LT(igUI_SetFileFont(screen, 6, "/dev/null"), 0);
    EXPECT_LT(igUI_SetFileFont(screen, 6, nullptr), 0);
}

TEST_F(Toolkit, FontsOfCodePages) {
    Fonts &fonts = display().stage().fonts;
    const auto load = [](int32_t slot, const char *file) {
        return igUI_SetFileFont(screen, slot, file);
    };
    const auto looks = [&](std::size_t slot, char character) {
        const uint8_t *first = fonts.at(slot).coverage(character);
        const int count = fonts.at(slot).width(character) * fonts.at(slot).height();
        return std::vector(first, first + count);
    };
    ASSERT_EQ(load(6, "DejaVuSans.ttf"), 0);
    const auto cyrillic = looks(1, '\xE4'), file = looks(6, '\xE4'), latin = looks(1, 'A');

    // The same letters elsewhere: e4 is the letter de in the one, a with dots in the other.
    ASSERT_EQ(load(1, "/none/cp5_12x16.fon"), 0);
    EXPECT_EQ(looks(1, '\xD4'), cyrillic);
    EXPECT_EQ(looks(6, '\xD4'), file) << "files go by slot 1";
    ASSERT_EQ(load(1, "cp1252_12x16.fon"), 0);
    EXPECT_EQ(looks(1, 'A'), latin);
    EXPECT_NE(looks(1, '\xE4'), cyrillic);
    EXPECT_EQ(looks(0, '\xE4'), looks(3, '\xE4')) << "what was not loaded stays";
    ASSERT_EQ(load(7, "ncpwindows-1252_16x24.fon"), 0);
    EXPECT_EQ(fonts.at(7).height(), 24);
    ASSERT_EQ(load(8, "cp1252_16x24.fon"), 0);
    EXPECT_EQ(looks(7, 'A')[0], 255 - looks(8, 'A')[0]) << "negative";
    for (const char *none : {"cp7777_12x16.fon", "cp1252_13x16.fon", "cp65001_12x16.fon", "cp.fon"})
        EXPECT_NE(load(2, none), 0) << none;

    const int32_t input = addInput(20, 0);
    EXPECT_EQ(line("type \"Größe\"\nexpect text \"Größe\""), "input 8,30 222x28 \"Größe\" focus");
    EXPECT_STREQ(igInput_GetValue(input), "Gr\xF6\xDF\x65");
    answerWith("type \"Ж\"");
    run(form);
    EXPECT_TRUE(failed) << "it is not in this code page";
    display().useFace(std::make_unique<Watcher>());
    fonts.use("windows-1251");
    EXPECT_EQ(looks(1, '\xE4'), cyrillic);
    EXPECT_EQ(looks(6, '\xE4'), file);
}

TEST_F(Toolkit, DrawsOnlyWhatChanged) {
    const int32_t input = addInput(20, 0);
    auto face = std::make_unique<Watcher>();
    auto &shown = face->shown;
    display().useFace(std::move(face));
    igUI_Add(screen, form);
    igUI_ShowExt(screen, form, [](uint8_t *) { return int32_t{0}; });
    EXPECT_EQ(std::exchange(shown, {}), std::vector{(Rect{0, 0, 240, 320})});
    Wait(500);
    EXPECT_TRUE(shown.empty());
    igInput_SetValue(input, "new");
    Wait(1);
    const Rect client = display().form(form)->client();
    EXPECT_EQ(std::exchange(shown, {}), std::vector{(Rect{8, 30, 222, 28}.moved(client.origin()))});
    Wait(60000);
    EXPECT_EQ(shown, std::vector{(Rect{0, 0, 240, 20})}) << "the clock of the status line";
}

// --------------------------------------------------------------------------------- typing

TEST_F(Toolkit, InputsTakeKeys) {
    const struct {
        uint32_t style;
        uint8_t radix;
        uint16_t maxLength;
        std::string script, value;
    } rows[] = {
        {0, 0, 9, "key 2 2 3 4 4 4", "bdi"},
        {0, 0, 9, "key 2\nadvance 1s\nkey 2 0 0", "aa0"},
        {0, 0, 9, "key 2 2 2 2 2", "a"},
        {0, 0, 2, "key 2 3 4 5 5", "ad"},
        {0, 0, 9, "key LAYOUT 2 LAYOUT 2 2 LAYOUT 2 LAYOUT 2 2 * #", "AбА22*#"},
        {0, 0, 9, "key 2 3 4 BACKSPACE\nadvance 1s\nkey 9 9", "adx"},
        {0, 0, 9, "key 2 3 4 CLEAR 9", "w"},
        {0, 0, 9, "type \"gjil mЁ\"", "gjil mЁ"},
        {IG_INPUT_UPPER_CASE, 0, 9, "type \"xё\"\nkey 2", "XЁA"},
        {0x401, 0, 9, "key 2 2 # *\ntype \"a5.\"", "225"},
        {0x501, 0, 9, "key 2 LAYOUT 2 2\ntype \"a-5\"", "2BA5"},
        {IG_INPUT_DIGITS, 0, 9, "key 2 LAYOUT 2\ntype \"z!\"", "2az"},
        {0x003, 2, 9, "key * 1 * * 2 3 4\ntype \".a\"", "1.23"},
        {0x003, 0, 9, "key 1 * 2", "12"},
        {0x00B, 2, 9, "key 0 1 2 5 0 BACKSPACE", "1.25"},
        {0x00B, 2, 5, "key 1 2 3 4 5 6", "12.34"},
        {0x00B, 2, 9, "key 7 BACKSPACE BACKSPACE", ""},
    };
    // What the library's hook does for an application that takes every key as it is.
    const auto hook = [](int32_t widget, int32_t key) {
        const std::string text = igInput_GetValue(widget);
        return igInput_SetValue(widget, (text + static_cast<char>(key)).c_str());
    };
    int32_t input = 0;
    for (const auto &[style, radix, maxLength, script, value] : rows) {
        SCOPED_TRACE(script + " gives " + value);
        renew("Input");
        input = addInput(maxLength, style, radix);
        EXPECT_EQ(play(script + "\nkey ENTER"), 1);
        EXPECT_EQ(terminalCodePage().toUtf8(igInput_GetValue(input)), value);
        EXPECT_EQ(igInput_GetMaxLen(input), maxLength);
        if (script.find("LAYOUT") == std::string::npos) {
            igInput_SetValue(input, "");
            igInput_SetUserFunc(input, hook, 0, 0, 0);
            EXPECT_EQ(play("key CLEAR\n" + script + "\nkey ENTER"), 1);
            EXPECT_EQ(terminalCodePage().toUtf8(igInput_GetValue(input)), value)
                << "with a function";
            igInput_SetUserFunc(input, nullptr, 0, 0, 0);
        }
    }
    igInput_SetValue(input, "1203,5 and more");
    EXPECT_STREQ(igInput_GetValue(input), "1203.50");
    igInput_SetRadix(input, 0);
    for (const auto &[given, value] : {std::pair("no digits", ""), {"7", "7.00"}}) {
        igInput_SetValue(input, given);
        igInput_SetRadix(input, 2);
        EXPECT_STREQ(igInput_GetValue(input), value);
        igInput_SetRadix(input, 0);
    }
    igInput_SetValue(input, nullptr);
    EXPECT_STREQ(igInput_GetValue(input), "");
}

TEST_F(Toolkit, CutTextsAreTold) {
    const auto box = [this](int32_t widget, const char *text) {
        igInput_SetValue(widget, text);
        return add(widget, 0);
    };
    const struct {
        std::function<void()> add;
        const char *told;
    } rows[] = {
        {[&] { add(igStatic_Create(0, 0, 84, 32, "one two six", 0), 0); }, nullptr},
        {[&] { add(igStatic_Create(0, 0, 84, 31, "one two six", 0), 0); }, "static"},
        {[&] { add(igButton_Create(0, 0, 60, 22, "Go on!", 0, 13)); }, "button"},
        {[&] { box(igInput_Create(0, 0, 72, 18, 9, IG_INPUT_READ_ONLY), "sixsix"); }, nullptr},
        {[&] { box(igInput_Create(0, 0, 72, 18, 9, IG_INPUT_READ_ONLY), "sixsix7"); }, "input"},
        {[&] { box(igInput_Create(0, 0, 72, 28, 9, 0), "sixsix"); }, "input"},
        {[&] { add(igPatternInput_Create(0, 0, 60, 28, 1, "__.__.__")); }, "pattern"},
        {[&] { igIPInput_SetIPtext(add(igIPInput_Create(0, 0, 99, 30, 0)), "1.2.3.255"); }, "ip"},
        {[&] { add(igMultiLine_Create(0, 0, 80, 30, 0x100, "one two six")); }, "multiline"},
        {[&] { add(igMultiLine_Create(0, 0, 80, 30, 0x101, "one two six")); }, nullptr},
        {[&] { add(igMultiLine_Create(0, 0, 80, 99, 0x001, "one two six")); }, "multiline"},
        {[&] { addMenu(0, 0, 2); }, nullptr},
        {[&] { addMenu(0, 0, 3); }, "menu"},
        {[&] { addMenu(0, 1, 3); }, "menu"},
        {[&] { renew("A caption of 22 letters"); }, "caption"},
    };
    int number = 0;
    for (const auto &[widget, told] : rows) {
        renew(std::to_string(++number).c_str()); // each is told once
        widget();
        SCOPED_TRACE(told ? told : "fits");
        testing::internal::CaptureStderr();
        answerWith("expect fits\nkey ESCAPE");
        run(form);
        display().useFace(std::make_unique<Watcher>());
        const std::string said = testing::internal::GetCapturedStderr();
        EXPECT_EQ(failed, told != nullptr) << said;
        const std::string lines = dump(display());
        EXPECT_EQ(lines.find(" cut") != std::string::npos, told != nullptr) << lines;
        if (told) {
            const std::string what = "the text of "s + told;
            EXPECT_EQ(said.find("uti: " + what), 0u) << said;
            EXPECT_NE(said.find("error: " + what), std::string::npos) << said;
            EXPECT_TRUE(loadImage(folder / "failed.png"));
        }
    }
}

TEST_F(Toolkit, InputsFollowControlCodesAndSchemes) {
    const int32_t input = addInput(9, 0);
    char one[] = "xy", two[] = "\xE6";
    char *const scheme[12] = {one, two};
    EXPECT_EQ(igUI_SetKeyScheme(screen, 1, scheme), 0);
    EXPECT_EQ(igWidget_SetKeyScheme(input, 1), 0);
    EXPECT_EQ(igInput_SetControlCodes(input, IG_KEY_F1, IG_KEY_F1, IG_KEY_F1, '#'), 0);
    EXPECT_EQ(play("key 1 1 2 2 3\nkey F1 F1 F1 F1 F1 F1 3 #"), IG_STATE_CONFIRMED);
    EXPECT_EQ(igInput_GetValue(input), cp("д")) << "F1 erases four and changes the letters twice";
    EXPECT_LT(igUI_SetKeyScheme(screen, 0, scheme), 0);
    EXPECT_LT(igUI_SetKeyScheme(screen, 1, nullptr), 0);
}

TEST_F(Toolkit, TheUserFunctionStandsInForTheKey) {
    const int32_t input = addInput(9, 0);
    igInput_SetUserFunc(
        input,
        [](int32_t widget, int32_t key) {
            igInput_SetValue(widget, key == 'q' ? "quick" : igInput_GetValue(widget));
            return int32_t{key == 'z'};
        },
        0, 0, 0);
    play("type \"azqz\"\nkey ENTER");
    EXPECT_STREQ(igInput_GetValue(input), "quickz");
}

TEST_F(Toolkit, PatternsIpAddressesAndLongTexts) {
    const int32_t pattern = add(igPatternInput_Create(0, 0, 90, 28, 0x641, "(__)__-__"));
    const int32_t ip = add(igIPInput_Create(0, 30, 222, 30, 0x240));
    const int32_t text = add(igMultiLine_Create(0, 60, 120, 34, IG_MULTI_LINE_WRAP, "one two"));
    EXPECT_EQ(line("key 1 2 3 4 BACKSPACE"), "pattern 0,0 90x28 \"(12)3.-..\" cut focus");
    EXPECT_STREQ(igInput_GetValue(pattern), "123");
    igPatternInput_SetMaxLen(pattern, 2);
    EXPECT_STREQ(igInput_GetValue(pattern), "12");

    const std::pair<const char *, const char *> addresses[] = {
        {"", ""},
        {"key 1 9 2 1 6 8 5", "192.168.5.0"},
        {"key 1 * * 3", "1.0.3.0"},
        {"key 3 0 0 0", "30.0.0.0"},
        {"key 0 1", "1.0.0.0"},
        {"key 1 2 BACKSPACE 5 RIGHT 4 LEFT 7 8", "78.4.0.0"}}; // entered anew, typed anew
    for (const auto &[script, address] : addresses) {
        SCOPED_TRACE(script);
        igIPInput_SetIPtext(ip, "");
        play("key TAB\n"s + script + "\nkey ENTER");
        char out[17] = "################";
        EXPECT_EQ(igIPInput_GetIPtext(ip, out, 16), 0);
        EXPECT_STREQ(out, address);
    }
    char cut[6] = "#####";
    igIPInput_SetIPtext(ip, "192.168.1.777");
    igIPInput_GetIPtext(ip, cut, 5);
    EXPECT_STREQ(cut, "192.");

    igForm_SetFocused(form, text);
    igMultiLine_SetMaxLen(text, 12);
    EXPECT_EQ(igWidget_GetDeltaY(text, 0) + igWidget_GetDeltaY(text, 1), 0);
    play("key TAB TAB\ntype \" threefour\"\nkey ENTER");
    EXPECT_STREQ(igMultiLine_GetValue(text), "one two thre");
    EXPECT_EQ(igWidget_GetDeltaY(text, 0), 16);
    EXPECT_EQ(line("key TAB TAB UP", 2), "multiline 0,60 120x34 \"one two thre\" cut focus");
    EXPECT_EQ(igWidget_GetDeltaY(text, 1), 16);
}

TEST_F(Toolkit, MenusAreChosenFrom) {
    constexpr uint32_t all = IG_MENU_WRAP | IG_MENU_CONFIRM | IG_MENU_DIGITS;
    const struct {
        uint32_t style, columns;
        int items;
        std::string script;
        int32_t selected, state;
    } rows[] = {
        {all, 0, 5, "key ENTER", 2, 1},
        {all, 0, 5, "key DOWN DOWN DOWN DOWN ENTER", 1, 1},
        {0, 0, 5, "key UP UP UP ESCAPE", 1, -1},
        {all, 0, 20, "key 9", 9, 1},
        {all, 0, 4, "key 5 4", 4, 1},
        {0, 0, 5, "key 4 ESCAPE", 2, -1},
        {all, 0, 20, "key RIGHT RIGHT LEFT UP ENTER", 9, 1},
        {all, 0, 20, "key F1 F2 F2 177 ENTER", 11, 1},
        {all, 1, 7, "key RIGHT DOWN LEFT ENTER", 4, 1},
        {all, 0, 9, "pen 60,130", 4, 1},
        {all, 0, 9, "pen 60,130 60,160\nkey ESCAPE", 4, -1},
        {all, 0, 20, "pen 60,150 60,50\nkey ENTER", 5, 1},
        {all, 0, 0, "key DOWN 1 ENTER", IG_ERROR_ARGUMENT, 1},
    };
    for (const auto &[style, columns, items, script, selected, state] : rows) {
        SCOPED_TRACE(script);
        renew("Menu");
        const int32_t menu = addMenu(style, columns, items);
        igMenuBox_SetControlCodes(menu, IG_KEY_F1, IG_KEY_F2, 178, 177);
        EXPECT_EQ(play(script), state);
        EXPECT_EQ(igMenuBox_GetSelected(menu), selected);
    }
    renew("Long");
    const int32_t menu = addMenu(0, 0, 20);
    EXPECT_EQ(igWidget_GetDeltaY(menu, 0), 0);
    const int32_t below = igWidget_GetDeltaY(menu, 1);
    EXPECT_TRUE(line("key RIGHT RIGHT RIGHT").ends_with("item 20 of 20 cut focus"));
    EXPECT_TRUE(igWidget_GetDeltaY(menu, 0) == below && igWidget_GetDeltaY(menu, 1) == 0);
}

// ---------------------------------------------------------------------------------- forms

std::string keysSeen;

TEST_F(Toolkit, KeysFindTheirWay) {
    addInput(9, 0x401);
    addButton(8, "Yes", IG_KEY_F1);
    addButton(122, "No", IG_KEY_ESCAPE);
    addButton(60, "More", IG_KEY_MENU, 0);
    const auto spy = [](uint8_t *key) {
        keysSeen += *key ? std::to_string(*key) + ' ' : "";
        if (*key == IG_KEY_F2)
            *key = 0;
        return *key == '7' ? 77 : endOnEnterAndEscape(key);
    };
    const struct {
        std::string script;
        int32_t state;
        std::string seen;
        uint8_t terminalKey;
    } rows[] = {
        {"key ENTER", 1, "13 ", 13},
        {"key 5 7", 77, "53 55 ", '7'},
        {"key F1", 1, "59 ", 129},
        {"key TAB ENTER", 1, "9 59 ", 129},
        {"key DOWN RIGHT ENTER", -1, "108 106 27 ", 27},
        {"key UP UP ENTER", -1, "103 103 27 ", 27},
        {"key MENU F2 F2 LAYOUT\nkeyboard LAYOUT\nkey ESCAPE", -1, "139 60 60 69 27 ", 27},
        {"pen 20,280", 1, "255 255 59 ", 129},
        {"pen 20,280 200,100\npen 200,280", -1, "255 255 255 255 255 27 ", 27},
        {"type \"g;7\"", 77, "52 49 55 ", '7'},
    };
    for (const auto &[script, state, seen, terminalKey] : rows) {
        SCOPED_TRACE(script);
        keysSeen.clear();
        Keyboard_Reset();
        EXPECT_EQ(play(script, spy), state);
        EXPECT_EQ(keysSeen, seen);
        EXPECT_EQ(Keyboard_GetLastKey(), terminalKey);
        EXPECT_EQ(Keyboard_GetLastKey(), 0);
    }
    for (const auto &[script, state] :
         {std::pair{"key F1", 1}, {"key TAB TAB ENTER", -1}, {"key ESCAPE", -1}, {"key ENTER", 1}})
        EXPECT_EQ(play(script, nullptr), state) << script;
    EXPECT_EQ(igUI_SetKeyboard(screen, [](int32_t, int32_t key) { return int32_t{key == '7'}; }),
              0);
    EXPECT_EQ(play("key 7 7 ENTER", spy), 1);
    EXPECT_EQ(igUI_SetKeyboard(screen, IG_KeyPushCallback), 0);
}

TEST_F(Toolkit, TimePasses) {
    static int polls;
    polls = 0;
    igForm_SetTimeOut(form, 2000);
    const auto poll = [](uint8_t *key) { return ++polls, endOnEnterAndEscape(key); };
    EXPECT_EQ(play("advance 1500ms\npen 5,5\nadvance 2s", poll), IG_STATE_TIME_OUT);
    EXPECT_NEAR(GetTicks(), 3500, 101);
    EXPECT_NEAR(polls, 36, 2);
    const auto stay = [](uint8_t *key) {
        return igForm_ResetTime(display().running()->handle) + endOnEnterAndEscape(key);
    };
    EXPECT_EQ(play("advance 3s\nkey ENTER", stay), 1);
    TerminalTime time;
    GetDateTime(nullptr, &time);
    EXPECT_TRUE(time.hour == 12 && time.second == 6);
}

// Whatever an application does inside a callback, nothing that is gone is touched again.
TEST_F(Toolkit, CallbacksMayDoAnything) {
    static int32_t other;
    const int32_t input = addInput(9, 0);
    const auto end = [](int32_t, int32_t) { return igUI_Del(screen, display().running()->handle); };
    igInput_SetUserFunc(input, end, 0, 0, 0);
    EXPECT_EQ(play("key 2"), IG_STATE_CANCELLED);
    EXPECT_EQ(display().widget(input), nullptr);

    form = newForm("Outer");
    other = newForm("Inner");
    const auto showOther = [](uint8_t *) {
        Wait(300); // is not asked again meanwhile
        EXPECT_EQ(run(other), 1);
        return igUI_Del(screen, other);
    };
    EXPECT_EQ(play("wait text \"Inner\" 1s\nkey ENTER", showOther), IG_STATE_CANCELLED);
    form = newForm("Refreshed");
    const int32_t input2 = addInput(9, 0);
    answerWith("type \"x\"\nkey 2\nkey ENTER");
    int32_t state = 102;
    for (int i = 0; i < 9 && state == 102; ++i) // a callback that always has the form shown anew
        state = run(form, [](uint8_t *) { return int32_t{102}; });
    EXPECT_EQ(state, IG_STATE_CONFIRMED);
    EXPECT_STREQ(igInput_GetValue(input2), "xa");
    igUI_Del(screen, form);
    form = newForm("Ends itself");
    const auto endItself = [](uint8_t *) {
        return igUI_Del(screen, display().running()->handle) + 5;
    };
    EXPECT_EQ(play("", endItself), IG_STATE_CANCELLED);
}

TEST_F(Toolkit, PicturesCoverTheStatusLineUntilTheNextForm) {
    igForm_ClearOption(form, 7);
    igForm_SetOption(form, IG_FORM_TRANSPARENT | IG_FORM_FRAMELESS);
    answerWith("");
    EXPECT_EQ(IG_DisableStatusLine(), 0);
    EXPECT_EQ(igForm_Reset(form) + igUI_Add(screen, form) + igUI_Show(screen, form), 0);
    EXPECT_EQ(igForm_GetClientHeight(form), 320);
    IG_EnableStatusLine();
    EXPECT_FALSE(display().statusLineShown());
    Display_SetCursorPosition(3, 4);
    const int32_t next = newForm("Next");
    igUI_Add(screen, next);
    igUI_Show(screen, next);
    EXPECT_EQ(dump(display()),
              "display 240x320\nstatus 12:00\ncursor 3,4\nform 0,20 240x300 \"Next\"\n");
    igUI_Del(screen, next);
}

TEST_F(Toolkit, UnknownHandlesAreRefused) {
    const int32_t input = addInput(9, 0), gone = newForm("Gone");
    igUI_Del(screen, gone);
    const IgMenuItem item{};
    for (const int32_t it : {0, -1, INT32_MIN, INT32_MAX, screen, gone, form + 1000}) {
        SCOPED_TRACE(it);
        for (const int32_t result :
             {igUI_Add(screen, it), igUI_Del(screen, it), igUI_ShowExt(screen, it, nullptr),
              igUI_Show(7, form), igForm_Add(form, it), igForm_Add(it, input),
              igForm_SetFocused(form, it), igForm_GetState(it), igForm_Reset(it),
              igForm_GetClientWidth(it), igWidget_GetType(it), igWidget_SetFont(it, 1),
              igInput_SetValue(it, "x"), igMenuBox_AddItemExt2(it, &item, 0, 1),
              igMenuBox_GetSelected(it), igSignBox_SaveData(it, "x")})
            EXPECT_LT(result, 0);
        EXPECT_EQ(igInput_GetValue(it) + ""s + igMultiLine_GetValue(it), "");
        EXPECT_EQ(igWidget_GetDeltaY(it, 0), 0);
    }
    EXPECT_LT(igForm_Add(form, input), 0) << "it belongs to the form already";
    EXPECT_LT(igMenuBox_GetSelected(input) + igStatic_SetImage(input, 0), 0);
    EXPECT_LT(igChildForm_Create(0, 0, 0, 10, "", 0), 0);
    EXPECT_EQ(igWidget_GetType(input), IG_WIDGET_INPUT);
}

TEST_F(Toolkit, ImagesAndSignatures) {
    const int32_t box = add(igSignBox_Create(8, 10, 100, 80));
    const std::string file = folder / "drawn.png";
    EXPECT_EQ(igSignBox_SaveData(box, file.c_str()), 0) << "nothing is drawn";
    play("pen 20,70\nkey CLEAR\npen 20,70 90,120\nkey ENTER");
    EXPECT_GT(igSignBox_SaveData(box, file.c_str()), 0);
    EXPECT_LT(igSignBox_SaveData(box, "/nowhere/x.png"), 0);

    // However much of another one reaches the medium, the first stays whole.
    const auto bytes = [&] { return (std::stringstream() << std::ifstream(file).rdbuf()).str(); };
    const std::string before = bytes();
    play("pen 20,70\nkey CLEAR\npen 30,60 80,110\nkey ENTER");
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{0, RLIM_INFINITY};
    while (setrlimit(RLIMIT_FSIZE, &limit), igSignBox_SaveData(box, file.c_str()) < 0) {
        ASSERT_EQ(bytes(), before);
        ++limit.rlim_cur;
    }
    EXPECT_EQ(limit.rlim_cur, std::filesystem::file_size(file));
    EXPECT_FALSE(bytes() == before || std::filesystem::exists(file + ".new"));
    limit.rlim_cur = RLIM_INFINITY;
    setrlimit(RLIMIT_FSIZE, &limit);

    const int32_t image = igImage_CreateFromFile(file.c_str());
    EXPECT_EQ(igImage_CreateFromFile(file.c_str()), image);
    ASSERT_TRUE(display().stage().images.find(image));
    EXPECT_EQ(display().stage().images.find(image)->size.height, 80);
    EXPECT_EQ(igUI_SetBackgroundImage(screen, image) + igUI_SetBackgroundImage(screen, 0), 0);
    EXPECT_LT(igUI_SetBackgroundImage(screen, -7) + igUI_SetBackgroundImage(screen, form), 0);
    EXPECT_EQ(igImage_CreateFromFile(nullptr) + igImage_CreateFromFile(""), 0);

    char path[64] = "kept";
    EXPECT_EQ(IG_GetFullImagePath("", path, 64), 0);
    EXPECT_STREQ(path, "kept");
    setenv("UTI_IMAGES", folder.c_str(), 1);
    EXPECT_EQ(igImage_CreateFromFile("drawn.png"), image);
    EXPECT_EQ(File_IsValid("drawn.png"), 1) << "as the library asks before it shows a picture";
    IG_GetFullImagePath("drawn.png", path, 64);
    EXPECT_EQ(path, file);
    IG_GetFullImagePath("drawn.png", path, 8);
    EXPECT_STREQ(path, "drawn.p");
    unsetenv("UTI_IMAGES");
}

// -------------------------------------------------------------------------------- scripts

TEST_F(Toolkit, MistakesOfScriptsAreReported) {
    const std::pair<const char *, std::string> rows[] = {
        {"key 1 ENTRE", "1:7: error: unknown key \"ENTRE\"\nkey 1 ENTRE\n      ^\n"},
        {"# ok\n\n  push 1", "3:3: error: unknown command"},
        {"key", "1:4: error: unknown key"},
        {"type \"Ж\x01\"", "1:6: error: the text holds a character that cannot be typed"},
        {"expect text \"Ж\" more", "1:17: error: expected the end of the line"},
        {"type \"open", "1:6: error: the text has no closing quote"},
        {"type \"\\x\"", "1:7: error: expected one of"},
        {"advance 5", "1:9: error: expected a time"},
        {"advance 25000m", "1:9: error: expected a time"},
        {"pen 1,2 3;4", "1:9: error: expected a point"},
        {"shot a/b", "1:6: error: expected a name"},
        {"paper gone", "1:7: error: expected \"out\" or \"in\""},
        {"wait \"x\" 1s", "1:6: error: expected \"text\""},
        {"expect nothing", "1:8: error: expected \"text\", \"no text\", \"fits\" or \"shot\""},
        {"modem expect \"A\" then", "1:18: error: expected \"reply\" or \"after\""},
    };
    for (const auto &[source, message] : rows) {
        SCOPED_TRACE(source);
        testing::internal::CaptureStderr();
        EXPECT_FALSE(parseScript("s", source).isValid);
        const std::string said = testing::internal::GetCapturedStderr();
        EXPECT_TRUE(said.starts_with("s:" + message)) << said;
    }
}

TEST_F(Toolkit, FailedScriptsCancelTheRun) {
    const std::pair<std::string, const char *> rows[] = {
        {"expect text \"Form\"\nexpect text \"Other\"\nkey ENTER",
         ":2:1: error: the text is not shown\n"},
        {"expect no text \"Form\"", ":1:1: error: the text is shown\n"},
        {"wait text \"Other\" 5s", ":1:1: error: the text was not shown in time\n"},
        {"\nadvance 1s\n", ":2:1: error: the script ends while a form waits for an answer\n"},
        {"key ENTER\nkey 1", ":2:5: error: the application ended before this\n"}};
    for (const auto &[script, message] : rows) {
        SCOPED_TRACE(script);
        testing::internal::CaptureStderr();
        answerWith(script);
        EXPECT_EQ(run(form), script.starts_with("key") ? 1 : -1);
        Wait(1000);
        display().useFace(std::make_unique<Watcher>());
        EXPECT_TRUE(failed);
        EXPECT_NE(testing::internal::GetCapturedStderr().find(message), std::string::npos);
    }
    testing::internal::CaptureStderr();
    unsetenv("UTI_SCRIPT");
    display().useFace(makeFace(display()));
    EXPECT_EQ(run(form), IG_STATE_CANCELLED) << "nobody can answer";
    igForm_SetTimeOut(form, 700);
    EXPECT_EQ(run(form), IG_STATE_TIME_OUT);
    EXPECT_EQ(testing::internal::GetCapturedStderr().find("a form without a time-out") != 0, true);
}

TEST_F(Toolkit, ScriptsCompareTheDisplayWithGoldenPictures) {
    add(igInput_Create(8, 30, 222, 28, 20, 0), 0);
    const auto said = [&] {
        testing::internal::CaptureStderr();
        failed = false;
        display().useFace(std::make_unique<ScriptFace>(
            display(), parseScript(folder / "s", "expect shot a\nkey ENTER"), folder, failed));
        EXPECT_EQ(run(form), IG_STATE_CONFIRMED) << "the script goes on";
        return testing::internal::GetCapturedStderr();
    };
    const std::string golden = folder / "a.png";
    EXPECT_NE(said().find(":1:1: error: the golden picture " + golden + " is not there; "),
              std::string::npos);
    setenv("UTI_UPDATE", "1", 1);
    said();
    EXPECT_FALSE(failed);
    unsetenv("UTI_UPDATE");
    EXPECT_EQ(said(), "") << "it looks as before";

    // A letter more: its pixels stand in a box, and red in the picture that tells of them.
    play("type \"A\"\nkey ENTER");
    const std::string sentence = said();
    EXPECT_TRUE(failed);
    const std::size_t how = std::min(sentence.find(golden + ": "), sentence.size());
    int pixels = 0;
    Rect box;
    EXPECT_EQ(std::sscanf(sentence.c_str() + how, "%*[^:]: %d pixels differ in %d,%d %dx%d;",
                          &pixels, &box.x, &box.y, &box.width, &box.height),
              5)
        << sentence;
    EXPECT_TRUE(Rect({8, 30, 222, 28}).moved(display().form(form)->client().origin()).covers(box));
    const auto marked = loadImage(folder / "a.difference.png");
    ASSERT_TRUE(marked && loadImage(folder / "a.actual.png"));
    EXPECT_EQ(std::ranges::count(marked->pixels, rgb(0xE0, 0, 0)), pixels);
}

TEST_F(Toolkit, ScriptsMayEndEarlyOrByGoingAway) {
    answerWith("key ENTER\nadvance 9s");
    EXPECT_EQ(run(form), IG_STATE_CONFIRMED);
    answerWith("close");
    EXPECT_EQ(run(form), IG_STATE_CANCELLED);
    EXPECT_EQ(run(form), IG_STATE_CANCELLED) << "there is nobody any more";
    Wait(1);
    EXPECT_NE(Display_CheckEvent(), 0);
    display().useFace(std::make_unique<Watcher>());
    EXPECT_FALSE(failed);
}

TEST_F(Toolkit, ScriptsLookAtMessagesWithoutARun) {
    answerWith("wait text \"Form\" 1s\ndump shown\nadvance 2s\nkeyboard F1");
    igUI_Add(screen, form);
    igUI_Show(screen, form);
    Wait(2100);
    EXPECT_EQ(contentsOf(folder / "shown.txt"), dump(display()));
    EXPECT_EQ(Keyboard_GetLastKey(), 129);
    EXPECT_FALSE(failed);
}

TEST_F(Toolkit, RecordedEventsAreAScript) {
    const std::string path = folder / "recorded.script";
    {
        Recorder recorder(path, 0);
        recorder.add({.kind = Event::Kind::key, .key = IG_KEY_UP}, 7);
        recorder.add({.kind = Event::Kind::character, .character = '"'}, 7);
        recorder.add({.kind = Event::Kind::character, .character = 'x'}, 907);
        recorder.add({.kind = Event::Kind::keyboard, .key = 131}, 1007);
        recorder.add({.kind = Event::Kind::penDown, .at = {1, -2}}, 1008);
        recorder.add({.kind = Event::Kind::penMove, .at = {3, 4}}, 1020);
        recorder.add({.kind = Event::Kind::penUp, .at = {3, 4}}, 1021);
        recorder.add({.kind = Event::Kind::penDown, .at = {5, 6}}, 1021);
        recorder.addPicture("p", 1021);
        recorder.add({.kind = Event::Kind::penMove, .at = {7, 8}}, 1022);
        recorder.add({.kind = Event::Kind::close}, 1022);
        recorder.end(1022 + 2 * longestAdvance);
    }
    EXPECT_EQ(contentsOf(path),
              "advance 7ms\nkey UP\ntype \"\\\"x\"\nadvance 1000ms\nkeyboard 131\n"
              "advance 1ms\npen 1,-2 3,4\nadvance 13ms\npen 5,6\nshot p\ndump p\n"
              "advance 1ms\nclose\nadvance 86400000ms\n");
    EXPECT_EQ(parseScript(path, contentsOf(path)).commands.size(), 18u);
}

TEST_F(Toolkit, PeripheralsFollowTheScript) {
    unsetenv("UTI_COM1");
    setenv("UTI_PRINTER", (folder / "paper").c_str(), 1);
    const ComPortParameters parameters{1, {}, 9, 4};
    EXPECT_LT(ComPort_Open(&parameters), 0);
    answerWith("paper out\nmodem expect \"AT\\r\" reply \"OK\"\nmodem expect \"*100#\" after 30ms "
               "reply \"90\"\n"
               "advance 1s\npaper in\nports fail");
    const int32_t port = ComPort_Open(&parameters);
    char answer[8] = "";
    EXPECT_EQ(ComPort_Read(port, answer, 8, 0), 0);
    EXPECT_EQ(ComPort_Write(port, "echo AT", 7) + ComPort_Read(port, answer, 8, 50), 7);
    EXPECT_EQ(ComPort_Write(port, "\rATD*100#", 9), 9);
    EXPECT_EQ(ComPort_Read(port, answer, 3, 1000), 2);
    EXPECT_EQ(ComPort_Read(port, answer + 2, 5, 1000), 2);
    EXPECT_STREQ(answer, "OK90");
    EXPECT_EQ(GetTicks(), 80u) << "only what did not come was waited for";
    EXPECT_EQ(Printer_Open(nullptr), 0);
    EXPECT_NE(Printer_PrintString("lost", 0), 0);
    Wait(1100);
    EXPECT_EQ(Printer_PrintString("kept", 0) + Printer_Close(), 0);
    EXPECT_EQ(contentsOf(folder / "paper"), "kept");
    EXPECT_LT(ComPort_Read(port, answer, 8, 0) + ComPort_Write(port, "x", 1), -1);
    EXPECT_EQ(ComPort_Close(port), 0);
    EXPECT_LT(ComPort_Open(&parameters), 0);
    EXPECT_LT(ComPort_Read(port, answer, 8, 0), 0);

    answerWith("");
    const int master = posix_openpt(O_RDWR | O_NOCTTY); // whose other end lives by the real clock
    ASSERT_EQ(grantpt(master) | unlockpt(master), 0);
    setenv("UTI_COM1", ptsname(master), 1);
    for (const int32_t device : {ComPort_Open(&parameters), -1}) {
        const auto start = std::chrono::steady_clock::now();
        pass(60);
        const bool isReal = std::chrono::steady_clock::now() - start >= 60ms;
        EXPECT_EQ(isReal, ComPort_Close(device) == 0);
    }
    unsetenv("UTI_COM1");
    ::close(master);
}

// The whole way of an application that is started under a script: this program, listing its tests.
TEST_F(Toolkit, TheEnvironmentNamesTheScript) {
    const std::pair<const char *, int> rows[] = {
        {"# nothing", 0}, {"key ?", 1}, {"key 1", 1}, {nullptr, 2}};
    for (const auto &[script, status] : rows) {
        const std::string path = folder / (script ? "run.script" : "none.script");
        if (script)
            std::ofstream(path) << script;
        const std::string self = std::filesystem::read_symlink("/proc/self/exe");
        support::Command command("UTI_SCRIPT=" + path + " " + self + " --gtest_list_tests");
        EXPECT_EQ(command.wait(), status) << path;
    }
}

} // namespace
