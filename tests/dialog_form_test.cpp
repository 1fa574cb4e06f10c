// Forms from records: which calls reach the toolkit, in which order and with which values.
#include "tests/dialog_support.h"

using namespace support;
using namespace support::describe;
using fake::Call;

namespace {

// The very first reset, before anything else: what the records then hold is not the heap's.
char notOfTheHeap[] = "text";
const bool firstReset = [] {
    currentGraphicEditParameters.count = 1;
    currentGraphicEditParameters.entries[0].valueBuffer = notOfTheHeap;
    uti::Dialogs_ResetControls();
    return currentGraphicEditParameters.count == 0;
}();

class Form : public support::Dialogs {
protected:
    // Shows a message without waiting. Returns the calls that begin with one of the words.
    std::string show(const std::string &controls, std::initializer_list<const char *> words = {""},
                     const std::string &values = {}) {
        renew(dialog(0, controls, values));
        toolkit.answers = answers;
        terminal.type = type;
        EXPECT_EQ(DialogMessage_Show(&request, SHOW_AND_RETURN), 0);
        return toolkit.take(words);
    }

    int32_t type = 0; // of the terminal
    std::map<std::string, int32_t> answers;
};

TEST_F(Form, FirstResetFreesNothing) {
    EXPECT_TRUE(firstReset);
    EXPECT_STREQ(notOfTheHeap, "text");
}

TEST_F(Form, HeaderTransparencyBorderAndPlace) {
    request.caption = "title";
    const std::string style = "igForm_Create \"title\" 0 = form1\n"
                              "igForm_ClearOption form1 0x6\n"
                              "igForm_SetOption form1 0x40\n"
                              "igForm_SetHeaderColors form1 0xF79E 0x2DBD\n"
                              "igForm_SetColors form1 0x0 0xFFFF\n";
    const std::string child = "igChildForm_Create 10 20 200 -5 \"title\" 0 = form1\n" +
                              style.substr(style.find('\n') + 1) + "igForm_ClearOption form1 0x1\n";
    const std::string see = "igForm_SetOption form1 0x40\nigForm_ClearOption form1 0x20\n";
    const auto header = [](const char *height, const char *justify) {
        return "igForm_SetHeaderFont form1 0\n"s + height + "igForm_SetHeaderJustify form1 " +
               justify + '\n';
    };
    const struct {
        std::string controls, values, calls;
    } rows[] = {
        {"", "", style + see},
        {"", byte(22, 0), style + "igForm_ClearOption form1 0x40\nigForm_SetOption form1 0x20\n"},
        {"", byte(22, 1), style + "igForm_ClearOption form1 0x40\nigForm_ClearOption form1 0x20\n"},
        {"", byte(22, 3), style},
        {"", byte(24, 0), style + see + "igForm_SetOption form1 0x10\n"},
        {"", byte(23, 1) + describe::area(10, 20, 210, 15), child + see},
        {"", byte(23, 2) + describe::area(10, 20, 210, 15), style + see},
        {group(159, describe::area(0, 9, 0, 9) + byte(1, 3)), "", style + header("", "4") + see},
        {group(159, describe::area(0, 9, 0, 8)), "", style + header("", "1") + see},
        {group(159, describe::area(5, 9, 0, 30) + colors({0, 0, 0, 0})), "",
         style + header("igForm_SetHeaderHeight form1 21\n", "1") + see},
        {group(159, colors({0xFFFFFF, 0, 0x070307})), "",
         style + "igForm_SetHeaderColors form1 0xFFFF 0x0\n" + header("", "1") + see},
        {group(159, colors({0, 0, 0, 1})), "",
         style + "igForm_SetHeaderColors form1 0x0 0x0\n" + header("", "1") + see},
        {group(159) + group(159, text(2, "dig12x16") + byte(1, 8)), "",
         style + "igForm_SetHeaderFont form1 4\nigForm_SetHeaderJustify form1 10\n" + see},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(&row - rows);
        EXPECT_EQ(show(row.controls,
                       {"igForm_C", "igChild", "igForm_SetO", "igForm_SetC", "igForm_SetH"},
                       row.values),
                  row.calls);
    }
    EXPECT_EQ(show("").substr(0, 37), "IG_UpdateStatusLine\nigForm_Create \"ti");
    EXPECT_EQ(IG_SetDefaultFormStyle(uti::currentForm), 0);
    EXPECT_EQ(toolkit.take(), style.substr(style.find('\n') + 1));
}

TEST_F(Form, NextFormReplacesTheLast) {
    serve(dialog(0, group(159), byte(24, 0) + byte(23, 1)));
    EXPECT_EQ(DialogMessage_Show(&request, SHOW_AND_RETURN), 0);
    toolkit.take();
    EXPECT_EQ(DialogMessage_Show(&request, SHOW_AND_RETURN), 0);
    EXPECT_EQ(toolkit.take({"igUI_", "IG_", "igChildForm"}),
              "igUI_Del form1\nIG_UpdateStatusLine\nigChildForm_Create 0 0 0 0 null 0 = form2\n"
              "igUI_Add form2\nigUI_ShowExt form2\n");
    toolkit.take();
    toolkit.answers["igChildForm_Create"] = -3;
    EXPECT_EQ(DialogMessage_Show(&request, SHOW_AND_RETURN), -5003);
    EXPECT_EQ(toolkit.take(), "igUI_Del form2\nIG_UpdateStatusLine\n"
                              "igChildForm_Create 0 0 0 0 null 0\nigForm_ClearOption -3 0x1\n"
                              "igForm_SetHeaderFont -3 0\nigForm_SetHeaderJustify -3 1\n"
                              "igForm_SetOption -3 0x40\nigForm_ClearOption -3 0x20\n"
                              "igForm_SetOption -3 0x10\n");
    toolkit.answers.clear();
    EXPECT_EQ(DialogMessage_Show(&request, SHOW_AND_RETURN), 0);
    EXPECT_EQ(toolkit.take({"igUI_"}), "igUI_Add form3\nigUI_ShowExt form3\n");
}

// Calls on one widget, whose name stands for '@'.
std::string on(const std::string &widget, std::string calls) {
    for (std::size_t at; (at = calls.find('@')) != std::string::npos;)
        calls.replace(at, 1, widget);
    return calls;
}

// One of each kind, in an order that is not that of their creation.
TEST_F(Form, Controls) {
    const std::string all = describe::area(10, 20, 110, 15) + byte(1, 1) + text(2, "16x24") +
                            byte(8, 3) + byte(9, 1) +
                            describe::colors({0xFF0000, 0x00FF00, 0x0000FF, 0x123456});
    const std::string border = "igWidget_SetBorder @ 3\n", justify = "igWidget_SetJustify @ 2\n",
                      shape = "igWidget_SetTransparency @ 1\nigWidget_SetFont @ 2\n",
                      pattern = "igPatternInput_SetPatternActiveColor @ 0xF800 0x1F\n"
                                "igPatternInput_SetPatternPassiveColor @ 0x7E0 0x11AA\n",
                      colored = "igWidget_SetActiveColor @ 0xF800 0x1F\n"
                                "igWidget_SetPassiveColor @ 0x7E0 0x11AA\n",
                      added = "igForm_Add form1 @\n",
                      dressed = border + justify + shape + colored + added;
    const LabelValue values[] = {{"l", "one\\ntwo"}, {nullptr, nullptr}};
    request.labelValues = values;
    request.text = "first";
    const std::string calls =
        show(group(156, all) + group(149, all) +
             group(157, all + text(11, "l") + byte(73, 13) + text(75, "ab")) +
             group(150, all + byte(65, 1) + word(79, 9) + byte(78, '*')) +
             group(150, all + byte(87, 1) + word(79, 300) + text(81, "_") + byte(78, '*')) +
             group(150, all + text(81, "__\\n_") + byte(73, 13) + byte(78, 'x')) +
             group(150, all + text(81, "_") + byte(76, '-') + word(79, 7)) + group(152, all) +
             group(148, all + text(117, "ok") + text(55, "p") + text(56, "a") + byte(53, 129)) +
             group(148, all + byte(54, 1)) + group(151, all + text(117, "i")));
    EXPECT_EQ(
        calls.substr(calls.find("igStatic")),
        on("static3", "igStatic_Create 10 20 100 -5 null i = @\n" + dressed) +
            on("button5", "igButton_Create 10 20 100 -5 null ok 59 = @\n"
                          "igWidget_SetActiveBackImage @ a\nigWidget_SetPassiveBackImage @ p\n"
                          "igButton_SetOption @ 2\n" +
                              dressed) +
            on("button8", "igButton_Create 10 20 100 -5 null 0 0 = @\n"
                          "igWidget_SetActiveBackImage @ 0\nigWidget_SetPassiveBackImage @ 0\n" +
                              dressed) +
            on("signBox9",
               "igSignBox_Create 10 20 100 -5 = @\n" + border + shape + colored + added) +
            on("input10", "igInput_Create 10 20 100 -5 9 0x200 = @\nigInput_SetRadix @ 0\n"
                          "igInput_SetHideSymbol @ 42\n" +
                              dressed) +
            on("multiLine11", "igMultiLine_Create 10 20 100 -5 0x100 null = @\n"
                              "igMultiLine_SetMaxLen @ 300\n" +
                                  dressed) +
            on("pattern12", "igPatternInput_Create 10 20 100 -5 0x641 \"__^J_\" = @\n"
                            "igPatternInput_SetMaxLen @ 0\nigInput_SetHideSymbol @ 120\n" +
                                border + justify + shape + pattern +
                                "igPatternInput_SetFillSymbol @ 46\n" + colored + added) +
            on("pattern13", "igPatternInput_Create 10 20 100 -5 0x641 \"_\" = @\n"
                            "igPatternInput_SetMaxLen @ 7\n" +
                                border + justify + shape + pattern +
                                "igPatternInput_SetFillSymbol @ 45\n" + colored + added) +
            on("input14",
               "igInput_Create 10 20 100 -5 0 0x601 = @\nigInput_SetRadix @ 0\n" + dressed) +
            on("progress15", "igProgress_Create 10 20 100 -5 = @\n" + dressed) +
            on("ip16", "igIPInput_Create 10 20 100 -5 0x40 = @\n" + border + justify + shape +
                           colored + pattern + added) +
            "igForm_Reset form1\nigInput_SetValue input10 \"first\"\n"
            "igInput_SetControlCodes pattern12 102 102 69 13\n"
            "igInput_SetValue input14 \"one^Jtwo\"\nigUI_Add form1\nigForm_SetTimeOut form1 0\n"
            "igUI_ShowExt form1\n");
}

TEST_F(Form, InputStyles) {
    const std::string multi = byte(87, 1);
    const struct {
        std::string children;
        const char *created;
        int reports = 0;
    } rows[] = {
        {"", "igInput_Create 0x601"},
        {byte(65, 1) + byte(90, 1), "igInput_Create 0x200"},
        {byte(65, 2) + byte(90, 1), "igInput_Create 0x203"},
        {byte(65, 3), "igInput_Create 0x200", 1},
        {byte(90, 1) + byte(68, 1) + byte(86, 1), "igInput_Create 0x701"},
        {byte(89, 2), "igInput_Create 0x611"},
        {byte(88, 2), "igInput_Create 0x605"},
        {text(81, "_"), "igPatternInput_Create 0x641"},
        {multi + text(81, "_") + byte(78, 1), "igMultiLine_Create 0x100"},
        {multi + byte(68, 1), "igMultiLine_Create 0x0"},
        {multi + byte(86, 2), "igMultiLine_Create 0x101"},
        {multi + byte(88, 1), "igMultiLine_Create 0x300"},
        {multi + byte(89, 1) + byte(90, 1) + byte(65, 2), "igMultiLine_Create 0x100"},
        {multi + byte(65, 7), "igMultiLine_Create 0x100", 1},
        {byte(87, 2) + byte(86, 1) + byte(89, 1), "igMultiLine_Create 0x0"},
        {byte(87, 2) + byte(88, 1), "igMultiLine_Create 0x200"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(&row - rows);
        renew(dialog(0, group(157, row.children)));
        openLog();
        EXPECT_EQ(DialogMessage_Show(&request, SHOW_AND_RETURN), 0);
        const std::string call =
            toolkit.take({"igInput_Create", "igPatternInput_Create", "igMultiLine_Create"});
        const std::size_t style = call.find("0x");
        EXPECT_EQ(call.substr(0, call.find(' ') + 1) +
                      call.substr(style, call.find(' ', style) - style),
                  row.created);
        EXPECT_EQ(reports("Src/utiDialogs  Line: 637"), row.reports);
    }
}

TEST_F(Form, KeySchemes) {
    const std::pair<std::string, const char *> rows[] = {
        {"abc", "abc|-----------"},
        {"", ""},
        {"ab\\ncd", "ab|cd|----------"},
        {"ab\\ncd\\n", "ab|cd|----------"},
        {"\\n", "|-----------"},
        {"\\n\\nb\\N", "||b\\N|---------"},
        {"a\\nb\\nc\\nd\\ne\\nf\\ng\\nh\\ni\\nj\\nk\\nl", "a|b|c|d|e|f|g|h|i|j|k|l|"},
        {"a\\nb\\nc\\nd\\ne\\nf\\ng\\nh\\ni\\nj\\nk\\nl\\n", "a|b|c|d|e|f|g|h|i|j|k|l|"},
        {"a\\nb\\nc\\nd\\ne\\nf\\ng\\nh\\ni\\nj\\nk\\nl\\nm", "a|b|c|d|e|f|g|h|i|j|k|l|"},
    };
    for (const auto &[scheme, pieces] : rows) {
        SCOPED_TRACE(scheme);
        const std::string call =
            *pieces ? "igUI_SetKeyScheme 2 \""s + pieces + "\"\nigWidget_SetKeyScheme input3 2\n"
                    : "";
        EXPECT_EQ(show(group(150) + group(150, text(75, scheme)) + group(157, text(75, scheme)),
                       {"igUI_SetKeyScheme", "igWidget_SetKeyScheme"}),
                  call);
        EXPECT_EQ(currentKeyScheme[0] != nullptr, *pieces != 0);
    }
    uti::Dialogs_ResetControls();
    EXPECT_EQ(std::ranges::count(currentKeyScheme, nullptr), 12);
    const std::string schemes =
        show(group(150, byte(87, 1) + text(75, "1")) + group(150, text(75, "2")), {"igUI_SetKey"});
    EXPECT_EQ(schemes,
              "igUI_SetKeyScheme 1 \"1|-----------\"\nigUI_SetKeyScheme 2 \"2|-----------\"\n");
    EXPECT_EQ(toolkit.drawn, "\"1\" \"2\" ");
}

TEST_F(Form, ControlCodesByTerminal) {
    const struct {
        int32_t terminal;
        uint32_t key;
        const char *codes;
    } rows[] = {
        {0, 0, ""},
        {0, 13, "102 102 69 13"},
        {0, 48, "102 102 69 0"},
        {19, 0, "59 59 59 0"},
        {20, 129, "59 59 59 59"},
        {23, 0, ""},
        {24, 26, "102 102 69 69"},
        {26, 0, "102 102 69 0"},
        {26, 27, "102 102 69 27"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.terminal);
        type = row.terminal;
        const std::string given = byte(73, row.key);
        std::string expected;
        for (const char *edit : {"input2", "pattern3"})
            expected +=
                *row.codes ? "igInput_SetControlCodes "s + edit + ' ' + row.codes + '\n' : "";
        EXPECT_EQ(show(group(150, given) + group(150, given + text(81, "_")) +
                           group(150, given + byte(87, 1)) + group(157) + group(156),
                       {"igInput_SetControlCodes"}),
                  expected);
    }
}

TEST_F(Form, ValuesOfLabels) {
    const std::string labels = group(157, text(11, "a")) + group(157) + group(157, text(11, "b")) +
                               group(157, text(11, "m") + byte(87, 1)) + group(150, text(11, "a"));
    const LabelValue none = {nullptr, nullptr};
    const struct {
        std::vector<LabelValue> values;
        const char *calls;
    } rows[] = {
        {{none}, ""},
        {{{"b", "B"}, {"a", "x\\ny"}},
         "igInput_SetValue input3 \"x^Jy\"\nigInput_SetValue input5 \"B\"\n"},
        {{{"a", nullptr}, {"A", "A"}, {"a", "1"}, {"a", "2"}}, "igInput_SetValue input3 \"1\"\n"},
        {{{"a", ""}, {"a", "late"}}, ""},
        {{{"", "empty"}, {"ab", "long"}, none, {"a", "late"}}, ""},
        {{{"m", "several"}}, ""},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.calls);
        std::vector<LabelValue> values = row.values;
        values.push_back(none);
        request.labelValues = values.data();
        EXPECT_EQ(show(labels, {"igInput_SetValue"}), row.calls);
    }
    EXPECT_EQ(toolkit.drawn, "\"several\" ");
    request.labelValues = nullptr;
    EXPECT_EQ(show(labels, {"igInput_SetValue"}), "");
}

TEST_F(Form, ColoursOfTheRequest) {
    const std::string own = describe::colors({0xFF0000, 0x00FF00, 0x0000FF, 0xFFFFFF});
    std::string controls;
    for (const uint32_t kind : {148u, 149u, 150u, 151u, 152u, 156u, 157u})
        controls += group(kind, own);
    const RgbColor black{0, 0, 0}, odd{8, 4, 8}, light{0, 0, 8};
    const struct {
        ColorSet colors; // passive foreground and background, active ones
        std::string active, passive;
    } rows[] = {
        {{black, black, black, black}, "0xF800 0x1F", "0x7E0 0xFFFF"},
        {{odd, odd, light, light}, "0xF800 0x1F", "0x7E0 0xFFFF"},
        {{odd, black, light, light}, "0xF800 0x1F", "0x821 0x0"},
        {{odd, odd, black, light}, "0x0 0x1", "0x7E0 0xFFFF"},
        {{black, light, odd, black}, "0x821 0x0", "0x0 0x1"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.active + ' ' + row.passive);
        request.colors = row.colors;
        EXPECT_EQ(countOf(show(controls, {"igWidget_SetActiveC"}), row.active + '\n'), 7);
        EXPECT_EQ(countOf(toolkit.take({"igWidget_SetPassiveC"}), row.passive + '\n'), 7);
    }
}

// The first control that cannot be made ends their creation; the form is shown with those before.
TEST_F(Form, CreationEndsAtTheFirstFailure) {
    const std::string controls = group(151) + group(148) + group(152) + group(150) +
                                 group(150, text(81, "_")) + group(150, byte(87, 1)) + group(149) +
                                 group(156);
    request.text = "value";
    std::string before;
    for (const auto &[creator, widget] : {std::pair("igStatic", "static2"),
                                          {"igButton", "button3"},
                                          {"igSignBox", "signBox4"},
                                          {"igInput", "input5"},
                                          {"igPatternInput", "pattern6"},
                                          {"igMultiLine", "multiLine7"},
                                          {"igProgress", "progress8"},
                                          {"igIPInput", "ip9"}}) {
        const std::string add = "igForm_Add form1 "s + widget + '\n';
        const bool input = before.find("input5") != before.npos;
        answers = {{creator + "_Create"s, -3}};
        EXPECT_EQ(show(controls, {"igForm_Add"}), before);
        EXPECT_EQ(toolkit.take({"igInput_SetR", "igForm_Reset", "igInput_SetV", "igUI_S"}),
                  (input ? "igInput_SetRadix input5 0\n" : ""s) + "igForm_Reset form1\n" +
                      (input ? "igInput_SetValue input5 \"value\"\n" : "") +
                      "igUI_ShowExt form1\n");
        answers = {{add.substr(0, add.size() - 1), -3}};
        EXPECT_EQ(show(controls, {"igForm_Add"}), before += add);
    }
}

TEST_F(Form, Justification) {
    openLog();
    const uint32_t expected[] = {1, 2, 0, 4, 8, 5, 9, 6, 10};
    for (uint32_t code = 0; code < 9; ++code)
        EXPECT_EQ(IG_GetJustify(code), expected[code]);
    EXPECT_EQ(reports("ASSERT"), 0);
    for (const uint32_t code : {9u, UINT32_MAX}) {
        EXPECT_EQ(IG_GetJustify(code), 0u);
        EXPECT_EQ(reports("File: Src/utiDialogs  Line: 1000"), 1);
    }
}

} // namespace
