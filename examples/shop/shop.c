/*
 * shop.c: a point of sale. It shows a picture until somebody presses Enter, and then sells; Menu
 * leads to the service menu.
 *
 *   shop [FOLDER]    FOLDER holds shop.res, utils_rc.res and images, and receives shop.ini,
 * shop.log and signature.png; default: the present one
 */
#include "sale.h"
#include "screen.h"
#include "service.h"
#include "settings.h"

#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

enum { VERSION = 1 };

/* Returns the key that was pressed, 0 when the display was closed. */
static uint8_t waitForKey(void) {
    DrawImage_IG(0, 0, text(SHOP_IDLE_IMAGE), NULL);
    Keyboard_Reset();
    while (Display_CheckEvent() == 0) {
        const uint8_t key = Keyboard_GetLastKey();
        if (key != 0)
            return key;
        WaitSleep(100);
    }
    return 0;
}

int main(int argc, char **argv) {
    if (argc > 2 || (argc == 2 && chdir(argv[1]) != 0)) {
        fprintf(stderr, "usage: shop [FOLDER]\n");
        return 2;
    }
    /* The code pages of shop.toml, by which fonts are chosen; a terminal says so by itself. */
    setenv("cp_en", "1251", 0);
    setenv("cp_de", "1252", 0);

    int32_t result = Resource_IsValid(SHOP_MODULE, VERSION);
    if (result != UTI_OK) {
        fprintf(stderr, "shop: no shop.res of version %d here: %d\n", VERSION, (int)result);
        return 1;
    }

    const TraceExSettings settings = {
        .output = TRACE_OUTPUT_FILE, .mode = 3, .device.baseName = "shop", .maxSize = 1 << 20};
    result = TraceExOpen(&settings);
    if (result != UTI_OK)
        fprintf(stderr, "shop: no trace log: %d\n", (int)result);
    TraceExSupport(SHOP_MODULE, SHOP_STARTED, String, UTILS_GetVersion(), 0);
    restoreLanguage();
    SetBackgroundImage_IG("images/background.png");

    int32_t isOver = 0;
    while (!isOver) {
        const uint8_t key = waitForKey();
        if (key == KEY_MENU)
            isOver = serve();
        else if (key == KEY_ENTER)
            sell();
        else
            isOver = key == 0;
    }

    TraceExSupport(SHOP_MODULE, SHOP_STOPPED, 0);
    Resource_Close(SHOP_MODULE);
    TraceExClose();
    return 0;
}
