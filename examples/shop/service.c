/* service.c: the service menu: the SIM card's balance, the bank's address, the end. */
#include "service.h"

#include "modem.h"
#include "screen.h"
#include "settings.h"

static void showBalance(void) {
    char answer[TEXT_SIZE];
    if (askBalance(answer, sizeof answer) == UTI_OK)
        tell(SHOP_BALANCE, answer, "images/network.png");
    else
        tell(SHOP_BALANCE, text(SHOP_NO_ANSWER), "images/failed.png");
}

static void changeAddress(void) {
    const LabelValue labels[] = {{"hint", text(SHOP_ADDRESS_HINT)}, {NULL, NULL}};
    char address[ADDRESS_SIZE];
    getBankAddress(address);
    EditRequest request = {
        .dialog = requestFor(SHOP_ENTER_ADDRESS, SHOP_ADDRESS, text(SHOP_ADDRESS_TEXT))};
    request.dialog.labelValues = labels;
    if (ended("ENTER_ADDRESS", DialogEdit_DoModal(&request, address, sizeof address)) == UTI_OK)
        setBankAddress(address);
}

int32_t serve(void) {
    enum { BALANCE, ADDRESS, SWITCH_OFF, ITEMS };
    for (;;) {
        const ListItem items[ITEMS] = {
            {.word1 = (uintptr_t)text(SHOP_BALANCE), .imageName = "images/sim.png"},
            {.word1 = (uintptr_t)text(SHOP_ADDRESS), .imageName = "images/host.png"},
            {.word1 = (uintptr_t)text(SHOP_SWITCH_OFF), .imageName = "images/off.png"}};
        const ListRequest request = {.dialog = requestFor(SHOP_CHOOSE_SERVICE, SHOP_SERVICE, NULL),
                                     .items = items,
                                     .itemCount = ITEMS};
        switch (ended("CHOOSE_SERVICE", DialogList_DoModal(&request))) {
        case BALANCE:
            showBalance();
            break;
        case ADDRESS:
            changeAddress();
            break;
        case SWITCH_OFF:
            return 1;
        default:
            return 0;
        }
    }
}
