// ui.cpp: the functions of toolkit.h and terminal.h for the display as a whole and for its
// keyboard.
#include "common/keys.h"
#include "host/terminal/copy_text.h"
#include "host/terminal/image_path.h"
#include "host/toolkit/doors.h"
#include "terminal.h"

#include <utility>

namespace uti::host {

namespace {

// The terminal's code of a toolkit's key; what is no key of the terminal has the same in both.
uint8_t terminalCode(uint8_t code) {
    for (const Key &key : keys)
        if (key.toolkit == code && key.terminal != 0)
            return key.terminal;
    return code;
}

// Calls `use` with the display of that handle. Returns IG_ERROR_HANDLE for any other handle.
template <class Use>
int32_t withDisplay(int32_t handle, Use use) {
    return handle == Display::handle ? use(display()) : int32_t{IG_ERROR_HANDLE};
}

// The same with a form that exists.
template <class Use>
int32_t withShown(int32_t handle, int32_t form, Use use) {
    return withDisplay(handle, [&](Display &it) {
        if (!it.form(form))
            return int32_t{IG_ERROR_HANDLE};
        use(it);
        return 0;
    });
}

} // namespace
} // namespace uti::host

using namespace uti::host;

int32_t igUI_Add(int32_t display, int32_t form) {
    return withShown(display, form, [=](Display &it) { it.add(form); });
}

int32_t igUI_Del(int32_t display, int32_t form) {
    return withShown(display, form, [=](Display &it) { it.remove(form); });
}

int32_t igUI_Show(int32_t display, int32_t form) {
    return withShown(display, form, [=](Display &it) { it.show(form); });
}

int32_t igUI_ShowExt(int32_t display, int32_t form, IgEventCallback callback) {
    return withShown(display, form, [=](Display &it) { it.run(form, callback); });
}

int32_t igUI_IsModal(void) {
    return display().running() ? 1 : 0;
}

int32_t igUI_SetKeyScheme(int32_t display, int32_t number, char *const scheme[12]) {
    if (!scheme || number <= 0)
        return IG_ERROR_ARGUMENT;
    return withDisplay(display, [=](Display &it) {
        it.stage().keySchemes.set(number, std::span<char *const, 12>(scheme, 12));
        return 0;
    });
}

int32_t igUI_SetFileFont(int32_t display, int32_t slot, const char *fileName) {
    return withDisplay(display, [=](Display &it) {
        const bool possible = slot >= 0 && fileName && *fileName;
        if (!possible || !it.stage().fonts.load(static_cast<std::size_t>(slot), fileName))
            return int32_t{IG_ERROR_FILE};
        it.stage().damage.add({0, 0, it.size().width, it.size().height});
        return 0;
    });
}

int32_t igUI_SetKeyboard(int32_t display, IgKeyboardHandler handler) {
    return withDisplay(display, [=](Display &it) {
        it.setKeyboardHandler(handler ? handler : IG_KeyPushCallback);
        return 0;
    });
}

int32_t igUI_BlockInput(int32_t display, int32_t block) {
    return withDisplay(display, [=](Display &it) {
        it.blockInput(block != 0);
        return 0;
    });
}

int32_t igUI_GetWidth(int32_t display) {
    return withDisplay(display, [](Display &it) { return it.size().width; });
}

int32_t igUI_GetHeight(int32_t display) {
    return withDisplay(display, [](Display &it) { return it.size().height; });
}

int32_t igUI_SetBackgroundImage(int32_t display, int32_t image) {
    return withDisplay(display, [=](Display &it) {
        if (image < 0)
            return image;
        if (image > 0 && !it.stage().images.find(image))
            return int32_t{IG_ERROR_HANDLE};
        it.setBackground(image);
        it.redraw();
        return 0;
    });
}

int32_t IG_EnableStatusLine(void) {
    display().enableStatusLine(true);
    return 0;
}

int32_t IG_DisableStatusLine(void) {
    display().enableStatusLine(false);
    return 0;
}

void IG_UpdateStatusLine(void) {
    display().damageStatusLine();
    display().redraw();
}

// A path that does not fit gives the name alone, under which images are found too.
int32_t IG_GetFullImagePath(const char *name, char *buffer, uint32_t capacity) {
    if (!name || !*name || !buffer)
        return 0;
    const std::string path = imagePath(name).string();
    copyText(path.size() < capacity ? path : name, buffer, capacity);
    return 0;
}

// Keeps the key for `Keyboard_GetLastKey`.
int32_t IG_KeyPushCallback(int32_t, int32_t key) {
    display().keepKey(terminalCode(static_cast<uint8_t>(key)));
    return 0;
}

int32_t Display_GetHandle(void) {
    display();
    return Display::handle;
}

int32_t Display_CheckEvent(void) {
    return display().isClosed() ? 1 : 0;
}

// Nothing is written there; the dump of the display tells the place.
void Display_SetCursorPosition(uint8_t column, uint8_t row) {
    display().setCursor({column, row});
}

uint8_t Keyboard_GetLastKey(void) {
    return display().takeKey();
}

void Keyboard_Reset(void) {
    display().takeKey();
}
