/* settings.c: the file shop.ini, through the library's INI operations. The file need not exist, and
   whoever maintains the terminal may edit it. */
#include "settings.h"

#include "screen.h"

#include <stdio.h>
#include <string.h>

static const char file[] = "shop.ini";

/* The terminal's own fonts have the code page of Russian, so the library loads none for it. English
   texts are in that code page as well, and its fonts take the place of those of another one. */
static void useLanguage(const char *language) {
    Resource_SetLanguage(language);
    Dialogs_SetDefaultFonts(strcmp(language, "ru") == 0 ? "en" : language);
}

void setLanguage(const char *language) {
    useLanguage(language);
    Ini_SetStr(file, "customer", "language", language);
    TraceExSupport(SHOP_MODULE, SHOP_LANGUAGE_CHOSEN, String, language, 0);
}

void restoreLanguage(void) {
    char language[3];
    const int32_t result = Ini_GetStr(file, "customer", "language", language, sizeof language);
    useLanguage(result == UTI_OK && language[1] ? language : "en");
}

int32_t nextReceiptNumber(void) {
    int32_t number = 0;
    Ini_GetLong(file, "receipts", "last", &number);
    ++number;
    Ini_SetLong(file, "receipts", "last", number);
    return number;
}

void getBankAddress(char address[ADDRESS_SIZE]) {
    if (Ini_GetStr(file, "bank", "address", address, ADDRESS_SIZE) != UTI_OK)
        snprintf(address, ADDRESS_SIZE, "192.168.0.1");
}

int32_t setBankAddress(const char *address) {
    TraceExSupport(SHOP_MODULE, SHOP_ADDRESS_SET, String, address, 0);
    return Ini_SetStr(file, "bank", "address", address);
}
