/*
 * settings.h: what the shop remembers, in the file shop.ini.
 */
#ifndef SHOP_SETTINGS_H
#define SHOP_SETTINGS_H

#include <stdint.h>

enum { ADDRESS_SIZE = 16 };

/* The language of the last customer. */
void restoreLanguage(void);
void setLanguage(const char *language);

/* Counts receipts, from 1. */
int32_t nextReceiptNumber(void);

/* The IP address of the bank's host. */
void getBankAddress(char address[ADDRESS_SIZE]);
int32_t setBankAddress(const char *address);

#endif /* SHOP_SETTINGS_H */
