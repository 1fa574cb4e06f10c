#include "toolkit.h"

#include <algorithm>
#include <cstring>

namespace fake {

namespace {

Object *find(int32_t handle) {
    const auto found = toolkit().objects.find(handle);
    return found == toolkit().objects.end() ? nullptr : &found->second;
}

std::string name(int32_t handle) {
    const Object *object = find(handle);
    const std::string number = std::to_string(handle);
    return !object ? number : object->kind == "image" ? object->value : object->kind + number;
}

std::string quoted(const char *text) {
    std::string quoted = text ? "\"" : "null";
    for (; text && *text; ++text)
        quoted += *text == '\n' ? "^J" : std::string(1, *text);
    return quoted[0] == '"' ? quoted + '"' : quoted;
}

// What the rows of the toolkit's functions give of a call.
struct Form {
    int32_t value;
};
struct Widget {
    int32_t value;
};
struct Image {
    int32_t value;
};
struct Hex {
    uint32_t value;
};

// An argument: how it is written, and what the call does with it.
struct Argument {
    enum Kind { plain, form, widget, image };

    template <class Number>
    Argument(Number value) : shown(std::to_string(value)), number(static_cast<uint32_t>(value)) {}
    Argument(const char *value) : shown(quoted(value)), text(value) {}
    Argument(Hex bits) : shown(16, 0) {
        shown.resize(static_cast<std::size_t>(snprintf(shown.data(), 16, "0x%X", bits.value)));
    }
    Argument(Form of) : Argument(of.value, form) {}
    Argument(Widget of) : Argument(of.value, widget) {}
    Argument(Image of) : Argument(of.value, image) {}
    Argument(IgEventCallback function) : onEvent(function) {}
    Argument(IgInputFunction function)
        : shown(function == IG_KeyPushCallback ? "own" : ""), onKey(function) {}

    int32_t handle() const { return static_cast<int32_t>(number); }

