/* hello.c: a visitors' book, with a dialog of each kind. */
#include "hello_strings.h" /* the ids, made from hello.toml */
#include "uti.h"

#include <stdio.h>

/* A text in the present language. There is room for 20 short ones until they are released. */
static const char *text(uint32_t id) {
    return Resource_GetString(HELLO_MODULE, id);
}

static DialogRequest request(uint16_t dialog, uint32_t caption, const char *words) {
    return (DialogRequest){
        .module = HELLO_MODULE, .resourceId = dialog, .caption = text(caption), .text = words};
}

static int32_t chooseLanguage(void) {
    static const char *const codes[] = {"en", "ru"};
    const ListItem items[] = {{.word1 = (uintptr_t)text(HELLO_ENGLISH)},
                              {.word1 = (uintptr_t)text(HELLO_RUSSIAN)}};
    const ListRequest list = {.dialog = request(HELLO_CHOOSE_LANGUAGE, HELLO_LANGUAGE, NULL),
                              .items = items,
                              .itemCount = 2};
    const int32_t chosen = DialogList_DoModal(&list);
    if (chosen >= 0)
        Resource_SetLanguage(codes[chosen]);
    return chosen;
}

static int32_t enterName(char *name, uint32_t size) {
    const EditRequest edit = {
        .dialog = request(HELLO_ENTER_NAME, HELLO_WELCOME, text(HELLO_WHO_ARE_YOU))};
    return DialogEdit_DoModal(&edit, name, size);
}

/* 0 for yes; UTI_DIALOG_CANCELLED for no. */
static int32_t confirm(const char *question) {
    const ConfirmationRequest asked = {.dialog = request(HELLO_CONFIRM, HELLO_WELCOME, question),
                                       .firstButton = text(HELLO_YES),
                                       .secondButton = text(HELLO_NO)};
    return DialogConfirmation_DoModal(&asked);
}

/* One visitor. A negative code when he leaves before the end. */
static int32_t welcome(void) {
    char name[13] = "";
    char words[80];
    int32_t result;
    do {
        result = enterName(name, sizeof name);
        snprintf(words, sizeof words, text(HELLO_IS_IT), name);
    } while (result == UTI_OK && confirm(words) == UTI_DIALOG_CANCELLED);
    if (result == UTI_OK) {
        const DialogRequest sign = request(HELLO_SIGN, HELLO_BOOK, text(HELLO_PLEASE_SIGN));
        result = DialogSignature_DoModal(&sign, "signature.png");
    }
    if (result == UTI_OK) {
        snprintf(words, sizeof words, text(HELLO_THANKS), name);
        const DialogRequest message = request(HELLO_GREET, HELLO_BOOK, words);
        result = DialogMessage_Show(&message, SHOW_WITH_TIMEOUT);
    }
    return result;
}

int main(void) {
    /* Loads hello.res, which must be of the same making as hello_strings.h. */
    if (Resource_IsValid(HELLO_MODULE, HELLO_VERSION) != UTI_OK)
        return 1;
    Resource_SetLanguage("en");
    while (chooseLanguage() >= 0) {
        welcome();
        Resource_ReleaseAll(HELLO_MODULE);
    }
    Resource_Close(HELLO_MODULE);
    return 0;
}
