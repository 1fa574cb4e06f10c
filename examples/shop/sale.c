/* sale.c: the steps of a sale, each a dialog: language, goods, amount, payment, PIN, phone number,
   the bank, signature. Any of them can end it. */
#include "sale.h"

#include "screen.h"
#include "settings.h"

#include <stdio.h>
#include <string.h>

enum {
    MOST_CENTS = 9999,
    GO_TO_PAYMENT = -1, /* result of the list of goods when F1 is pressed */
    PIN_SIZE = 7,
    LIST_SIZE = GOODS + 1 /* and another amount */
};

const Good goods[GOODS] = {
    {SHOP_COFFEE, "images/coffee.png", 240}, {SHOP_CAPPUCCINO, "images/cappuccino.png", 320},
    {SHOP_TEA, "images/tea.png", 210},       {SHOP_CROISSANT, "images/croissant.png", 190},
    {SHOP_CAKE, "images/cake.png", 380},     {SHOP_JUICE, "images/juice.png", 275},
    {SHOP_WATER, "images/water.png", 120},
};

static Sale sale;

int32_t totalOf(const Sale *of) {
    int32_t cents = of->other;
    for (int i = 0; i < GOODS; ++i)
        cents += of->counts[i] * goods[i].cents;
    return cents;
}

/* ---------------------------------------------------------------------------- language */

static int32_t chooseLanguage(void) {
    static const struct {
        const char *code;
        uint32_t name;
        const char *image;
    } languages[] = {{"en", SHOP_ENGLISH, "images/language_en.png"},
                     {"ru", SHOP_RUSSIAN, "images/language_ru.png"},
                     {"de", SHOP_GERMAN, "images/language_de.png"}};
    enum { LANGUAGES = sizeof languages / sizeof *languages };
    ListItem items[LANGUAGES] = {{0}};
    for (int i = 0; i < LANGUAGES; ++i) {
        items[i].word1 = (uintptr_t)text(languages[i].name);
        items[i].imageName = languages[i].image;
    }
    const LabelValue labels[] = {{"choose", text(SHOP_CHOOSE)}, {NULL, NULL}};
    ListRequest request = {.dialog = requestFor(SHOP_SELECT_LANGUAGE, SHOP_LANGUAGE, NULL),
                           .items = items,
                           .itemCount = LANGUAGES};
    request.dialog.labelValues = labels;
    const int32_t result = ended("SELECT_LANGUAGE", DialogList_DoModal(&request));
    if (result < 0)
        return result;
    setLanguage(languages[result].code);
    return UTI_OK;
}

/* ------------------------------------------------------------------------------ amount */

/* Digits alone make an amount: the last two are cents. */
static int32_t centsOf(const char *amount) {
    int32_t cents = 0;
    for (; *amount && cents <= MOST_CENTS; ++amount)
        if (*amount >= '0' && *amount <= '9')
            cents = cents * 10 + (*amount - '0');
    return cents;
}

/* The input's hook: a key that would make the amount too large is not taken. */
static int32_t takeAmountKey(int32_t key, char *amount, int32_t maxLength) {
    (void)key;
    const int32_t cents = centsOf(amount);
    if (cents == 0 || cents > MOST_CENTS)
        return 0;
    snprintf(amount, (size_t)maxLength + 1, "%s", plainMoney(cents));
    return 1;
}

/* The dialog's hook sees all keys: the star, which no amount has, stands for two zeros. */
static int32_t addZeros(uint8_t key) {
    const int32_t input = currentGraphicEditParameters.entries[1].handle;
    const int32_t cents = centsOf(igInput_GetValue(input));
    if (key == KEY_STAR && cents > 0 && cents <= MOST_CENTS / 100)
        igInput_SetValue(input, plainMoney(cents * 100));
    return 0;
}

