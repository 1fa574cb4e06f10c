/*
 * screen.h: what the screens of the shop have in common: texts, requests, messages, and work that
 * takes a while.
 */
#ifndef SHOP_SCREEN_H
#define SHOP_SCREEN_H

#include "resources.h" /* the string ids, made from shop.toml */
#include "terminal.h"
#include "toolkit.h"
#include "uti.h"

#include <stddef.h>

/* The terminal's codes of its keys. */
enum { KEY_ENTER = 13, KEY_ESCAPE = 27, KEY_STAR = '*', KEY_F1 = 129, KEY_MENU = 188 };

enum { TEXT_SIZE = 128 };

/* Each of these returns a text that holds until 63 more have been made: long enough for one dialog,
   with nothing to free. */
const char *text(uint32_t id);       /* a string in the present language */
const char *textForLog(uint32_t id); /* a string in one language and code page */
const char *joined(const char *first, const char *second); /* the two, one behind the other */
const char *money(int32_t cents);                          /* such as "12.30 " and the euro sign */
const char *plainMoney(int32_t cents);                     /* such as "12.30" */

/* A request for a dialog of the resources, with a string as its caption. `body` may be null. */
DialogRequest requestFor(uint16_t dialog, uint32_t caption, const char *body);

/* Writes the result of a dialog into the log and returns it. */
int32_t ended(const char *dialog, int32_t result);

/* Tells the customer something until a key or the time-out. */
void tell(uint32_t caption, const char *body, const char *image);

/* Asks with two buttons. Returns 0 for the first one, or why not. */
int32_t confirm(const char *name, const DialogRequest *request, uint32_t first, uint32_t second);

/* Work that is done bit by bit while a dialog shows how far it is. */
typedef struct Work {
    uint32_t step;   /* string id of what is done now */
    int32_t percent; /* how much has been done */
    int32_t isDone;  /* nonzero ends the dialog */
} Work;

/* Does a bit of the work, about ten times a second. */
typedef void (*WorkFunction)(Work *work);

/* Shows a dialog until the work is done. Returns 0 then; UTI_DIALOG_TIME_OUT, UTI_DIALOG_CANCELLED
   when it was not, or another code of the dialogs. */
int32_t doWork(const char *name, uint32_t caption, const char *image, WorkFunction function);

#endif /* SHOP_SCREEN_H */
