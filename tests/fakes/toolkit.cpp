#include "toolkit.h"

#include <algorithm>
#include <cstring>

namespace fake {

namespace {

// How arguments are written; handles are checked too, as those of one of the kinds.
struct Handle {
    int32_t value;
    const char *kinds;
};
Handle aForm(int32_t form) {
    return {form, "form "};
}
Handle anImage(int32_t image) {
    return {image, "image "};
}
constexpr const char *anyWidget =
    "static button multiLine pattern input ip menuBox signBox progress ";
Handle aWidget(int32_t widget, const char *kinds = anyWidget) {
    return {widget, kinds};
}
struct Hex {
    uint32_t value;
};

Object *find(int32_t handle) {
    const auto found = toolkit().objects.find(handle);
    return found == toolkit().objects.end() ? nullptr : &found->second;
}

std::string name(int32_t handle) {
    const Object *object = find(handle);
    const std::string number = std::to_string(handle);
    return !object ? number : object->kind == "image" ? object->value : object->kind + number;
}

template <class Number>
std::string shown(Number value) {
    return std::to_string(value);
}
std::string shown(const char *text) {
    std::string quoted = text ? "\"" : "null";
    for (; text && *text; ++text)
        quoted += *text == '\n' ? "^J" : std::string(1, *text);
    return text ? quoted + '"' : quoted;
}
std::string shown(Hex hex) {
    char text[16];
    snprintf(text, sizeof text, "0x%X", hex.value);
    return text;
}
std::string shown(const Handle &handle) {
    return name(handle.value);
}

template <class Any>
bool accepts(const std::string &, const Any &) {
    return true;
}
bool accepts(const std::string &function, const Handle &handle) {
    const Object *object = find(handle.value);
    if (handle.value <= 0)
        return handle.kinds == anImage(0).kinds;
    if (object && std::strstr(handle.kinds, (object->kind + ' ').c_str()))
        return true;
    toolkit().mistakes += function + " of " + name(handle.value) + '\n';
    return false;
}

// The result of a call: that of a fault, the answer that the test gave, a refusal, or 0.
template <class... Args>
int32_t asked(const std::string &function, Args... args) {
    if (fails(Call::toolkit)) {
        toolkit().failed = function;
        return failure;
    }
    const std::string line = function + ((' ' + shown(args)) + ... + "");
    for (const std::string &key : {line, function}) {
        if (const auto given = toolkit().answers.find(key); given != toolkit().answers.end())
            return given->second;
    }
    return ((accepts(function, args) ? 0 : 1) + ... + 0) == 0 ? 0 : refused;
}

// The same for a call that is written.
template <class... Args>
int32_t told(const std::string &function, Args... args) {
    toolkit().calls += function + ((' ' + shown(args)) + ... + "\n");
    return asked(function, args...);
}

// Creates an object when the call succeeds, and writes its name behind the call. The object goes on
// reading `text`.
template <class... Args>
int32_t create(const char *kind, int32_t type, const char *text, const char *function,
               Args... args) {
    const int32_t result = told(function, args...);
    if (result != 0)
        return result;
    Object object;
    object.kind = kind;
    object.type = type;
    object.texts = {text};
    const int32_t handle = ++toolkit().lastHandle;
    toolkit().objects[handle] = object;
    toolkit().calls.back() = ' ';
    toolkit().calls += "= " + name(handle) + '\n';
    return handle;
}

// Reads the texts of a form's widgets, as drawing them does.
void draw(int32_t form) {
    std::string &drawn = toolkit().drawn;
    drawn.clear();
    for (const auto &[handle, object] : toolkit().objects) {
        for (const char *text : object.form == form ? object.texts : std::vector<const char *>{})
            drawn += text ? shown(text) + ' ' : "";
    }
}

void end(int32_t state) {
    find(toolkit().running)->state = state;
    toolkit().running = 0;
    terminal().onWait = nullptr;
}

// A character goes to the input with the focus unless its function has seen to it.
void type(uint8_t key) {
    const int32_t focus = find(toolkit().running)->focus;
    Object *input = find(focus);
    if (input && key >= ' ' && !(input->function && input->function(focus, key) == 0))
        input->value += static_cast<char>(key);
}

// One wait of the running form.
void step() {
    draw(toolkit().running);
    const Object &form = *find(toolkit().running);
    if (form.timeOut != 0 && terminal().ticks - form.started >= form.timeOut)
        return end(IG_STATE_TIME_OUT);

    Event event;
    if (!toolkit().script.empty()) {
        event = toolkit().script.front();
        toolkit().script.pop_front();
    } else if (form.timeOut == 0) {
        toolkit().mistakes += "the script is over and the form runs on\n";
        return end(IG_STATE_CANCELLED);
    }
    if (event.key != 0)
        terminal().lastKey = event.key;
    if (event.act)
        event.act();
    if (toolkit().running == 0)
        return;
    uint8_t key = event.key;
    const int32_t result = toolkit().callback(&key);
    if (result != 0)
        return end(result);
    type(key);
}

void run(int32_t form, IgEventCallback callback) {
    draw(form);
    find(form)->state = IG_STATE_RUNNING;
    find(form)->started = terminal().ticks;
    toolkit().callback = callback;
    toolkit().running = form;
    terminal().onWait = step;
}

void remove(int32_t form) {
    if (toolkit().running == form)
        end(IG_STATE_CANCELLED);
    std::erase_if(toolkit().objects,
                  [&](const auto &each) { return each.first == form || each.second.form == form; });
}

void readKeyScheme(int32_t widget, int32_t number) {
    const auto &scheme = toolkit().keySchemes[number];
    find(widget)->texts.insert(find(widget)->texts.end(), scheme.begin(), scheme.end());
}

const char *textOf(int32_t widget) {
    const char *text = find(widget)->texts[0];
    return text ? text : "";
}

} // namespace

std::string Toolkit::take(std::initializer_list<const char *> words) {
    std::string taken;
    std::string left;
    for (std::size_t at = 0; at < calls.size();) {
        const std::string line = calls.substr(at, calls.find('\n', at) + 1 - at);
        const bool wanted = std::any_of(words.begin(), words.end(),
                                        [&](const char *word) { return line.rfind(word, 0) == 0; });
        (wanted ? taken : left) += line;
        at += line.size();
    }
    calls = left;
    return taken;
}

Toolkit &toolkit() {
    static Toolkit instance;
    return instance;
}

void resetToolkit() {
    toolkit() = Toolkit{};
}

} // namespace fake