static void enterAmount(void) {
    const LabelValue labels[] = {
        {"currency", text(SHOP_EURO)}, {"hint", text(SHOP_AMOUNT_HINT)}, {NULL, NULL}};
    char amount[8] = "";
    EditRequest request = {.dialog =
                               requestFor(SHOP_ENTER_AMOUNT, SHOP_AMOUNT, text(SHOP_AMOUNT_TEXT)),
                           .radix = 2,
                           .option = 1,
                           .keyPressed = takeAmountKey};
    request.dialog.labelValues = labels;
    request.dialog.keyPostProcessing = addZeros;
    if (ended("ENTER_AMOUNT", DialogEdit_DoModal(&request, amount, sizeof amount)) != UTI_OK)
        return;
    const int32_t cents = centsOf(amount);
    sale.other += cents;
    TraceExSupport(SHOP_MODULE, SHOP_GOODS_ADDED, String, textForLog(SHOP_OTHER), Long, cents, 0);
}

/* ------------------------------------------------------------------------------- goods */

static int32_t payOnF1(uint8_t key) {
    return key == KEY_F1 && totalOf(&sale) > 0 ? GO_TO_PAYMENT : 0;
}

/* Shows what there is and what has been chosen. Returns the number of an item from 0. */
static int32_t showGoods(int32_t last) {
    ListItem items[LIST_SIZE] = {{0}};
    for (int i = 0; i < GOODS; ++i) {
        char count[16] = "";
        if (sale.counts[i] > 0)
            snprintf(count, sizeof count, "%dx ", (int)sale.counts[i]);
        items[i].word1 = (uintptr_t)joined(count, text(goods[i].name));
        items[i].word2 = (uintptr_t)plainMoney(goods[i].cents);
        items[i].imageName = goods[i].image;
    }
    items[GOODS].word1 = (uintptr_t)text(SHOP_OTHER);
    items[GOODS].word2 = (uintptr_t)(sale.other > 0 ? plainMoney(sale.other) : "");
    items[GOODS].imageName = "images/amount.png";
    items[last].flag = 1;

    ListRequest request = {.dialog = requestFor(SHOP_CHOOSE_GOODS, SHOP_WHAT_TO_BUY, NULL),
                           .items = items,
                           .itemCount = LIST_SIZE};
    const LabelValue labels[] = {{"key", text(SHOP_KEY_PAY)}, {NULL, NULL}};
    const int32_t total = totalOf(&sale);
    if (total > 0) {
        request.dialog.caption = joined(text(SHOP_TOTAL), joined(" ", money(total)));
        request.dialog.labelValues = labels;
    }
    request.dialog.keyPostProcessing = payOnF1;
    return ended("CHOOSE_GOODS", DialogList_DoModal(&request));
}

/* Until the customer wants to pay. */
static int32_t chooseGoods(void) {
    int32_t chosen = 0;
    while ((chosen = showGoods(chosen)) >= 0) {
        if (chosen == GOODS) {
            enterAmount();
            continue;
        }
        ++sale.counts[chosen];
        TraceExSupport(SHOP_MODULE, SHOP_GOODS_ADDED, String, textForLog(goods[chosen].name), Long,
                       goods[chosen].cents, 0);
    }
    return chosen == GO_TO_PAYMENT ? UTI_OK : chosen;
}

/* ----------------------------------------------------------------------------- payment */

/* Without numbers and prices, which the receipt has. */
static const char *namesOfGoods(void) {
    const char *names = "";
    for (int i = 0; i < GOODS; ++i)
        if (sale.counts[i] > 0)
            names = joined(joined(names, *names ? ", " : ""), text(goods[i].name));
    return sale.other > 0 ? joined(joined(names, *names ? ", " : ""), text(SHOP_OTHER)) : names;
}

static int32_t confirmPayment(void) {
    const LabelValue labels[] = {{"goods", namesOfGoods()}, {NULL, NULL}};
    DialogRequest request = requestFor(SHOP_CONFIRM, SHOP_PAYMENT, money(totalOf(&sale)));
    request.labelValues = labels;
    return confirm("CONFIRM", &request, SHOP_PAY, SHOP_BACK);
}

