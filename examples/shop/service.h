/*
 * service.h: what the shop's staff can do.
 */
#ifndef SHOP_SERVICE_H
#define SHOP_SERVICE_H

#include <stdint.h>

/* Shows the service menu. Returns nonzero when the terminal is to be switched off. */
int32_t serve(void);

#endif /* SHOP_SERVICE_H */
