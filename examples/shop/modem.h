/*
 * modem.h: asking the mobile network.
 */
#ifndef SHOP_MODEM_H
#define SHOP_MODEM_H

#include <stdint.h>

/* Asks the network for the balance of the SIM card, with a dialog that shows how it goes. Returns 0
   and the network's text in `answer` of `size` bytes, or a negative code. */
int32_t askBalance(char *answer, int32_t size);

#endif /* SHOP_MODEM_H */
