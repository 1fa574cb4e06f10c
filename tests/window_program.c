/* window_program.c: an application with one form to be answered in a window: a name, a box to sign
   in and a button. It prints how the form ended and what was entered. */
#include "terminal.h"
#include "toolkit.h"

#include <stdio.h>

int main(void) {
    const int32_t display = Display_GetHandle();
    IG_DisableStatusLine(); /* its clock differs from run to run */

    const int32_t form = igForm_Create("Order", 0);
    const int32_t name = igInput_Create(10, 10, 220, 30, 20, 0);
    const int32_t box = igSignBox_Create(10, 60, 220, 120);
    const int32_t button = igButton_Create(60, 220, 120, 40, "Go on", 0, IG_KEY_F1);
    igButton_SetOption(button, IG_BUTTON_END);
    igForm_Add(form, name);
    igForm_Add(form, box);
    igForm_Add(form, button);
    igForm_Reset(form);
    igUI_Add(display, form);
    igUI_ShowExt(display, form, NULL);
    while (igUI_IsModal())
        Wait(100);
    printf("state %d name \"%s\"\n", (int)igForm_GetState(form), igInput_GetValue(name));
    igUI_Del(display, form);
    return 0;
}
