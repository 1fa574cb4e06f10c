// Modal dialogs on a scripted toolkit and a fake clock: every result, what each entry point does of
// its own, what is installed and cleared, and what is left after a failure at any point.
#include "Src/utiDialogsEvents.h"
#include "tests/dialog_support.h"

using namespace support;
using namespace support::describe;
using fake::Call;
using fake::Event;
using Script = std::deque<Event>;

namespace {

// What the application's functions do and have seen.
struct Application {
    int breakAt = 0; // the nth question breaks off
    int asked = 0;
    int refreshAt = 0; // the nth event and all later ones refresh
    int events = 0;
    const LabelValue *labels = nullptr;
    int32_t keyResult = 0;
    std::string keys;
    std::string typed; // key, text, most characters
    const char *rewritten = nullptr;
};
Application app;

int32_t breakOff() {
    return ++app.asked == app.breakAt ? 4 : 0;
}
int32_t refresh(const LabelValue **labels) {
    *labels = app.labels;
    return ++app.events >= app.refreshAt ? 2 : 0;
}
int32_t takeKey(uint8_t key) {
    app.keys += std::to_string(key) + ' ';
    return app.keyResult;
}
int32_t takeTyped(int32_t key, char *text, int32_t most) {
    app.typed = std::to_string(key) + ' ' + text + ' ' + std::to_string(most);
    if (app.rewritten)
        std::string(app.rewritten).copy(text, 129); // without a zero when it fills the room
    return app.rewritten ? 1 : 0;
}
void typeEscape() {
    fake::terminal().lastKey = 27;
}
void takeNoMore() {
    KeyPostProcessingFunction = nullptr;
}
void refreshNoMore() {
    app.refreshAt = 99;
}

class Modal : public support::Dialogs {
protected:
    Modal() {
        app = {};
        serve(dialog(3, ""));
    }

    // Each dialog call with the fixture's request and a script.
    Modal &play(Script script) {
        toolkit.script = std::move(script);
        confirmation.dialog = editing.dialog = listing.dialog = request;
        return *this;
    }
    int32_t message(uint32_t mode, Script script = {}) {
        return DialogMessage_Show(&play(script).request, mode);
    }
    int32_t confirm(Script script = {{13}}) {
        return DialogConfirmation_DoModal(&play(script).confirmation);
    }
    int32_t select(const char *first, const char *second) {
        return DialogSelect_DoModal_IG(&play({{13}}).confirmation, first, second);
    }
    int32_t sign(Script script = {{13}}) {
        return DialogSignature_DoModal(&play(script).request, "file");
    }
    int32_t edit(char *buffer, uint32_t size, Script script = {{13}}) {
        return DialogEdit_DoModal(&play(script).editing, buffer, size);
    }
    int32_t list(Script script = {{13}}) { return DialogList_DoModal(&play(script).listing); }