using namespace fake;
using namespace std::string_literals;

// The calls are rows of these: one that is written; one that then does something; one that asks for
// a value; one that creates an object which goes on reading `text`.
#define CALL(function, parameters, ...)                                                            \
    int32_t function parameters {                                                                  \
        return told(#function __VA_OPT__(, ) __VA_ARGS__);                                         \
    }
#define SET(function, parameters, effect, ...)                                                     \
    int32_t function parameters {                                                                  \
        const int32_t result = told(#function, __VA_ARGS__);                                       \
        if (result == 0)                                                                           \
            effect;                                                                                \
        return result;                                                                             \
    }
#define ASK(function, parameters, value, ...)                                                      \
    int32_t function parameters {                                                                  \
        const int32_t result = asked(#function __VA_OPT__(, ) __VA_ARGS__);                        \
        return result == 0 ? value : result;                                                       \
    }
#define CREATE(function, parameters, kind, type, text, ...)                                        \
    int32_t function parameters {                                                                  \
        return create(kind, type, text, #function, __VA_ARGS__);                                   \
    }
#define VALUE(function, Type) CALL(function, (int32_t widget, Type value), aWidget(widget), value)
#define OPTIONS(function) CALL(function, (int32_t form, uint32_t bits), aForm(form), Hex{bits})
#define COLORS(function, Target)                                                                   \
    CALL(function, (int32_t handle, uint16_t front, uint16_t back), Target(handle), Hex{front},    \
         Hex{back})
#define FRAME int16_t x, int16_t y, int16_t w, int16_t h

// clang-format off
CALL(igUI_Add, (int32_t, int32_t form), aForm(form))
SET(igUI_Show, (int32_t, int32_t form), draw(form), aForm(form))
SET(igUI_Del, (int32_t, int32_t form), remove(form), aForm(form))
SET(igUI_ShowExt, (int32_t, int32_t form, IgEventCallback callback),
    run(form, callback), aForm(form))
CALL(igUI_SetFileFont, (int32_t, int32_t slot, const char *file), slot, file)
CALL(igUI_SetKeyboard, (int32_t, IgKeyboardHandler handler),
     handler == IG_KeyPushCallback ? "own" : "other")
CALL(igUI_BlockInput, (int32_t, int32_t block), block)
ASK(igUI_GetWidth, (int32_t), 240)
ASK(igUI_GetHeight, (int32_t), 320)
CALL(igUI_SetBackgroundImage, (int32_t, int32_t image), anImage(image))

CREATE(igForm_Create, (const char *caption, int32_t flags), "form", 0, nullptr, caption, flags)
CREATE(igChildForm_Create, (FRAME, const char *caption, int32_t flags), "form", 0, nullptr,
       x, y, w, h, caption, flags)
OPTIONS(igForm_SetOption)
OPTIONS(igForm_ClearOption)
COLORS(igForm_SetColors, aForm)
COLORS(igForm_SetHeaderColors, aForm)
CALL(igForm_SetHeaderFont, (int32_t form, uint16_t font), aForm(form), font)
CALL(igForm_SetHeaderHeight, (int32_t form, int16_t height), aForm(form), height)
CALL(igForm_SetHeaderJustify, (int32_t form, uint32_t justify), aForm(form), justify)
SET(igForm_Add, (int32_t form, int32_t widget),
    find(widget)->form = form, aForm(form), aWidget(widget))
CALL(igForm_Reset, (int32_t form), aForm(form))
SET(igForm_SetFocused, (int32_t form, int32_t widget),
    find(form)->focus = widget, aForm(form), aWidget(widget))
SET(igForm_SetTimeOut, (int32_t form, uint32_t ticks),
    find(form)->timeOut = ticks, aForm(form), ticks)
SET(igForm_ResetTime, (int32_t form), find(form)->started = terminal().ticks, aForm(form))
ASK(igForm_GetState, (int32_t form), find(form)->state, aForm(form))
ASK(igForm_GetClientWidth, (int32_t form), 236, aForm(form))
ASK(igForm_GetClientHeight, (int32_t form), 300, aForm(form))

ASK(igWidget_GetType, (int32_t widget), find(widget)->type, aWidget(widget))
ASK(igWidget_GetDeltaY, (int32_t widget, int32_t direction), 0, aWidget(widget), direction)
SET(igWidget_SetKeyScheme, (int32_t widget, int32_t number),
    readKeyScheme(widget, number), aWidget(widget), number)
VALUE(igWidget_SetBorder, uint32_t)
VALUE(igWidget_SetJustify, uint32_t)
VALUE(igWidget_SetTransparency, uint32_t)
VALUE(igWidget_SetFont, uint16_t)
COLORS(igWidget_SetActiveColor, aWidget)
COLORS(igWidget_SetPassiveColor, aWidget)
CALL(igWidget_SetActiveBackImage, (int32_t widget, int32_t image), aWidget(widget), anImage(image))
CALL(igWidget_SetPassiveBackImage, (int32_t widget, int32_t image), aWidget(widget), anImage(image))

CREATE(igStatic_Create, (FRAME, const char *text, int32_t image), "static", IG_WIDGET_STATIC, text,
       x, y, w, h, text, anImage(image))
CALL(igStatic_SetImage, (int32_t widget, int32_t image), aWidget(widget, "static "), anImage(image))
CREATE(igButton_Create, (FRAME, const char *text, int32_t image, uint8_t key),
       "button", IG_WIDGET_BUTTON, text, x, y, w, h, text, anImage(image), key)
CALL(igButton_SetOption, (int32_t widget, uint32_t bits), aWidget(widget, "button "), bits)

#define INPUT aWidget(widget, "input pattern ")
#define PATTERN_OR_IP(handle) aWidget(handle, "pattern ip ")
CREATE(igInput_Create, (FRAME, uint16_t most, uint32_t style), "input", IG_WIDGET_INPUT, nullptr,
       x, y, w, h, most, Hex{style})
CALL(igInput_SetRadix, (int32_t widget, uint8_t radix), INPUT, radix)
CALL(igInput_SetHideSymbol, (int32_t widget, uint8_t symbol), INPUT, symbol)
SET(igInput_SetValue, (int32_t widget, const char *text),
    find(widget)->value = text ? text : "", INPUT, text)
ASK(igInput_GetMaxLen, (int32_t widget), 9, INPUT)
CALL(igInput_SetControlCodes, (int32_t widget, uint8_t a, uint8_t b, uint8_t c, uint8_t d),
     aWidget(widget, "input pattern ip "), a, b, c, d)
SET(igInput_SetUserFunc, (int32_t widget, IgInputFunction function, int32_t a, int32_t b, int32_t c),
    find(widget)->function = function, INPUT, a, b, c)
CREATE(igMultiLine_Create, (FRAME, uint32_t style, const char *text),
       "multiLine", IG_WIDGET_MULTI_LINE, text, x, y, w, h, Hex{style}, text)
CALL(igMultiLine_SetMaxLen, (int32_t widget, uint16_t most), aWidget(widget, "multiLine "), most)
SET(igMultiLine_SetValue, (int32_t widget, const char *text), find(widget)->texts[0] = text,
    aWidget(widget, "multiLine "), text)
CREATE(igPatternInput_Create, (FRAME, uint32_t style, const char *pattern),
       "pattern", IG_WIDGET_PATTERN_INPUT, pattern, x, y, w, h, Hex{style}, pattern)
CALL(igPatternInput_SetMaxLen, (int32_t widget, uint16_t most), aWidget(widget, "pattern "), most)
COLORS(igPatternInput_SetPatternActiveColor, PATTERN_OR_IP)
COLORS(igPatternInput_SetPatternPassiveColor, PATTERN_OR_IP)
CALL(igPatternInput_SetFillSymbol, (int32_t widget, char symbol),
     aWidget(widget, "pattern "), symbol)
CREATE(igIPInput_Create, (FRAME, uint32_t style),
       "ip", IG_WIDGET_IP_INPUT, nullptr, x, y, w, h, Hex{style})
SET(igIPInput_SetIPtext, (int32_t widget, const char *text), find(widget)->texts[0] = text,
    aWidget(widget, "ip "), text)
ASK(igIPInput_GetIPtext, (int32_t widget, char *buffer, uint32_t size),
    snprintf(buffer, size, "%s", textOf(widget)), aWidget(widget, "ip "))

CREATE(igMenuBox_Create, (FRAME, uint32_t columns, uint32_t style),
       "menuBox", IG_WIDGET_MENU_BOX, nullptr, x, y, w, h, columns, Hex{style})
#define MENU aWidget(menu, "menuBox ")
CALL(igMenuBox_AddItemExt2, (int32_t menu, const IgMenuItem *item, int32_t image, uint16_t font),
     MENU, item->text, item->detail, item->data, item->selected, anImage(image), font)
VALUE(igMenuBox_SetItemsTransparency, uint32_t)
COLORS(igMenuBox_SetItemsActiveColor, aWidget)
COLORS(igMenuBox_SetItemsPassiveColor, aWidget)
VALUE(igMenuBox_SetItemsActiveBorder, uint32_t)
VALUE(igMenuBox_SetRowDelta, int32_t)
VALUE(igMenuBox_SetAccelFont, uint16_t)
CALL(igMenuBox_SetControlCodes, (int32_t menu, uint8_t a, uint8_t b, uint8_t c, uint8_t d),
     MENU, a, b, c, d)
ASK(igMenuBox_GetSelected, (int32_t menu), 1, MENU)
CREATE(igProgress_Create, (FRAME), "progress", IG_WIDGET_PROGRESS, nullptr, x, y, w, h)
CREATE(igSignBox_Create, (FRAME), "signBox", IG_WIDGET_SIGN_BOX, nullptr, x, y, w, h)
CALL(igSignBox_SetLineWidth, (int32_t box, int32_t pixels), aWidget(box, "signBox "), pixels)
CALL(igSignBox_SaveData, (int32_t box, const char *file), aWidget(box, "signBox "), file)

CALL(IG_EnableStatusLine, (void))
CALL(IG_DisableStatusLine, (void))
CALL(IG_KeyPushCallback, (int32_t display, int32_t key), display, key)
// clang-format on

int32_t igUI_IsModal(void) {
    return toolkit().running;
}

int32_t igUI_SetKeyScheme(int32_t, int32_t number, char *const scheme[12]) {
    std::string pieces;
    for (int i = 0; i < 12; ++i)
        pieces += scheme[i] ? scheme[i] + "|"s : "-";
    toolkit().keySchemes[number].assign(scheme, scheme + 12);
    return told("igUI_SetKeyScheme", number, pieces.c_str());
}

int32_t igImage_CreateFromFile(const char *fileName) {
    const int32_t result = fileName && *fileName ? asked("igImage_CreateFromFile", fileName) : 0;
    if (result != 0 || !fileName || *fileName == 0)
        return result;
    Object image;
    image.kind = "image";
    image.value = fileName;
    toolkit().objects[++toolkit().lastHandle] = image;
    return toolkit().lastHandle;
}

const char *igInput_GetValue(int32_t widget) {
    return asked("igInput_GetValue", INPUT) == 0 ? find(widget)->value.c_str() : "";
}

const char *igMultiLine_GetValue(int32_t widget) {
    return asked("igMultiLine_GetValue", aWidget(widget, "multiLine ")) == 0 ? textOf(widget) : "";
}

void IG_UpdateStatusLine(void) {
    toolkit().calls += "IG_UpdateStatusLine\n";
}

int32_t IG_GetFullImagePath(const char *name, char *buffer, uint32_t capacity) {
    toolkit().calls += "IG_GetFullImagePath " + shown(name) + ' ' + shown(capacity) + '\n';
    if (name && *name != 0)
        snprintf(buffer, capacity, "img/%s", name);
    return 0;
}
