/* screen.c: the shop's way to speak to the dialogs of the library. */
#include "screen.h"

#include <stdio.h>

/* -------------------------------------------------------------------------------- texts */

static char *nextText(void) {
    static char texts[64][TEXT_SIZE];
    static unsigned last;
    last = (last + 1) % (sizeof texts / sizeof *texts);
    return texts[last];
}

/* A string belongs to the library and is given back at once, so it is copied. */
const char *text(uint32_t id) {
    char *copy = nextText();
    snprintf(copy, TEXT_SIZE, "%s", Resource_GetString(SHOP_MODULE, id));
    Resource_Release(SHOP_MODULE, id);
    return copy;
}

const char *textForLog(uint32_t id) {
    char *copy = nextText();
    const char *found = Resource_GetStringEx(SHOP_MODULE, "en", id);
    snprintf(copy, TEXT_SIZE, "%s", found ? found : "");
    Resource_Release(SHOP_MODULE, id);
    return copy;
}

const char *joined(const char *first, const char *second) {
    char *copy = nextText();
    snprintf(copy, TEXT_SIZE, "%s%s", first, second);
    return copy;
}

const char *plainMoney(int32_t cents) {
    char *copy = nextText();
    snprintf(copy, TEXT_SIZE, "%d.%02d", (int)(cents / 100), (int)(cents % 100));
    return copy;
}

const char *money(int32_t cents) {
    return joined(joined(plainMoney(cents), " "), text(SHOP_EURO));
}

/* ------------------------------------------------------------------------------ dialogs */

DialogRequest requestFor(uint16_t dialog, uint32_t caption, const char *body) {
    const DialogRequest request = {
        .resourceId = dialog, .module = SHOP_MODULE, .caption = text(caption), .text = body};
    return request;
}

int32_t ended(const char *dialog, int32_t result) {
    TraceExDebug(SHOP_MODULE, SHOP_DIALOG_ENDED, String, dialog, Long, result, 0);
    return result;
}

void tell(uint32_t caption, const char *body, const char *image) {
    DialogRequest request = requestFor(SHOP_RESULT, caption, body);
    request.imageName = image;
    ended("RESULT", DialogMessage_Show(&request, SHOW_WITH_TIMEOUT));
}

int32_t confirm(const char *name, const DialogRequest *request, uint32_t first, uint32_t second) {
    const ConfirmationRequest question = {
        .dialog = *request, .firstButton = text(first), .secondButton = text(second)};
    return ended(name, DialogConfirmation_DoModal(&question));
}

/* -------------------------------------------------------------------------------- work */

static Work work;
static WorkFunction workFunction;
static LabelValue workLabels[] = {{"step", NULL}, {NULL, NULL}};

static int32_t workIsDone(void) {
    return work.isDone;
}

/* A new text has the dialog shown anew; the bar draws itself. */
static int32_t refreshWork(const LabelValue **labels) {
    const uint32_t before = work.step;
    workFunction(&work);
    igProgress_SetValue(currentGraphicProgressBarParameters.entries[0].handle, work.percent);
    if (work.step == before)
        return 0;
    workLabels[0].value = text(work.step);
    *labels = workLabels;
    return 1;
}

int32_t doWork(const char *name, uint32_t caption, const char *image, WorkFunction function) {
    work = (Work){0};
    workFunction = function;
    DialogRequest request = requestFor(SHOP_WORK, caption, NULL);
    request.imageName = image;
    request.needToBreak = workIsDone;
    request.refresh = refreshWork;
    const int32_t result = DialogMessage_Show(&request, SHOW_WITH_TIMEOUT);
    return ended(name, result == UTI_DIALOG_BROKEN_OFF ? UTI_OK : result);
}