static int32_t enterPin(void) {
    const LabelValue labels[] = {{"hint", text(SHOP_PIN_HINT)}, {NULL, NULL}};
    char pin[PIN_SIZE] = "";
    EditRequest request = {.dialog = requestFor(SHOP_ENTER_PIN, SHOP_PAYMENT, text(SHOP_PIN_TEXT))};
    request.dialog.labelValues = labels;
    const int32_t result = ended("ENTER_PIN", DialogEdit_DoModal(&request, pin, sizeof pin));
    memset(pin, 0, sizeof pin); /* here it would go to the card */
    return result;
}

/* Without a number the receipt is on paper only. */
static int32_t enterPhone(void) {
    const LabelValue labels[] = {{"hint", text(SHOP_PHONE_HINT)}, {NULL, NULL}};
    EditRequest request = {.dialog =
                               requestFor(SHOP_ENTER_PHONE, SHOP_PHONE, text(SHOP_PHONE_TEXT))};
    request.dialog.labelValues = labels;
    const int32_t result =
        ended("ENTER_PHONE", DialogEdit_DoModal(&request, sale.phone, sizeof sale.phone));
    if (result != UTI_OK || strlen(sale.phone) != PHONE_DIGITS)
        sale.phone[0] = 0;
    return result == UTI_DIALOG_TIME_OUT ? result : UTI_OK;
}

/* The bank of this shop lives here: it takes its time and says yes. */
static void askBank(Work *work) {
    static uint32_t start;
    static const uint32_t steps[] = {SHOP_STEP_CONNECT, SHOP_STEP_CARD, SHOP_STEP_APPROVE};
    if (work->step == 0)
        start = GetTicks();
    const uint32_t elapsed = GetTicks() - start;
    work->isDone = elapsed >= 3000;
    work->step = steps[work->isDone ? 2 : elapsed / 1000];
    work->percent = work->isDone ? 100 : (int32_t)(elapsed / 30);
}

static int32_t sign(void) {
    char body[TEXT_SIZE];
    snprintf(body, sizeof body, text(SHOP_SIGN_TEXT), money(totalOf(&sale)));
    const DialogRequest request = requestFor(SHOP_SIGN_HERE, SHOP_SIGN, body);
    return ended("SIGN_HERE", DialogSignature_DoModal(&request, "signature.png"));
}

/* Every step has to succeed. */
static int32_t pay(void) {
    int32_t result = confirmPayment();
    if (result == UTI_OK)
        result = enterPin();
    if (result == UTI_OK)
        result = enterPhone();
    if (result == UTI_OK)
        result = doWork("WORK", SHOP_BANK, "images/card.png", askBank);
    if (result == UTI_OK)
        result = sign();
    sale.isSigned = result == UTI_OK;
    return result;
}

void sell(void) {
    memset(&sale, 0, sizeof sale);
    if (chooseLanguage() != UTI_OK)
        return;

    int32_t result = chooseGoods();
    if (result == UTI_OK)
        result = pay();
    if (result != UTI_OK) {
        TraceExError(SHOP_MODULE, SHOP_SALE_CANCELLED, Long, totalOf(&sale), Long, result, 0);
        tell(SHOP_SORRY, text(SHOP_SORRY_TEXT), "images/failed.png");
        return;
    }

    sale.number = nextReceiptNumber();
    GetDateTime(&sale.date, &sale.time);
    TraceExSupport(SHOP_MODULE, SHOP_SALE_PAID, Long, sale.number, Long, totalOf(&sale), Date,
                   &sale.date, Time, &sale.time, Bool, sale.isSigned, 0);
    printReceipt(&sale);
    tell(SHOP_THANKS, text(SHOP_THANKS_TEXT), "images/done.png");
}