    std::string shown;
    uint32_t number = 0;
    const char *text = nullptr;
    Kind kind = plain;
    IgEventCallback onEvent = nullptr;
    IgInputFunction onKey = nullptr;

private:
    Argument(int32_t handle, Kind of)
        : shown(name(handle)), number(static_cast<uint32_t>(handle)), kind(of) {}
};
using Arguments = std::vector<Argument>;

// Kinds of objects: the functions that create them, and those that take them and what others.
constexpr struct {
    const char *functions, *kind;
    int32_t type;
    const char *also;
} kinds[] = {
    {"igForm_", "form", 0, ""},
    {"igChildForm_", "form", 0, ""},
    {"igStatic_", "static", IG_WIDGET_STATIC, ""},
    {"igButton_", "button", IG_WIDGET_BUTTON, ""},
    {"igInput_", "input", IG_WIDGET_INPUT, "pattern"},
    {"igInput_SetControlCodes", "input", IG_WIDGET_INPUT, "ip"},
    {"igMultiLine_", "multiLine", IG_WIDGET_MULTI_LINE, ""},
    {"igPatternInput_", "pattern", IG_WIDGET_PATTERN_INPUT, ""},
    {"igPatternInput_SetPattern", "pattern", IG_WIDGET_PATTERN_INPUT, "ip"},
    {"igIPInput_", "ip", IG_WIDGET_IP_INPUT, ""},
    {"igMenuBox_", "menuBox", IG_WIDGET_MENU_BOX, ""},
    {"igProgress_", "progress", IG_WIDGET_PROGRESS, ""},
    {"igSignBox_", "signBox", IG_WIDGET_SIGN_BOX, ""},
};

// Whether a function takes a handle: one of a living object of its kind, or no image.
bool accepts(const std::string &function, const Argument &argument) {
    if (argument.kind == Argument::plain)
        return true;
    if (argument.handle() <= 0)
        return argument.kind == Argument::image;
    const Object *object = find(argument.handle());
    bool fits = false;
    if (object && argument.kind != Argument::widget)
        fits = object->kind == (argument.kind == Argument::form ? "form" : "image");
    else if (object && (function.starts_with("igWidget_") || function.starts_with("igForm_")))
        fits = object->type != 0;
    else if (object)
        fits = std::any_of(std::begin(kinds), std::end(kinds), [&](const auto &each) {
            return function.starts_with(each.functions) &&
                   (object->kind == each.kind || object->kind == each.also);
        });
    if (!fits)
        toolkit().mistakes += function + " of " + name(argument.handle()) + '\n';
    return fits;
}

// Reads the texts that the widgets of all forms were given: none may have been freed.
void rereadTexts() {
    for (const auto &[handle, object] : toolkit().objects) {
        for (const char *text : object.form != 0 ? object.texts : std::vector<const char *>{})
            toolkit().read += text ? std::strlen(text) : 0;
    }
}

// Reads the texts of a form's widgets, as drawing them does.
void draw(int32_t form) {
    std::string &drawn = toolkit().drawn;
    drawn.clear();
    for (const auto &[handle, object] : toolkit().objects) {
        for (const char *text : object.form == form ? object.texts : std::vector<const char *>{})
            drawn += text ? quoted(text) + ' ' : "";
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
    const int32_t running = toolkit().running;
    draw(running);
    const Object &form = *find(running);
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
    if (toolkit().running != running) // the application has shown another form
        return;
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
    terminal().onWait = [] { step(); };
}

void remove(int32_t form) {
    if (toolkit().running == form)
        end(IG_STATE_CANCELLED);
    std::erase_if(toolkit().objects,
                  [&](const auto &each) { return each.first == form || each.second.form == form; });
}

const char *textOf(int32_t widget) {
    const char *text = find(widget)->texts[0];
    return text ? text : "";
}

// What calls do beyond being written, and the value that those give which ask for one.
const std::map<std::string, std::function<int32_t(const Arguments &)>> effects = {
    {"igUI_Show", [](auto &a) { return draw(a[0].handle()), 0; }},
    {"igUI_Del", [](auto &a) { return remove(a[0].handle()), 0; }},
    {"igUI_ShowExt", [](auto &a) { return run(a[0].handle(), a[1].onEvent), 0; }},
    {"igUI_GetWidth", [](auto &) { return 240; }},
    {"igUI_GetHeight", [](auto &) { return 320; }},
    {"igForm_Add", [](auto &a) { return find(a[1].handle())->form = a[0].handle(), 0; }},
    {"igForm_SetFocused", [](auto &a) { return find(a[0].handle())->focus = a[1].handle(), 0; }},
    {"igForm_SetTimeOut", [](auto &a) { return find(a[0].handle())->timeOut = a[1].number, 0; }},
    {"igForm_ResetTime",
     [](auto &a) { return find(a[0].handle())->started = terminal().ticks, 0; }},
    {"igForm_GetState", [](auto &a) { return find(a[0].handle())->state; }},
    {"igForm_GetClientWidth", [](auto &) { return 236; }},
    {"igForm_GetClientHeight", [](auto &) { return 300; }},
    {"igWidget_GetType", [](auto &a) { return find(a[0].handle())->type; }},
    {"igWidget_SetKeyScheme",
     [](auto &a) {
         const auto &scheme = toolkit().keySchemes[a[1].handle()];
         auto &texts = find(a[0].handle())->texts;
         texts.insert(texts.end(), scheme.begin(), scheme.end());
         return 0;
     }},
    {"igInput_SetValue",
     [](auto &a) { return find(a[0].handle())->value = a[1].text ? a[1].text : "", 0; }},
    {"igInput_GetMaxLen", [](auto &) { return 9; }},
    {"igInput_SetUserFunc", [](auto &a) { return find(a[0].handle())->function = a[1].onKey, 0; }},
    {"igMultiLine_SetValue", [](auto &a) { return find(a[0].handle())->texts = {a[1].text}, 0; }},
    {"igIPInput_SetIPtext", [](auto &a) { return find(a[0].handle())->texts = {a[1].text}, 0; }},
    {"igMenuBox_GetSelected", [](auto &) { return 1; }},
};

// Creates an object and writes its name behind the call. A widget goes on reading its text.
int32_t create(const std::string &function, const Arguments &arguments) {
    const auto *of = std::find_if(std::begin(kinds), std::end(kinds),
                                  [&](auto &each) { return function.starts_with(each.functions); });
    Object object;
    object.kind = of->kind;
    object.type = of->type;
    const auto text =
        std::find_if(arguments.begin(), arguments.end(), [](auto &each) { return each.text; });
    object.texts = {of->type != 0 && text != arguments.end() ? text->text : nullptr};
    const int32_t handle = ++toolkit().lastHandle;
    toolkit().objects[handle] = object;
    toolkit().calls.back() = ' ';
    toolkit().calls += "= " + name(handle) + '\n';
    return handle;
}

// Any call. Its result is that of a fault, the answer that the test gave, a refusal, or its own.
int32_t call(const std::string &function, const Arguments &arguments) {
    std::string line = function;
    for (const Argument &argument : arguments)
        line += argument.shown.empty() ? "" : ' ' + argument.shown;
    const bool asks =
        function.find("_Get") != std::string::npos || function.starts_with("igImage_");
    rereadTexts();
    if (!asks)
        toolkit().calls += line + '\n';
    if (fails(Call::toolkit)) {
        if (toolkit().failed.empty())
            toolkit().failed = function;
        return failure;
    }
    for (const std::string &key : {line, function}) {
        const auto given = toolkit().answers.find(key);
        if (given != toolkit().answers.end() && given->second != 0)
            return given->second;
    }
    for (const Argument &argument : arguments) {
        if (!accepts(function, argument))
            return refused;
    }
    if (function.ends_with("_Create"))
        return create(function, arguments);
    const auto effect = effects.find(function);
    return effect == effects.end() ? 0 : effect->second(arguments);
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

#define ROW(function, parameters, ...)                                                             \
    int32_t function parameters {                                                                  \
        return call(#function, {__VA_ARGS__});                                                     \
    }
#pragma GCC diagnostic ignored "-Wunused-parameter"
#include "common/toolkit_functions.h"

int32_t igUI_IsModal(void) {
    return toolkit().running;
}

int32_t igUI_SetKeyScheme(int32_t, int32_t number, char *const scheme[12]) {
    std::string pieces;
    for (int i = 0; i < 12; ++i)
        pieces += scheme[i] ? scheme[i] + "|"s : "-";
    toolkit().keySchemes[number].assign(scheme, scheme + 12);
    return call("igUI_SetKeyScheme", {number, pieces.c_str()});
}

int32_t igForm_GetState(int32_t form) {
    return call("igForm_GetState", {Form{form}});
}

int32_t igWidget_GetDeltaY(int32_t widget, int32_t direction) {
    return call("igWidget_GetDeltaY", {Widget{widget}, direction});
}

int32_t igImage_CreateFromFile(const char *fileName) {
    if (!fileName || *fileName == 0)
        return 0;
    const int32_t result = call("igImage_CreateFromFile", {fileName});
    if (result != 0)
        return result;
    Object image;
    image.kind = "image";
    image.value = fileName;
    toolkit().objects[++toolkit().lastHandle] = image;
    return toolkit().lastHandle;
}

const char *igInput_GetValue(int32_t widget) {
    return call("igInput_GetValue", {Widget{widget}}) == 0 ? find(widget)->value.c_str() : "";
}

const char *igMultiLine_GetValue(int32_t widget) {
    return call("igMultiLine_GetValue", {Widget{widget}}) == 0 ? textOf(widget) : "";
}

int32_t igIPInput_GetIPtext(int32_t widget, char *buffer, uint32_t size) {
    const int32_t result = call("igIPInput_GetIPtext", {Widget{widget}});
    return result == 0 ? snprintf(buffer, size, "%s", textOf(widget)) : result;
}

void IG_UpdateStatusLine(void) {
    toolkit().calls += "IG_UpdateStatusLine\n";
}

int32_t IG_GetFullImagePath(const char *name, char *buffer, uint32_t capacity) {
    toolkit().calls +=
        "IG_GetFullImagePath " + quoted(name) + ' ' + std::to_string(capacity) + '\n';
    if (name && *name != 0)
        snprintf(buffer, capacity, "img/%s", name);
    return 0;
}

int32_t IG_KeyPushCallback(int32_t display, int32_t key) {
    return call("IG_KeyPushCallback", {display, key});
}