    ConfirmationRequest confirmation{};
    EditRequest editing{};
    ListRequest listing{};
};

// A confirmation, and a message in its modes, on a form with that time-out and events of 101 ms.
TEST_F(Modal, EveryResultOfARun) {
    constexpr uint32_t ask = 77;
    const struct {
        uint32_t mode, described, requested;
        int breakAt;
        int32_t keyResult;
        Script script;
        int32_t result;
        const char *timeOut;
        uint32_t ticks;
    } rows[] = {
        {ask, 0, 0, 0, 0, {{13}}, 0, "0", 101},
        {ask, 0, 0, 0, 0, {{'a'}, {}, {27}}, -3202, "0", 303},
        {ask, 0, 500, 0, 0, {}, -3201, "500", 505},
        {ask, 0, 500, 0, 0, {{}, {}, {}, {'a'}}, -3201, "500", 404 + 505}, // the key starts it anew
        {ask, 0, 500, 0, 0, {{}, {}, {}, {0, &typeEscape}}, -3201, "500", 505}, // no look at the
                                                                                // keys
        {ask, 0, 0, 3, 0, {{'a'}, {'b'}, {'c'}, {13}}, -3203, "0", 303},
        {ask, 0, 0, 1, 0, {{27}}, -3202, "0", 101}, // the Escape was still in the keyboard
        {ask, 0, 0, 0, 3, {{'a'}, {}, {13}}, 0, "0", 303},
        {ask, 0, 0, 0, 3, {{27}}, -3202, "0", 101},
        {ask, 0, 0, 0, 3, {{0, &typeEscape}, {13}}, -3202, "0", 202}, // the function alone saw it
        {ask, 0, 0, 0, 3, {{0, &typeEscape}, {13, &takeNoMore}}, 0, "0", 202}, // a key came behind
                                                                               // it
        {ask, 0, 0, 0, -7, {{'a'}}, -7, "0", 101},
        {ask, 0, 0, 0, -7, {{27}}, -3202, "0", 101}, // Escape comes before the function's result
        {0, 500, 700, 0, 0, {}, 0, "700", 0},
        {1, 0, 0, 0, 0, {}, 0, "0", 0},
        {2, 0, 0, 0, 0, {}, 0, "0", 0},
        {2, 0, 300, 0, 0, {}, -3201, "300", 303},
        {2, 500, 0, 0, 0, {{'a'}, {13}}, 0, "500", 202},
        {1, 200, 0, 0, 0, {{}, {}, {}, {13}}, 0, "", 404},
        {1, 500, 0, 0, 0, {{'a'}, {27}}, -3202, "", 202},
        {3, 500, 700, 0, 0, {}, -3201, "1000", 1010},
        {3, 0, 0, 0, 0, {{27}}, -3202, "1000", 101},
        {3, 0, 0, 0, -7, {{27}}, -7, "1000", 101}, // no look at the keys
        {2, 900, 0, 0, -7, {{27}}, -3202, "900", 101},
        {1, 900, 0, 0, -7, {{27}}, -3202, "", 101},
        {9, 500, 0, 0, 0, {{13}}, 0, "500", 101},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(&row - rows);
        app = {};
        app.breakAt = row.breakAt;
        app.keyResult = row.keyResult;
        renew(dialog(row.mode == ask ? 3 : 0, "", dword(18, row.described)));
        request.timeout = row.requested;
        request.needToBreak = row.breakAt ? breakOff : nullptr;
        request.keyPostProcessing = row.keyResult ? takeKey : nullptr;
        EXPECT_EQ(row.mode == ask ? confirm(row.script) : message(row.mode, row.script),
                  row.result);
        EXPECT_EQ(toolkit.take({"igForm_SetTimeOut"}),
                  *row.timeOut ? "igForm_SetTimeOut form1 "s + row.timeOut + '\n' : "");
        EXPECT_EQ(terminal.ticks, row.ticks);
        EXPECT_TRUE(row.mode == ask || currentShowType == (row.ticks == 0 ? 0 : row.mode));
        expectNothingInstalled(); // an Escape is not the next dialog's
    }
    renew(dialog(3, ""));
    request.timeout = 0;
    request.keyPostProcessing = takeKey;
    EXPECT_EQ(confirm({{'a'}, {}, {13}}), 0);
    EXPECT_EQ(app.keys, "97 13 ");
    request.keyPostProcessing = nullptr;
    for (const auto &[state, result] :
         {std::pair(-1, -3202), {101, -3203}, {10, -3201}, {5, 0}, {0, 0}, {-77, 0}}) {
        toolkit.answers["igForm_GetState"] = state;
        EXPECT_EQ(confirm(), result) << state;
    }
    toolkit.answers = {{"igUI_ShowExt", -1}, {"igUI_Add", 7}};
    EXPECT_EQ(confirm(), 0);
    for (const auto &[nth, result] : {std::pair(1, -9), {2, -9}, {3, -5009}, {4, 0}}) {
        fake::failCall(Call::display, nth);
        EXPECT_EQ(confirm(), result) << nth;
    }
    fake::disarm();
    toolkit.answers = {{"igForm_GetState", 10}}; // in mode 1 an Escape comes before it
    serve(dialog(0, "", dword(18, 500)));
    terminal.displayEvent = 1;
    EXPECT_EQ(message(1, {{}}), -3201);
    EXPECT_EQ(message(1, {{0, &typeEscape}}), -3202);
    toolkit.take();
    serve(dialog(0, ""));
    EXPECT_EQ(confirm(), -3206);
    EXPECT_EQ(toolkit.take(), "");
    EXPECT_EQ(DialogMessage_Show(nullptr, 1) + DialogConfirmation_DoModal(nullptr) +
                  DialogSelect_DoModal_IG(nullptr, "", "") + DialogList_DoModal(nullptr) +
                  DialogEdit_DoModal(nullptr, nullptr, 0) + DialogSignature_DoModal(nullptr, ""),
              6 * -3200);
}

TEST_F(Modal, RefreshKeepsTheAllowedTime) {
    serve(dialog(3, group(157, text(11, "a")) + group(157, text(11, "m") + byte(87, 1)) +
                        group(150, text(11, "a") + text(81, "_")) + group(157) +
                        group(150, text(11, "z"))));
    const LabelValue labels[] = {{"b", "B"},     {"a", "one\\ntwo"}, {"a", "more"},
                                 {"m", "lines"}, {"z", nullptr},     {"z", "late"}};
    app.labels = labels;
    app.refreshAt = 3;
    request.refresh = refresh;
    request.timeout = 1000;
    terminal.ticks = 0xFFFFFF00; // the clock wraps around meanwhile
    EXPECT_EQ(confirm({{}, {}, {}, {0, &refreshNoMore}, {'k'}, {13}}), 0);
    EXPECT_EQ(toolkit.take({"igForm_SetTimeOut", "igUI_ShowExt", "igForm_ResetT"}),
              "igForm_SetTimeOut form1 1000\nigUI_ShowExt form1\n"
              "igForm_SetTimeOut form1 697\nigUI_ShowExt form1\n"
              "igForm_ResetTime form1\nigForm_ResetTime form1\n");
    EXPECT_EQ(toolkit.take({"igInput_SetV", "igMultiLine_SetV"}),
              "igInput_SetValue input4 \"one^Jtwo\"\nigMultiLine_SetValue multiLine5 \"lines\"\n"
              "igInput_SetValue pattern2 \"one^Jtwo\"\n");
    EXPECT_EQ(toolkit.drawn, "\"_\" \"lines\" ");
    expectNothingInstalled();

    app.refreshAt = 0; // at every event: the time goes on all the same
    const uint32_t start = terminal.ticks;
    EXPECT_EQ(confirm({}), -3201);
    EXPECT_EQ(terminal.ticks - start, 1010u);
    request.timeout = currentDialogTimeout = 0;
    EXPECT_EQ(confirm({{0, &typeEscape}}), -3201) << "over at once, and no look at the keys";
    const Event atTheStart{0, [] { fake::terminal().ticks = currentStartTime; }};
    EXPECT_EQ(confirm({atTheStart, {0, &refreshNoMore}, {13}}), 0);
    app.refreshAt = 0;
    currentDialogTimeout = 5000;
    EXPECT_EQ(confirm({{0, &typeEscape}}), -3202);
    app.labels = nullptr;
    EXPECT_EQ(confirm({{}, {13}}), 0) << "a refresh without labels is none";
    const LabelValue kept[] = {{"m", "kept"}, {nullptr, nullptr}};
    request.labelValues = kept;

    // A widget that refuses a text goes on with the one that it has.
    app.labels = labels;
    toolkit.take();
    for (const char *refuses : {"igMultiLine_SetValue", "igWidget_GetType"}) {
        app = {};
        app.labels = labels;
        app.refreshAt = 2;
        const Event refuse{0, [=] { fake::toolkit().answers[refuses] = -3; }};
        EXPECT_EQ(confirm({{}, refuse, {0, &refreshNoMore}, {13}}), 0);
        EXPECT_EQ(toolkit.drawn, "\"_\" \"kept\" ");
        toolkit.answers.clear();
    }

    // A label without a widget: the walk goes on to the last of the values.
    app.refreshAt = 0;
    toolkit.answers["igInput_Create"] = -3;
    EXPECT_EQ(confirm({{}, {0, &typeEscape}}), -3202);
    EXPECT_STREQ(currentGraphicLabelParameters.entries[0].valueBuffer, "more");
}

// What a callback shows takes the place of the running dialog, which is then over; whatever becomes
// of the other one, and whatever the callback returns, it is not confirmed.
TEST_F(Modal, OtherDialogFromACallback) {
    static DialogRequest other;
    static std::function<int32_t()> show;
    static int32_t (*const shows)() = [] { return show ? std::exchange(show, nullptr)() : 0; };
    static constexpr auto message = [](uint32_t mode) {
        return [=] {
            fake::toolkit().script.push_front({13});
            EXPECT_EQ(DialogMessage_Show(&other, mode), 0);
            return 0;
        };
    };
    const std::function<int32_t()> shown[] = {
        message(SHOW_AND_RETURN),
        message(SHOW_UNLIMITED),
        [] { return message(SHOW_WITH_TIMEOUT)() + 1; },
        [] { return DrawImage_IG(0, 0, "p.png", nullptr); },
        [] { return DrawImage_IG(0, 0, "missing", nullptr) < -2253; },
        [] { return (other.resourceId = 9, DialogMessage_Show(&other, 2) + 3200); },
        [] { return GetSignalPosition(&other); }, // shows nothing
    };
    char buffer[10];
    request.timeout = 500;
    for (const auto &each : shown) {
        const auto showsAsBreak = [] { return shows(); };
        const auto showsAsRefresh = [](const LabelValue **) { return shows(); };
        const auto showsAsKeys = [](uint8_t) { return shows() - 1; };
        const auto showsAsTyped = [](int32_t, char *, int32_t) { return shows() + 1; };
        for (int callback = 0; callback < 4; ++callback) {
            SCOPED_TRACE(std::to_string(&each - shown) + ' ' + std::to_string(callback));
            renew(dialog(1, group(150) + group(150, word(80, 2)), dword(18, 400)));
            terminal.files["p.png"] = "";
            terminal.files["n.res"] =
                resourceFile(1, {{0, {{"en", 0, {"", dialog(0, group(150) + group(150))}}}}});
            openLog();
            other = {};
            other.resourceId = 1;
            other.module = "n";
            other.text = "of another";
            show = each;
            request.needToBreak = callback == 0 ? +showsAsBreak : nullptr;
            request.refresh = callback == 1 ? +showsAsRefresh : nullptr;
            request.keyPostProcessing = callback == 2 ? +showsAsKeys : nullptr;
            editing.keyPressed = callback == 3 ? +showsAsTyped : nullptr;
            std::strcpy(buffer, "as was");
            const bool lost = &each != &shown[6];
            const int32_t result = edit(buffer, sizeof buffer, {{'a'}, {'b'}, {27}});
            EXPECT_EQ(result, !lost && callback == 2 ? -1 : -3202);
            EXPECT_EQ(std::string(buffer) == "as was", lost || callback == 2);
            EXPECT_EQ(reports("File: Src/utiDialogs ") > (&each == &shown[5]), lost);
            const bool picture = &each == &shown[3] && callback < 2;
            EXPECT_TRUE(!picture || toolkit.take({"igForm_ResetTime"}).empty()) << "its form";
            expectNothingInstalled();
            EXPECT_EQ(toolkit.mistakes, "");
        }
    }
}

TEST_F(Modal, MessagesAskOnceMoreAndTakeAnImage) {
    serve(dialog(0, group(151, text(117, "own")) + group(151, text(117, "other")), dword(18, 900)));
    request.imageName = "logo";
    request.needToBreak = breakOff;
    app.breakAt = 2;
    EXPECT_EQ(message(2, {{13}}), -3203) << "broken off by the question after the run";
    EXPECT_EQ(toolkit.take({"IG_GetFull", "igStatic_C"}),
              "IG_GetFullImagePath \"logo\" 129\n"
              "igStatic_Create 0 0 0 0 null img/logo = static3\n"
              "igStatic_Create 0 0 0 0 null other = static5\n");
    request.imageName = nullptr;
    request.keyPostProcessing = takeKey;
    app.asked = 0;
    app.keyResult = -8;
    EXPECT_EQ(message(2, {{'a'}}), -8);
    EXPECT_NE(toolkit.take({"igStatic_C"}).find("null own"), std::string::npos);
    app.asked = 1;
    EXPECT_EQ(message(0), -3203) << "without a run too";
    expectNothingInstalled();
    serve(dialog(0, ""));
    request.imageName = "logo";
    EXPECT_EQ(message(0), 0);
    EXPECT_EQ(toolkit.take({"IG_GetFullImagePath \"logo"}), "");
}

TEST_F(Modal, ConfirmationAndSelection) {
    const std::string button = group(148, text(117, "b"));
    const std::string controls = button + button + button + group(157, text(11, "l")) + group(150);
    const LabelValue labels[] = {{"l", "L"}, {nullptr, nullptr}};
    request.labelValues = labels;
    request.text = "T";
    request.timeout = 600;
    request.caption = "C";
    confirmation.firstButton = "Yes\\n!";
    confirmation.secondButton = "No";
    NeedToBreakFunction = breakOff;
    serve(dialog(3, controls));
    EXPECT_EQ(confirm(), 0);
    EXPECT_EQ(toolkit.take({"igForm_Create", "igButton_C", "igInput_SetV", "igForm_SetT"}),
              "igForm_Create \"C\" 0 = form1\n"
              "igButton_Create 0 0 0 0 \"Yes^J!\" b 0 = button3\n"
              "igButton_Create 0 0 0 0 \"No\" b 0 = button5\n"
              "igButton_Create 0 0 0 0 null b 0 = button7\nigInput_SetValue input8 \"T\"\n"
              "igInput_SetValue input9 \"L\"\nigForm_SetTimeOut form1 600\n");
    EXPECT_EQ(app.asked, 1) << "a function of the application's own";
    expectNothingInstalled();

    renew(dialog(3, controls));
    app = {};
    request.needToBreak = breakOff;
    request.refresh = refresh;
    request.keyPostProcessing = takeKey;
    confirmation.secondButton = nullptr;
    EXPECT_EQ(select("_1", "_2"), 0);
    EXPECT_EQ(toolkit.take({"igButton_C", "igInput_SetV", "igForm_SetT"}),
              "igButton_Create 0 0 0 0 \"Yes^J!\" b_1 0 = button3\n"
              "igButton_Create 0 0 0 0 null b_2 0 = button5\n"
              "igButton_Create 0 0 0 0 null b 0 = button7\nigInput_SetValue input8 \"T\"\n"
              "igForm_SetTimeOut form1 600\n");
    EXPECT_EQ(app.asked + app.events + static_cast<int>(app.keys.size()), 0);

    openLog();
    for (const auto &[length, suffix, kept, reported] : {std::tuple(120u, "1234567", 127u, 0),
                                                         {120, "12345678", 127, 1},
                                                         {127, "", 127, 0},
                                                         {128, "", 128, 0},
                                                         {128, "1", 127, 1},
                                                         {0, "123", 3, 0}}) {
        SCOPED_TRACE(std::to_string(length) + suffix);
        const std::string name(length, 'x');
        serve(dialog(3, group(148, text(117, name) + text(56, "a"))));
        reports("");
        EXPECT_EQ(select(suffix, nullptr), 0);
        const GraphicButtonEntry &entry = currentGraphicButtonParameters.entries[0];
        EXPECT_EQ(entry.image, (name + suffix).substr(0, kept));
        EXPECT_STREQ(entry.activeBackImage, "a") << "the field behind it";
        EXPECT_EQ(reports("File: Src/utiDialogs "), reported);
    }

    // After a failure before the run the confirmation alone leaves its functions installed.
    toolkit.answers["igUI_Add"] = -3;
    NeedToBreakFunction = breakOff;
    EXPECT_EQ(select("", ""), -3);
    EXPECT_FALSE(NeedToBreakFunction);
    EXPECT_EQ(confirm(), -3);
    EXPECT_TRUE(NeedToBreakFunction && RefreshDialogFunction && KeyPostProcessingFunction);
}

TEST_F(Modal, Signature) {
    const LabelValue labels[] = {{"l", "L"}, {nullptr, nullptr}};
    request.labelValues = labels;
    for (const auto &[saved, result] : {std::pair(1, 0), {5, 0}, {0, -3209}, {-4, -5004}}) {
        renew(dialog(4, group(152) + group(157, text(11, "l"))));
        toolkit.answers["igSignBox_SaveData"] = saved;
        EXPECT_EQ(sign(), result);
        EXPECT_EQ(toolkit.take({"igSignBox_S", "igUI_", "igInput_SetV"}),
                  "igUI_Add form1\nigSignBox_SetLineWidth signBox2 2\nigUI_ShowExt form1\n"
                  "igSignBox_SaveData signBox2 \"file\"\n");
    }
    EXPECT_EQ(sign({{27}}), -3202);
    EXPECT_EQ(toolkit.take({"igSignBox_Sa"}), "");
    request.needToBreak = breakOff;
    app.breakAt = 1;
    EXPECT_EQ(sign(), -3203);
}

TEST_F(Modal, EditTakesOverTheRequest) {
    const std::string most(256, '_'), more(257, '_');
    const struct {
        std::function<void(EditRequest &, InputLimits &)> change;
        std::string main; // children of the second edit
        std::string created;
        int value; // radix or fill symbol
    } rows[] = {
        {[](auto &, auto &) {}, "", "20 0x601", 0},
        {[](auto &r, auto &) { r.radix = 2; }, "", "20 0x601", 2},
        {[](auto &r, auto &) { r.option = 1; }, "", "20 0x609", 0},
        {[](auto &r, auto &) { r.option = 2; }, "", "20 0x601", 0},
        {[](auto &r, auto &l) { r.limits = &l; }, byte(65, 2), "5 0x203", 0},
        {[](auto &r, auto &l) { (r.limits = &l, l.kind = 1); }, byte(65, 2), "5 0x601", 0},
        {[](auto &r, auto &l) { (r.limits = &l, l.kind = 2); }, byte(65, 2), "5 0x200", 0},
        {[](auto &r, auto &l) { (r.limits = &l, l.kind = 3); }, "", "5 0x203", 0},
        {[](auto &r, auto &l) { (r.limits = &l, l.kind = 4); }, byte(65, 2), "5 0x203", 0},
        {[](auto &r, auto &) { r.pattern = "__"; }, text(81, "____"), "0x641 \"__\"", '.'},
        {[](auto &r, auto &) { r.pattern = "_"; }, "", "0x641 \"_\"", '.'},
        {[](auto &r, auto &) { r.pattern = ""; }, text(81, "____"), "0x641 \"____\"", '.'},
        {[&](auto &r, auto &) { r.pattern = most.c_str(); }, "", "0x641 \"" + most + '"', '.'},
        {[&](auto &r, auto &) { r.pattern = more.c_str(); }, text(81, "_"), "0x641 \"_\"", '.'},
        {[](auto &, auto &) {}, text(81, "_") + byte(76, '-'), "0x641 \"_\"", '-'},
        {[](auto &r, auto &) { r.fillSymbol = '*'; }, text(81, "_") + byte(76, '-'), "0x641 \"_\"",
         '*'},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(&row - rows);
        renew(dialog(1, group(150, text(11, "first")) + group(150, word(79, 20) + row.main)));
        InputLimits limits{5, 0, 0};
        editing = {};
        row.change(editing, limits);
        char buffer[8] = "7\\n8";
        EXPECT_EQ(edit(buffer, sizeof buffer), 0);
        EXPECT_STREQ(buffer, "7\n8");
        const bool pattern = row.created[0] == '0';
        const std::string name = pattern ? "pattern3" : "input3";
        toolkit.take({"igInput_Create 0 0 0 0 0", "igInput_SetRadix input2"}); // the first edit
        EXPECT_EQ(toolkit.take({"igInput_C", "igInput_SetR", "igPatternInput_C", "igInput_SetV",
                                "igPatternInput_SetF", "igForm_SetFo"}),
                  (pattern ? "igPatternInput_Create 0 0 0 0 " : "igInput_Create 0 0 0 0 ") +
                      row.created + " = " + name +
                      (pattern ? "\nigPatternInput_SetFillSymbol " : "\nigInput_SetRadix ") + name +
                      ' ' + std::to_string(row.value) + "\nigInput_SetValue " + name +
                      " \"7^J8\"\nigForm_SetFocused form1 " + name + '\n');
    }
}

TEST_F(Modal, EditReturnsTheTextAndRunsAgainWhileItIsTooShort) {
    const auto description = [](uint32_t least, const std::string &more = {}) {
        return dialog(1, group(150) + group(150, word(80, least) + more));
    };
    const std::string ip = dialog(1, group(156)),
                      codes = "igInput_SetControlCodes ip2 59 59 59 0\n",
                      address = "igIPInput_SetIPtext ip2 \"1.2.3.4\"\n";
    const struct {
        std::string description;
        std::string before;
        uint32_t size;
        Script script;
        int32_t result;
        std::string after; // all of the buffer
        int runs;
        std::string calls{};
        int32_t terminal = 0;
    } rows[] = {
        {description(0), "", 6, {{13}}, 0, "\0\0\0\0\0\0"s, 1},
        {description(0), "ab", 6, {{'1'}, {'2'}, {13}}, 0, "ab12\0\0"s, 1},
        {description(0), "abc", 4, {{'1'}, {13}}, 0, "abc\0"s, 1},
        {description(0), "12345", 3, {{13}}, 0, "12\0"s, 1, "SetValue input3 \"12345\"\n"},
        {description(4), "", 5, {{'1'}, {13}, {'2'}, {'3'}, {13}, {'4'}, {13}}, 0, "1234\0"s, 3},
        {description(4), "", 6, {{'1'}, {13}, {'2'}, {27}}, -3202, "12\0\0\0\0"s, 2},
        {description(300), "", 3, {{'1'}, {13}, {'2'}, {13}}, 0, "12\0"s, 2},
        {description(4), "", 1, {{'1'}, {13}}, 0, "\0"s, 1},
        {description(4), "ab", 0, {{'1'}, {13}}, 0, "", 1, "SetValue input3 \"ab\"\n"},
        {description(0, byte(87, 1)), "a\\nb", 5, {{13}}, 0, "a\nb\0\0"s, 1},
        {description(9, byte(87, 1)), "x", 3, {{13}, {13}, {27}}, -3202, "x\0\0"s, 3},
        {dialog(1, group(150)), "xyz", 4, {{13}}, 0, "\0\0\0\0"s, 1},
        {dialog(1, group(150) + group(150) + group(156)), "1", 3, {{13}}, 0, "1\0\0"s, 1},
        {ip, "1.2.3.4", 9, {{13}}, 0, "1.2.3.4\0\0"s, 1, address, 26},
        {ip, "1.2.3.4", 4, {{27}}, -3202, "1.2\0"s, 1, address},
        {ip, "1.2.3.4", 8, {{13}}, 0, "1.2.3.4\0"s, 1, codes + address, 19},
        {ip, "1.2.3.4", 8, {{13}}, 0, "1.2.3.4\0"s, 1, codes + address, 20},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(&row - rows);
        renew(row.description);
        terminal.type = row.terminal;
        std::string before = row.before + '\0';
        before.resize(std::max<std::size_t>(before.size(), row.size), 'x');
        const ExactBlock buffer(before);
        EXPECT_EQ(edit(buffer.data(), row.size, row.script), row.result);
        EXPECT_EQ(toHex({buffer.data(), buffer.size()}),
                  toHex(row.after + before.substr(row.size)));
        EXPECT_EQ(countOf(toolkit.calls, "igUI_ShowExt"), row.runs);
        EXPECT_NE(toolkit.calls.find(row.calls), std::string::npos);
        EXPECT_EQ(toolkit.take({"igUI_SetKeyb"}), "igUI_SetKeyboard own\n");
    }
    EXPECT_EQ(edit(nullptr, 9), 0);
    serve(description(4));
    EXPECT_EQ(edit(nullptr, 9), 0);
    char text[5] = "";
    request.keyPostProcessing = takeKey;
    EXPECT_EQ(edit(text, 5, {{13, &takeNoMore}, {'7'}, {27}}), -3202);
    EXPECT_EQ(app.keys, "55 27 ") << "the second run has the functions again";
}

TEST_F(Modal, EditAsksAboutEveryCharacter) {
    serve(dialog(1, group(150) + group(150)));
    editing.keyPressed = takeTyped;
    char buffer[200] = "a";
    EXPECT_EQ(edit(buffer, sizeof buffer, {{'b'}, {13}}), 0);
    EXPECT_EQ(app.typed, "98 ab 9");
    EXPECT_STREQ(buffer, "a") << "the function has seen to the key";
    EXPECT_EQ(toolkit.take({"igInput_SetU"}), "igInput_SetUserFunc input3 0 0 0\n");
    const std::string longest(129, 'r');
    app.rewritten = longest.c_str();
    EXPECT_EQ(edit(buffer, sizeof buffer, {{'d'}, {13}}), 0);
    EXPECT_EQ(buffer, longest.substr(1));
    EXPECT_EQ(edit(buffer, sizeof buffer, {{'e'}, {27}}), -3202);
    EXPECT_EQ(app.typed, "101 rrrrrrrrre 9") << "no more than the input takes";
    expectNothingInstalled();
    EXPECT_EQ(uti::Dialogs_EditKeyHook(3, 'a'), 0) << "without a function";

    const struct {
        std::string main;
        uint8_t radix, option;
        int32_t most;
        bool asked;
    } rows[] = {
        {"", 2, 0, 9, false},  {"", 2, 1, 126, true},           {byte(87, 1), 0, 0, 9, false},
        {"", 0, 0, 500, true}, {text(81, "_"), 0, 0, 9, false}, {"", 0, 0, -5, true}};
    for (const auto &row : rows) {
        SCOPED_TRACE(&row - rows);
        renew(dialog(1, group(150) + group(150, row.main)));
        app = {};
        toolkit.answers["igInput_GetMaxLen"] = row.most;
        editing.radix = row.radix;
        editing.option = row.option;
        std::memset(buffer, 0, sizeof buffer);
        std::memset(buffer, 'x', 150);
        EXPECT_EQ(edit(buffer, sizeof buffer, {{'k'}, {13}}), 0);
        const auto kept = static_cast<std::size_t>(std::clamp(row.most, 0, 127));
        const std::string text = std::string(kept, 'x') + "k " + std::to_string(kept);
        EXPECT_EQ(app.typed, row.asked ? "107 " + text : "");
    }
    toolkit.answers["igUI_Add"] = -3;
    EXPECT_EQ(edit(buffer, sizeof buffer), -3);
    expectNothingInstalled();
}

TEST_F(Modal, List) {
    const ListItem items[] = {
        {11, 12, 0, 13, "one"}, {21, 22, 5, 23, nullptr}, {31, 32, 0, 33, ""}};
    listing.items = items;
    listing.itemCount = 3;
    serve(dialog(2, group(150) + group(153, colors({0xFF0000, 0x00FF00, 0x0000FF, 0x123456}))));
    request.colors = {{}, {}, {}, {0, 0, 8}};
    toolkit.answers["igMenuBox_GetSelected"] = 3;
    EXPECT_EQ(list(), 2);
    EXPECT_NE(toolkit.take({"igMenuBox_SetItemsA"}).find("0x0 0x1\n"), std::string::npos);
    toolkit.answers["igMenuBox_GetSelected"] = -4;
    EXPECT_EQ(list(), -5004);
    EXPECT_EQ(list({{27}}), -3202) << "the selection is not asked for";
    listing.items = nullptr;
    toolkit.answers["igMenuBox_AddItemExt2"] = -3;
    EXPECT_EQ(list(), -5004);
    toolkit.take();
    serve(dialog(2, group(150)));
    EXPECT_EQ(list(), -3200);
    EXPECT_EQ(toolkit.take(), "");

    renew(dialog(2, group(153, group(160, byte(123, 1) + text(117, "up")) +
                                   group(160, byte(123, 2) + text(117, "down")))));
    const auto scrolls = [&](int32_t up, int32_t down) {
        return Event{0, [=] {
                         fake::toolkit().answers["igWidget_GetDeltaY menuBox2 0"] = up;
                         fake::toolkit().answers["igWidget_GetDeltaY menuBox2 1"] = down;
                     }};
    };
    EXPECT_EQ(list({scrolls(0, 9), scrolls(1, 0), {13}}), 0);
    currentGraphicMenuParameters.entries[0].elements[1].notFirst = 2;
    IG_AdditionalListElements();
    EXPECT_EQ(toolkit.take({"igStatic_Set"}),
              "igStatic_SetImage static4 0\nigStatic_SetImage static6 0\n"
              "igStatic_SetImage static4 0\nigStatic_SetImage static6 down\n"
              "igStatic_SetImage static4 up\nigStatic_SetImage static6 0\n"
              "igStatic_SetImage static4 up\nigStatic_SetImage static6 0\n"
              "igStatic_SetImage static4 up\n");
    for (const bool counted : {true, false}) {
        currentGraphicMenuParameters.entries[0].handle = counted ? 0 : 2;
        currentGraphicMenuParameters.count = counted;
        IG_AdditionalListElements();
    }
    EXPECT_EQ(toolkit.take({"igStatic_Set"}), "");
}

TEST_F(Modal, EventsInTheirOrder) {
    const LabelValue labels[] = {{nullptr, nullptr}};
    app.labels = labels;
    app.keyResult = -1;
    enum { display = 1, breaks = 2, refreshes = 4, takesKeys = 8, all = 15 };
    const struct {
        uint32_t showType;
        int sources;
        uint8_t last, key;
        int32_t state, endDialog;
        bool restarts, resetsTime;
    } rows[] = {
        {0, all - display, 27, 27, 1, 0, false, false},
        {2, all, 27, 27, 1, 0, false, false},
        {2, all - display, 27, 27, 101, 0, false, false},
        {2, refreshes + takesKeys, 27, 27, 102, 0, false, false},
        {2, takesKeys, 27, 65, 101, -3202, false, false},
        {2, takesKeys, 65, 65, 101, 0, false, false},
        {2, takesKeys, 0, 65, 0, 0, true, true},
        {2, 0, 27, 27, -1, 0, true, true},
        {3, 0, 0, 13, 1, 0, true, true},
        {1, 0, 0, 65, 0, 0, true, false},
        {2, 0, 65, 0, 0, 0, false, false},
    };
    uti::currentForm = igForm_Create("", 0);
    for (const auto &row : rows) {
        SCOPED_TRACE(&row - rows);
        toolkit.take();
        currentShowType = row.showType;
        terminal.displayEvent = row.sources & display;
        app.asked = 0;
        app.breakAt = row.sources & breaks ? 1 : 2;
        NeedToBreakFunction = breakOff;
        RefreshDialogFunction = row.sources & refreshes ? refresh : nullptr;
        KeyPostProcessingFunction = row.sources & takesKeys ? takeKey : nullptr;
        EndDialog = 0;
        currentStartTime = 0;
        terminal.ticks = 500;
        terminal.lastKey = row.last;
        uint8_t key = row.key;
        EXPECT_EQ(IG_EventCallback(&key), row.state);
        EXPECT_EQ(EndDialog, row.endDialog);
        EXPECT_EQ(currentStartTime, row.restarts ? 500u : 0u);
        EXPECT_EQ(toolkit.take(), row.resetsTime ? "igForm_ResetTime form1\n" : "");
    }
    NeedToBreakFunction = nullptr;
    EXPECT_EQ(IG_EventCallback(nullptr), 0);
    toolkit.answers["IG_KeyPushCallback"] = 12;
    EXPECT_EQ(IG_KeyPressedCallback(1, 65), 12);
    EXPECT_EQ(Dialogs_Lock(3), 0);
    EXPECT_EQ(toolkit.take(), "IG_KeyPushCallback 1 65\nigUI_BlockInput 3\n");
}

TEST_F(Modal, DeactivatedDialogs) {
    EXPECT_EQ(Dialogs_Activate(), 0);
    EXPECT_EQ(toolkit.take(), "");
    toolkit.answers = {{"IG_DisableStatusLine", -4}, {"IG_EnableStatusLine", -5}};
    EXPECT_EQ(Dialogs_Deactivate(), -4);
    EXPECT_EQ(dialogDeactivate, 0u);
    toolkit.answers["IG_DisableStatusLine"] = 3;
    EXPECT_EQ(Dialogs_Deactivate(), 3);
    EXPECT_EQ(Dialogs_Deactivate(), 0);
    UserDialogResult = 5;
    char buffer[4] = "abc";
    EXPECT_EQ(message(2) + confirm() + select("", "") + edit(buffer, 4) + list() + sign() +
                  DrawImage_IG(0, 0, "x", nullptr),
              0);
    EXPECT_STREQ(buffer, "abc");
    EXPECT_EQ(UserDialogResult, 5) << "nothing at all happens";
    EXPECT_EQ(Dialogs_Activate(), -5);
    EXPECT_EQ(dialogDeactivate, 1u);
    toolkit.answers.clear();
    EXPECT_EQ(Dialogs_Activate(), 0);
    EXPECT_EQ(dialogDeactivate, 0u);
    EXPECT_EQ(toolkit.take(), "IG_DisableStatusLine\nIG_DisableStatusLine\nIG_EnableStatusLine\n"
                              "IG_EnableStatusLine\n");
}

} // namespace
