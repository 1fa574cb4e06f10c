/* settings.c: the file shop.ini, through the library's INI operations. The file need not exist, and
   whoever maintains the terminal may edit it. */
#include "settings.h"

#include "screen.h"

#include <stdio.h>

static const char file[] = "shop.ini";

void setLanguage(const char *language) {
    Resource_SetLanguage(language);
    Ini_SetStr(file, "customer", "language", language);
    TraceExSupport(SHOP_MODULE, SHOP_LANGUAGE_CHOSEN, String, language, 0);
}

void restoreLanguage(void) {
    char language[3];
    const int32_t result = Ini_GetStr(file, "customer", "language", language, sizeof language);
    Resource_SetLanguage(result == UTI_OK && language[1] ? language : "en");
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
