/*
 * sale.h: one sale, from the customer's language to the receipt.
 */
#ifndef SHOP_SALE_H
#define SHOP_SALE_H

#include "terminal.h"

#include <stdint.h>

enum { GOODS = 7, PHONE_DIGITS = 10 };

typedef struct Good {
    uint32_t name; /* string id */
    const char *image;
    int32_t cents;
} Good;

extern const Good goods[GOODS];

typedef struct Sale {
    int32_t number;
    int32_t counts[GOODS]; /* pieces of each */
    int32_t other;         /* cents that were typed in */
    char phone[PHONE_DIGITS + 1];
    int32_t isSigned;
    TerminalDate date; /* when it was paid */
    TerminalTime time;
} Sale;

/* What all that was chosen costs, in cents. */
int32_t totalOf(const Sale *sale);

/* Sells to one customer. */
void sell(void);

/* Prints the receipt, as long as there is paper. */
void printReceipt(const Sale *sale);

#endif /* SHOP_SALE_H */
