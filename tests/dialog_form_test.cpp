// Forms from records: what the request, the form before and a failure change. The calls for each
// description are in tests/golden/forms.txt.
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
    std::string show(const std::string &controls,
                     std::initializer_list<const char *> words = {""}) {
        renew(dialog(0, controls));
        toolkit.answers = answers;
        EXPECT_EQ(DialogMessage_Show(&request, SHOW_AND_RETURN), 0);
        return toolkit.take(words);
    }

    std::map<std::string, int32_t> answers;
};

TEST_F(Form, FirstResetFreesNothing) {
    EXPECT_TRUE(firstReset);
    EXPECT_STREQ(notOfTheHeap, "text");
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

TEST_F(Form, KeySchemesLastAsLongAsTheForm) {
    const std::string edits = group(150, byte(87, 1) + text(75, "1")) + group(150, text(75, "2"));
    EXPECT_EQ(show(edits, {"igUI_SetKey"}),
              "igUI_SetKeyScheme 1 \"1|-----------\"\nigUI_SetKeyScheme 2 \"2|-----------\"\n");
    EXPECT_EQ(toolkit.drawn, "\"1\" \"2\" ");
    EXPECT_NE(currentKeyScheme[0], nullptr);
    uti::Dialogs_ResetControls();
    EXPECT_EQ(std::ranges::count(currentKeyScheme, nullptr), 12);
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
